#pragma once

#include "store/DatabaseManager.h"

#include <map>
#include <set>

namespace quorvane {

/// One album at the destination that stands for an album of the library, or for a part of it.
struct MirrorAlbum {
    enum class State : int {
        making = 0, ///< asked for; nobody knows yet whether it was made
        open = 1,
        full = 2, ///< the next part goes on
        gone = 3, ///< deleted at the destination
    };
    QString album; ///< the library's identifier
    int part = 1;
    QString remoteID; ///< empty while it is being made
    QString title;
    State state = State::making;
};

/// Which albums at the destination stand for which of the library, and what was put into them. Any
/// thread, any process. Throws `DBError`.
class MirrorState {
  public:
    explicit MirrorState(DatabaseManager& database) : db_(database) {}

    /// By album, then part.
    std::vector<MirrorAlbum> albums();
    void save(const MirrorAlbum& album);
    /// As if it had never been mirrored.
    void forget(const QString& album);

    /// The media items that were put into an album's parts, and those that were refused.
    std::set<QString> itemsOf(const QString& album);
    int countIn(const QString& album, int part);
    /// All or nothing. `part` 0: refused, not to be tried again.
    void added(const QString& album, int part, const QStringList& items);

    /// The media item of every asset that is at the destination.
    std::map<QString, QString> mediaItems();

  private:
    DatabaseManager& db_;
};

} // namespace quorvane

#pragma once

#include "foundation/Log.h"
#include "google/GoogleAlbumContents.h"
#include "library/PhotoLibrary.h"
#include "store/MirrorState.h"
#include "sync/Attempts.h"

namespace quorvane {

/// What mirroring the albums came to.
struct MirrorOutcome {
    int added = 0;
    int made = 0;                   ///< albums
    QStringList gone;               ///< titles of albums that were deleted at the destination
    QStringList refused;            ///< media items that no album takes
    std::optional<QString> failure; ///< why it ended early; the next run goes on
};

/// Keeps an album at Google for each of the person's albums in the library, and puts what is at
/// Google already into it. It only ever adds: what the person takes out there stays out, and an
/// album that was deleted there is not made anew unless asked for. Every step is written down, so
/// that a run which dies is continued by the next one. One thread at a time.
class AlbumMirror {
  public:
    struct Services {
        PhotoLibrary& library;
        MirrorState& state;
        GoogleAlbumContents& contents;
        Attempts& attempts;
        Log& log;
    };
    explicit AlbumMirror(Services services) : s_(services) {}

    /// Throws `Cancelled`.
    MirrorOutcome run(const std::stop_token& stop);

    /// The person wants deleted albums back. Set while no run is active.
    bool remakesGone = false;

  private:
    void takeStock(const std::stop_token& stop);
    void mirror(const AssetCollection& album, const std::stop_token& stop);
    QStringList lacking(const AssetCollection& album);
    bool addSome(MirrorAlbum& part, const QStringList& items, const std::stop_token& stop);
    MirrorAlbum& openPart(const QString& album, const QString& title, const std::stop_token& stop);
    QString make(const QString& title, const std::stop_token& stop);
    QString unclaimed(const QString& title, const std::stop_token& stop);
    void setState(MirrorAlbum& part, MirrorAlbum::State state);

    Services s_;
    MirrorOutcome outcome_;
    std::map<QString, std::vector<MirrorAlbum>> parts_; ///< by the library's album
    std::map<QString, QString> items_;                  ///< media item by asset
};

} // namespace quorvane

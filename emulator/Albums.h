#pragma once

#include "emulator/Answer.h"
#include "emulator/Call.h"

#include <QJsonArray>
#include <QSet>

#include <map>

namespace quorvane::emulator {

/// The account's albums and their listing (`/v1/albums`, `/v1/sharedAlbums`), in order of
/// creation. Bearer tokens have been checked before. Not shared between threads.
class Albums {
  public:
    /// `count` items that are not in the library here stand in the album from the beginning.
    QString add(const QString& title, std::int64_t count, bool isShared, bool isAppCreated);

    /// These throw `Refusal`.
    Answer create(const Call& call);
    Answer list(const Call& call, bool shared) const;
    Answer get(const Call& call) const;

    bool contains(const QString& albumId) const;
    /// Whether one more item than it already holds finds room. The album exists.
    bool hasRoomFor(const QString& albumId, const QString& itemId, std::int64_t capacity) const;
    bool hasRoomFor(const QString& albumId, const QStringList& itemIds,
                    std::int64_t capacity) const;
    void insert(const QString& albumId, const QString& itemId);
    /// As when the person deletes it; its items stay. An unknown one is left alone.
    void remove(const QString& albumId);
    /// Out of every album.
    void removeItem(const QString& itemId);

    std::vector<StoredAlbum> all() const;
    QStringList albumsOf(const QString& itemId) const;

    QJsonArray toJson() const;
    static Albums fromJson(const QJsonArray& array);

  private:
    struct Album {
        StoredAlbum stored;
        std::int64_t seeded = 0;
        QSet<QString> items;
    };

    Album* find(const QString& albumId);
    const Album* find(const QString& albumId) const;

    std::vector<Album> albums_;
};

} // namespace quorvane::emulator

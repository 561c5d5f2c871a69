#pragma once

#include "emulator/Albums.h"
#include "emulator/Uploads.h"

namespace quorvane::emulator {

/// The account's library, `POST /v1/mediaItems:batchCreate`, which fills it, and
/// `GET /v1/mediaItems:batchGet`. The same bytes are always the same item. The bearer token has
/// been checked before. Not shared between threads.
class MediaItems {
  public:
    MediaItems(Uploads& uploads, Albums& albums) : uploads_(uploads), albums_(albums) {}

    /// These two throw `Refusal`.
    Answer batchCreate(const Call& call, const Behaviour& behaviour, Date now);
    Answer batchGet(const Call& call) const;

    /// As when the person deletes it. An unknown one is left alone.
    void remove(const QString& id);

    bool contains(const QString& id) const { return indexOfId_.contains(id); }

    /// In order of creation.
    std::vector<StoredMediaItem> all() const;

    QJsonArray toJson() const;
    void restore(const QJsonArray& array);

  private:
    struct NewItem {
        QString uploadToken, filename, description;
    };

    static std::vector<NewItem> newItems(const QJsonObject& body);
    void requireRoom(const std::vector<NewItem>& items, const Behaviour& behaviour, Date now) const;
    QJsonObject create(const NewItem& item, const QString& albumId, const Behaviour& behaviour,
                       Date now);
    const StoredMediaItem& add(const Upload& upload, const NewItem& item, const QString& id);

    Uploads& uploads_;
    Albums& albums_;
    std::vector<StoredMediaItem> items_;
    std::map<QString, std::size_t> indexOfId_;
};

} // namespace quorvane::emulator

#include "emulator/MediaItems.h"

#include "emulator/JsonBody.h"

#include <QDateTime>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr qsizetype longestFilename = 255;
constexpr qsizetype longestDescription = 1000;

// google.rpc.Code
constexpr int invalidArgumentCode = 3;
constexpr int notFoundCode = 5;
constexpr int alreadyExistsCode = 6;
constexpr int resourceExhaustedCode = 8;

QJsonObject statusOf(int code, const QString& message) {
    return {{u"code"_s, code}, {u"message"_s, message}};
}

QJsonObject failure(const QString& uploadToken, int code, const QString& message) {
    return {{u"uploadToken"_s, uploadToken}, {u"status"_s, statusOf(code, message)}};
}

QJsonObject resourceOf(const StoredMediaItem& item) {
    const bool isVideo = item.mimeType.startsWith(u"video/"_s);
    QJsonObject object{
        {u"id"_s, item.id},
        {u"productUrl"_s, QString(u"https://photos.google.com/lr/photo/"_s + item.id)},
        {u"mimeType"_s, item.mimeType},
        {u"filename"_s, item.filename},
    };
    QJsonObject metadata{{isVideo ? u"video"_s : u"photo"_s, QJsonObject()}};
    if (!item.creationTime.isEmpty())
        metadata.insert(u"creationTime"_s, item.creationTime);
    object.insert(u"mediaMetadata"_s, metadata);
    if (!item.description.isEmpty())
        object.insert(u"description"_s, item.description);
    return object;
}

QString rfc3339(Date date) {
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count(), QTimeZone::utc())
        .toString(u"yyyy-MM-dd'T'HH:mm:ss'Z'"_s);
}

/// Google looks at the bytes; a claim of an image or a video only has to agree in that.
bool isMediaAsClaimed(const Upload& upload) {
    if (upload.format.isEmpty())
        return false;
    const QString claim = upload.claimedType.section(u'/', 0, 0);
    return (claim != u"image"_s && claim != u"video"_s) ||
           claim == upload.format.section(u'/', 0, 0);
}

/// The account is one, so the bytes alone decide the identifier.
QString idOf(const Upload& upload) {
    return u"AMed"_s + QString::fromLatin1(QByteArray::fromHex(upload.sha256)
                                               .toBase64(QByteArray::Base64UrlEncoding |
                                                         QByteArray::OmitTrailingEquals));
}

} // namespace

Answer MediaItems::batchCreate(const Call& call, const Behaviour& behaviour, Date now) {
    const QJsonObject body = jsonBody(call);
    requireKnown(body, {}, {u"albumId"_s, u"newMediaItems"_s, u"albumPosition"_s});
    const std::vector<NewItem> items = newItems(body);
    const QString albumId = stringMember(body, u"albumId"_s);
    if (!albumId.isEmpty() && !albums_.contains(albumId))
        throw Refusal(invalidArgument(u"Invalid album ID."_s));

    requireRoom(items, behaviour, now);

    QJsonArray results;
    bool allSucceeded = true;
    for (const NewItem& item : items) {
        const QJsonObject result = create(item, albumId, behaviour, now);
        allSucceeded = allSucceeded && result.contains(u"mediaItem"_s);
        results.append(result);
    }
    return jsonAnswer({{u"newMediaItemResults"_s, results}}, allSucceeded ? 200 : 207);
}

std::vector<MediaItems::NewItem> MediaItems::newItems(const QJsonObject& body) {
    const QJsonArray array = arrayMember(body, u"newMediaItems"_s);
    if (array.isEmpty() || array.size() > largestBatch)
        throw Refusal(invalidArgument(u"Request must have between 1 and 50 newMediaItems."_s));
    std::vector<NewItem> items;
    for (const QJsonValue value : array) {
        const QString where = u"new_media_items["_s + QString::number(items.size()) + u']';
        if (!value.isObject())
            throw Refusal(invalidArgument(u"Invalid value at '"_s + where + u"'."_s));
        const QJsonObject item = value.toObject();
        requireKnown(item, where, {u"description"_s, u"simpleMediaItem"_s});
        const QJsonObject simple = objectMember(item, u"simpleMediaItem"_s);
        requireKnown(simple, where + u".simple_media_item"_s, {u"uploadToken"_s, u"fileName"_s});
        const NewItem newItem{.uploadToken = stringMember(simple, u"uploadToken"_s),
                              .filename = stringMember(simple, u"fileName"_s),
                              .description = stringMember(item, u"description"_s)};
        if (newItem.uploadToken.isEmpty() || newItem.filename.size() > longestFilename ||
            newItem.description.size() > longestDescription)
            throw Refusal(invalidArgument(u"Request contains an invalid media item at '"_s + where +
                                          u"'."_s));
        items.push_back(newItem);
    }
    return items;
}

/// A full account refuses the batch as a whole.
void MediaItems::requireRoom(const std::vector<NewItem>& items, const Behaviour& behaviour,
                             Date now) const {
    std::int64_t size = 0;
    for (const StoredMediaItem& item : items_)
        size += item.size;
    for (const NewItem& item : items)
        if (const Upload* upload = uploads_.find(item.uploadToken, now))
            size += upload->size;
    if (behaviour.storageBytes >= 0 && size > behaviour.storageBytes)
        throw Refusal(invalidArgument(u"The remaining storage in the user's account is not enough "
                                      "to perform this operation."_s));
}

QJsonObject MediaItems::create(const NewItem& item, const QString& albumId,
                               const Behaviour& behaviour, Date now) {
    const Upload* upload = uploads_.find(item.uploadToken, now);
    if (!upload)
        return failure(item.uploadToken, invalidArgumentCode, u"Invalid upload token."_s);
    if (!isMediaAsClaimed(*upload))
        return failure(item.uploadToken, invalidArgumentCode,
                       u"NOT_IMAGE: There was an error while trying to create this media item."_s);
    const QString id = idOf(*upload);
    if (behaviour.duplicatesRefused && indexOfId_.contains(id))
        return failure(item.uploadToken, alreadyExistsCode, u"The media item already exists."_s);
    if (!albumId.isEmpty() && !albums_.hasRoomFor(albumId, id, behaviour.albumCapacity))
        return failure(item.uploadToken, resourceExhaustedCode,
                       u"ERR_PHOTO_PER_ALBUM_LIMIT: The maximum number of photos in an album has "
                       "been reached."_s);
    const StoredMediaItem& stored = add(*upload, item, id);
    if (!albumId.isEmpty())
        albums_.insert(albumId, id);
    uploads_.use(item.uploadToken);
    return {{u"uploadToken"_s, item.uploadToken},
            {u"status"_s, QJsonObject{{u"message"_s, u"Success"_s}}},
            {u"mediaItem"_s, resourceOf(stored)}};
}

const StoredMediaItem& MediaItems::add(const Upload& upload, const NewItem& item,
                                       const QString& id) {
    const auto [entry, isNew] = indexOfId_.try_emplace(id, items_.size());
    if (isNew)
        items_.push_back({.id = id,
                          .filename = item.filename.isEmpty() ? upload.filename : item.filename,
                          .description = item.description,
                          .mimeType = upload.format,
                          .sha256 = upload.sha256,
                          .size = upload.size,
                          .creationTime = upload.captured ? rfc3339(*upload.captured) : QString()});
    return items_[entry->second];
}

Answer MediaItems::batchGet(const Call& call) const {
    QStringList ids;
    for (const auto& [name, value] : call.query().queryItems(QUrl::FullyDecoded)) {
        if (name != u"mediaItemIds"_s)
            throw Refusal(invalidArgument(u"Invalid JSON payload received. Unknown name \""_s +
                                          name + u"\": Cannot bind query parameter."_s));
        ids.append(value);
    }
    if (ids.isEmpty() || ids.size() > largestBatch || ids.removeDuplicates() > 0)
        throw Refusal(
            invalidArgument(u"Request must have between 1 and 50 distinct mediaItemIds."_s));
    QJsonArray results;
    for (const QString& id : ids) {
        const auto found = indexOfId_.find(id);
        if (found != indexOfId_.end())
            results.append(QJsonObject{{u"mediaItem"_s, resourceOf(items_[found->second])}});
        else
            results.append(QJsonObject{
                {u"status"_s, id.isEmpty()
                                  ? statusOf(invalidArgumentCode, u"Invalid media item ID."_s)
                                  : statusOf(notFoundCode, u"Media item not found."_s)}});
    }
    return jsonAnswer({{u"mediaItemResults"_s, results}});
}

void MediaItems::remove(const QString& id) {
    std::erase_if(items_, [&](const StoredMediaItem& item) { return item.id == id; });
    indexOfId_.clear();
    for (std::size_t i = 0; i < items_.size(); ++i)
        indexOfId_.emplace(items_[i].id, i);
    albums_.removeItem(id);
}

std::vector<StoredMediaItem> MediaItems::all() const {
    std::vector<StoredMediaItem> result = items_;
    for (StoredMediaItem& item : result)
        item.albumIds = albums_.albumsOf(item.id);
    return result;
}

QJsonArray MediaItems::toJson() const {
    QJsonArray array;
    for (const StoredMediaItem& item : items_)
        array.append(QJsonObject{{u"id"_s, item.id},
                                 {u"filename"_s, item.filename},
                                 {u"description"_s, item.description},
                                 {u"mimeType"_s, item.mimeType},
                                 {u"sha256"_s, QString::fromLatin1(item.sha256)},
                                 {u"size"_s, static_cast<qint64>(item.size)},
                                 {u"creationTime"_s, item.creationTime}});
    return array;
}

void MediaItems::restore(const QJsonArray& array) {
    items_.clear();
    indexOfId_.clear();
    for (const QJsonValue value : array) {
        const QJsonObject object = value.toObject();
        indexOfId_.insert_or_assign(object[u"id"_s].toString(), items_.size());
        items_.push_back({.id = object[u"id"_s].toString(),
                          .filename = object[u"filename"_s].toString(),
                          .description = object[u"description"_s].toString(),
                          .mimeType = object[u"mimeType"_s].toString(),
                          .sha256 = object[u"sha256"_s].toString().toLatin1(),
                          .size = object[u"size"_s].toInteger(),
                          .creationTime = object[u"creationTime"_s].toString()});
    }
}

} // namespace quorvane::emulator

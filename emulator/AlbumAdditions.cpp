#include "emulator/AlbumAdditions.h"

#include "emulator/JsonBody.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

QStringList itemsIn(const QJsonObject& body) {
    requireKnown(body, {}, {u"mediaItemIds"_s});
    QStringList ids;
    for (const QJsonValue value : arrayMember(body, u"mediaItemIds"_s))
        ids += value.toString();
    if (ids.isEmpty() || ids.size() > largestBatch)
        throw Refusal(invalidArgument(u"Request must have between 1 and 50 media item IDs."_s));
    return ids;
}

} // namespace

Answer addToAlbum(const Call& call, Albums& albums, const MediaItems& items,
                  const Behaviour& behaviour) {
    const QString path = QUrl::fromPercentEncoding(call.request.path);
    const QString album = path.section(u'/', -1).section(u':', 0, 0);
    const QStringList ids = itemsIn(jsonBody(call));
    if (!albums.contains(album))
        throw Refusal(apiError(404, u"Requested entity was not found."_s));
    if (!std::ranges::all_of(ids, [&](const QString& id) { return items.contains(id); }))
        throw Refusal(invalidArgument(u"Request contains an invalid media item id."_s));
    if (!albums.hasRoomFor(album, ids, behaviour.albumCapacity))
        throw Refusal(invalidArgument(u"ERR_PHOTO_PER_ALBUM_LIMIT: The maximum number of photos in "
                                      "an album has been reached."_s));
    for (const QString& id : ids)
        albums.insert(album, id);
    return jsonAnswer({});
}

} // namespace quorvane::emulator

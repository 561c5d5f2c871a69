#include "emulator/Albums.h"

#include "emulator/JsonBody.h"
#include "emulator/Tokens.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

constexpr qsizetype longestTitle = 500;
constexpr int defaultPageSize = 20;
constexpr int largestPageSize = 50;

QJsonObject resourceOf(const StoredAlbum& album) {
    QJsonObject object{
        {u"id"_s, album.id},
        {u"title"_s, album.title},
        {u"productUrl"_s, QString(u"https://photos.google.com/lr/album/"_s + album.id)},
        {u"isWriteable"_s, album.isAppCreated},
    };
    if (album.itemCount > 0) // like every default value, a zero is left out
        object.insert(u"mediaItemsCount"_s, QString::number(album.itemCount));
    return object;
}

struct Page {
    int size = defaultPageSize;
    std::size_t start = 0;
    bool onlyAppCreated = false;
};

Page pageOf(const Call& call) {
    Page page;
    for (const auto& [name, value] : call.query().queryItems(QUrl::FullyDecoded)) {
        bool valid = true;
        if (name == u"pageSize"_s) {
            page.size = value.toInt(&valid);
            valid = valid && page.size >= 1 && page.size <= largestPageSize;
        } else if (name == u"pageToken"_s) {
            page.start = QByteArray::fromBase64(value.toLatin1()).toULongLong(&valid);
        } else if (name == u"excludeNonAppCreatedData"_s) {
            page.onlyAppCreated = value == u"true"_s;
            valid = page.onlyAppCreated || value == u"false"_s;
        } else {
            throw Refusal(invalidArgument(u"Invalid JSON payload received. Unknown name \""_s +
                                          name + u"\": Cannot bind query parameter."_s));
        }
        if (!valid)
            throw Refusal(invalidArgument(u"Invalid value for "_s + name + u'.'));
    }
    return page;
}

} // namespace

QString Albums::add(const QString& title, std::int64_t count, bool isShared, bool isAppCreated) {
    QString id = u"AAlb"_s + opaqueText(48);
    albums_.push_back({.stored = {.id = id,
                                  .title = title,
                                  .itemCount = count,
                                  .isShared = isShared,
                                  .isAppCreated = isAppCreated},
                       .seeded = count,
                       .items = {}});
    return id;
}

Answer Albums::create(const Call& call) {
    const QJsonObject body = jsonBody(call);
    requireKnown(body, {}, {u"album"_s});
    const QJsonObject album = objectMember(body, u"album"_s);
    requireKnown(album, u"album"_s, {u"title"_s});
    const QString title = stringMember(album, u"title"_s);
    if (title.isEmpty() || title.size() > longestTitle)
        throw Refusal(
            invalidArgument(u"Request must have an album title of at most 500 characters."_s));
    return jsonAnswer(resourceOf(find(add(title, 0, false, true))->stored));
}

Answer Albums::list(const Call& call, bool shared) const {
    const Page page = pageOf(call);
    std::vector<const Album*> listed;
    for (const Album& album : albums_) {
        if (album.stored.isShared == shared && (album.stored.isAppCreated || !page.onlyAppCreated))
            listed.push_back(&album);
    }
    QJsonArray array;
    const std::size_t end =
        std::min(listed.size(), page.start + static_cast<std::size_t>(page.size));
    for (std::size_t i = page.start; i < end; ++i)
        array.append(resourceOf(listed[i]->stored));
    QJsonObject answer;
    if (!array.isEmpty())
        answer.insert(shared ? u"sharedAlbums"_s : u"albums"_s, array);
    if (end < listed.size())
        answer.insert(u"nextPageToken"_s, QString::fromLatin1(QByteArray::number(end).toBase64()));
    return jsonAnswer(answer);
}

Answer Albums::get(const Call& call) const {
    const Album* album = find(QUrl::fromPercentEncoding(call.request.path).section(u'/', -1));
    if (!album)
        throw Refusal(apiError(404, u"Requested entity was not found."_s));
    return jsonAnswer(resourceOf(album->stored));
}

void Albums::remove(const QString& albumId) {
    std::erase_if(albums_, [&](const Album& album) { return album.stored.id == albumId; });
}

bool Albums::contains(const QString& albumId) const {
    return find(albumId) != nullptr;
}

bool Albums::hasRoomFor(const QString& albumId, const QString& itemId,
                        std::int64_t capacity) const {
    const Album* album = find(albumId);
    return album->items.contains(itemId) || album->stored.itemCount < capacity;
}

bool Albums::hasRoomFor(const QString& albumId, const QStringList& itemIds,
                        std::int64_t capacity) const {
    const Album* album = find(albumId);
    QSet<QString> added(itemIds.begin(), itemIds.end());
    added.subtract(album->items);
    return album->stored.itemCount + added.size() <= capacity;
}

void Albums::insert(const QString& albumId, const QString& itemId) {
    Album* album = find(albumId);
    album->items.insert(itemId);
    album->stored.itemCount = album->seeded + album->items.size();
}

void Albums::removeItem(const QString& itemId) {
    for (Album& album : albums_)
        if (album.items.remove(itemId))
            --album.stored.itemCount;
}

std::vector<StoredAlbum> Albums::all() const {
    std::vector<StoredAlbum> result;
    std::ranges::transform(albums_, std::back_inserter(result), &Album::stored);
    return result;
}

QStringList Albums::albumsOf(const QString& itemId) const {
    QStringList result;
    for (const Album& album : albums_)
        if (album.items.contains(itemId))
            result.append(album.stored.id);
    return result;
}

const Albums::Album* Albums::find(const QString& albumId) const {
    const auto found =
        std::ranges::find(albums_, albumId, [](const Album& album) { return album.stored.id; });
    return found == albums_.end() ? nullptr : &*found;
}

Albums::Album* Albums::find(const QString& albumId) {
    return const_cast<Album*>(std::as_const(*this).find(albumId));
}

QJsonArray Albums::toJson() const {
    QJsonArray array;
    for (const Album& album : albums_) {
        QStringList items(album.items.begin(), album.items.end());
        items.sort();
        array.append(QJsonObject{{u"id"_s, album.stored.id},
                                 {u"title"_s, album.stored.title},
                                 {u"isShared"_s, album.stored.isShared},
                                 {u"isAppCreated"_s, album.stored.isAppCreated},
                                 {u"seeded"_s, static_cast<qint64>(album.seeded)},
                                 {u"items"_s, QJsonArray::fromStringList(items)}});
    }
    return array;
}

Albums Albums::fromJson(const QJsonArray& array) {
    Albums albums;
    for (const QJsonValue value : array) {
        const QJsonObject object = value.toObject();
        Album album;
        album.stored.id = object[u"id"_s].toString();
        album.stored.title = object[u"title"_s].toString();
        album.stored.isShared = object[u"isShared"_s].toBool();
        album.stored.isAppCreated = object[u"isAppCreated"_s].toBool();
        album.seeded = object[u"seeded"_s].toInteger();
        for (const QJsonValue item : object[u"items"_s].toArray())
            album.items.insert(item.toString());
        album.stored.itemCount = album.seeded + album.items.size();
        albums.albums_.push_back(album);
    }
    return albums;
}

} // namespace quorvane::emulator

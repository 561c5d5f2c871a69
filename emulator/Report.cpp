#include "emulator/Report.h"

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

namespace {

QJsonObject stored(const StoredMediaItem& item) {
    return {{u"id"_s, item.id},
            {u"filename"_s, item.filename},
            {u"description"_s, item.description},
            {u"mimeType"_s, item.mimeType},
            {u"sha256"_s, QString::fromLatin1(item.sha256)},
            {u"size"_s, static_cast<qint64>(item.size)},
            {u"albumIds"_s, QJsonArray::fromStringList(item.albumIds)}};
}

QJsonObject stored(const StoredAlbum& album) {
    return {{u"id"_s, album.id},
            {u"title"_s, album.title},
            {u"itemCount"_s, static_cast<qint64>(album.itemCount)},
            {u"isShared"_s, album.isShared}};
}

template <typename Value>
QJsonArray describeAll(const std::vector<Value>& values) {
    QJsonArray array;
    for (const Value& value : values)
        array.append(stored(value));
    return array;
}

} // namespace

QJsonObject reportOf(const RequestLog& log, const Account& account) {
    QJsonObject requests;
    for (const RequestKind kind : allRequestKinds)
        requests.insert(nameOf(kind), log.countOf(kind));
    return {{u"requests"_s, requests},
            {u"uploadedBytes"_s, static_cast<qint64>(log.uploadedBytes())},
            {u"mediaItems"_s, describeAll(account.mediaItems().all())},
            {u"albums"_s, describeAll(account.albums().all())}};
}

} // namespace quorvane::emulator

#include "emulator/Call.h"

#include <algorithm>
#include <array>

namespace quorvane::emulator {

namespace {

struct Route {
    const char* method;
    const char* path;
    RequestKind kind;
};

constexpr std::array routes{
    Route{"GET", "/o/oauth2/v2/auth", RequestKind::auth},
    Route{"POST", "/token", RequestKind::token},
    Route{"POST", "/revoke", RequestKind::revoke},
    Route{"GET", "/oauth2/v2/userinfo", RequestKind::userinfo},
    Route{"POST", "/v1/uploads", RequestKind::upload},
    Route{"POST", "/v1/mediaItems:batchCreate", RequestKind::batchCreate},
    Route{"GET", "/v1/mediaItems:batchGet", RequestKind::batchGet},
    Route{"GET", "/v1/albums", RequestKind::albumsList},
    Route{"POST", "/v1/albums", RequestKind::albumsCreate},
    Route{"GET", "/v1/sharedAlbums", RequestKind::sharedAlbums},
    Route{"GET", "/_quorvane/report", RequestKind::report},
};

} // namespace

RequestKind kindOf(const QByteArray& method, const QByteArray& path) {
    const QByteArray plain = QByteArray::fromPercentEncoding(path);
    for (const Route& route : routes)
        if (method == route.method && plain == route.path)
            return route.kind;
    if (method == "POST" && plain.startsWith("/v1/albums/") &&
        plain.endsWith(":batchAddMediaItems"))
        return RequestKind::albumsAdd;
    if (method == "GET" && plain.startsWith("/v1/albums/"))
        return RequestKind::albumsGet;
    return RequestKind::other;
}

QUrlQuery parseForm(const QByteArray& text) {
    return QUrlQuery(QString::fromUtf8(QByteArray(text).replace('+', "%20")));
}

QString formItem(const QUrlQuery& form, const QString& name) {
    return form.queryItemValue(name, QUrl::FullyDecoded);
}

QUrlQuery Call::query() const {
    return parseForm(request.query);
}

QString Call::queryItem(const QString& name) const {
    return formItem(query(), name);
}

QByteArray Call::contentType() const {
    const QByteArray value = request.header("Content-Type");
    const qsizetype end = value.indexOf(';');
    return (end < 0 ? value : value.first(end)).trimmed().toLower();
}

QString Call::uploadFilename() const {
    return QUrl::fromPercentEncoding(request.header("X-Goog-Upload-File-Name"));
}

bool Call::commands(const char* word) const {
    for (const QByteArray& each : request.header("X-Goog-Upload-Command").split(','))
        if (each.trimmed() == word)
            return true;
    return false;
}

QString Call::bearer() const {
    const QByteArray value = request.header("Authorization");
    if (value.first(std::min<qsizetype>(7, value.size())).toLower() != "bearer ")
        return {};
    return QString::fromLatin1(value.sliced(7).trimmed());
}

} // namespace quorvane::emulator

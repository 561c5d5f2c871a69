#include "google/GoogleAlbumContents.h"

#include "google/GoogleErrors.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrlQuery>

namespace quorvane {

namespace {

QJsonObject objectIn(const HttpResponse& response) {
    const QJsonDocument document = QJsonDocument::fromJson(response.body);
    if (!document.isObject())
        throw GoogleError::invalidResponse(GoogleError::Area::album);
    return document.object();
}

} // namespace

std::vector<GoogleAlbum> GoogleAlbumContents::ownAlbums(const std::stop_token& stop) {
    std::vector<GoogleAlbum> albums;
    QString pageToken;
    do {
        QUrlQuery query{{QStringLiteral("pageSize"), QStringLiteral("50")},
                        {QStringLiteral("excludeNonAppCreatedData"), QStringLiteral("true")}};
        if (!pageToken.isEmpty())
            query.addQueryItem(QStringLiteral("pageToken"),
                               QString::fromLatin1(QUrl::toPercentEncoding(pageToken)));
        HttpRequest request;
        request.url = api_.at(albumsPath);
        request.url.setQuery(query);
        const HttpResponse response = api_.send(std::move(request), stop);
        if (response.status != 200)
            throw GoogleError::http(GoogleError::Area::album, response);
        const QJsonObject page = objectIn(response);
        for (const QJsonValue each : page[QStringLiteral("albums")].toArray())
            if (const auto album = GoogleAlbum::fromJson(each.toObject()))
                albums.push_back(*album);
        const QString next = page[QStringLiteral("nextPageToken")].toString();
        if (!next.isEmpty() && next == pageToken)
            throw GoogleError::invalidResponse(GoogleError::Area::album);
        pageToken = next;
    } while (!pageToken.isEmpty());
    return albums;
}

GoogleAlbum GoogleAlbumContents::make(const QString& title, const std::stop_token& stop) {
    const QJsonObject album{{QStringLiteral("title"), title.left(longestTitle)}};
    auto made =
        GoogleAlbum::fromJson(objectIn(post(albumsPath, {{QStringLiteral("album"), album}}, stop)));
    if (!made)
        throw GoogleError::invalidResponse(GoogleError::Area::album);
    return *made;
}

void GoogleAlbumContents::add(const QString& albumID, const QStringList& itemIDs,
                              const std::stop_token& stop) {
    post(albumsPath + u'/' + albumID + QStringLiteral(":batchAddMediaItems"),
         {{QStringLiteral("mediaItemIds"), QJsonArray::fromStringList(itemIDs)}}, stop);
}

HttpResponse GoogleAlbumContents::post(const QString& path, const QJsonObject& body,
                                       const std::stop_token& stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = api_.at(path);
    request.isCreation = true;
    request.headers = {{"Content-Type", "application/json"}};
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    HttpResponse response = api_.send(std::move(request), stop);
    if (response.status != 200)
        throw GoogleError::http(GoogleError::Area::album, response, response.status == 404);
    return response;
}

} // namespace quorvane

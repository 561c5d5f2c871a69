#include "google/GoogleAlbumManager.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>
#include <QUrlQuery>

#include <algorithm>

namespace quorvane {

namespace {

constexpr int maximumPages = 1000; // of 50 albums: far beyond what an account holds
constexpr qsizetype loggedBodyLength = 2000;

QByteArray bearer(const QString& token) {
    return "Bearer " + token.toUtf8();
}

QString bodyText(const HttpResponse& response) {
    return QString::fromUtf8(response.body.left(loggedBodyLength));
}

QString flagText(bool flag) {
    return flag ? QStringLiteral("true") : QStringLiteral("false");
}

QUrl pageURL(const QUrl& endpoint, const QString& pageToken) {
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("pageSize"), QStringLiteral("50"));
    query.addQueryItem(QStringLiteral("excludeNonAppCreatedData"), QStringLiteral("true"));
    if (!pageToken.isEmpty())
        query.addQueryItem(QStringLiteral("pageToken"),
                           QString::fromLatin1(QUrl::toPercentEncoding(pageToken)));
    QUrl url = endpoint;
    url.setQuery(query);
    return url;
}

/// Puts `album` where an album of its id stands, or at the end.
void merge(std::vector<GoogleAlbum>& albums, const GoogleAlbum& album) {
    const auto found = std::ranges::find(albums, album.id, &GoogleAlbum::id);
    if (found != albums.end())
        *found = album;
    else
        albums.push_back(album);
}

} // namespace

GoogleAlbumManager::GoogleAlbumManager(HttpClient& http, AccessTokenProvider& tokens,
                                       Preferences& preferences, Log& log,
                                       const GoogleEndpoints& endpoints)
    : http_(http),
      tokens_(tokens),
      preferences_(preferences),
      log_(log),
      albumsEndpoint_(endpoints.library(QStringLiteral("/v1/albums"))),
      sharedAlbumsEndpoint_(endpoints.library(QStringLiteral("/v1/sharedAlbums"))) {}

std::vector<GoogleAlbum> GoogleAlbumManager::listAlbums(std::stop_token stop) {
    const QString token = tokens_.validAccessToken(stop);
    Listing own = fetchEndpointAlbums(albumsEndpoint_, QStringLiteral("albums"), token, stop);
    const Listing shared =
        fetchEndpointAlbums(sharedAlbumsEndpoint_, QStringLiteral("sharedAlbums"), token, stop);
    lacksReadPermission_ = own.insufficientScopes && !own.isServiceDisabled;
    const bool scopeIssue = own.insufficientScopes || shared.insufficientScopes;
    own.albums.insert(own.albums.end(), shared.albums.begin(), shared.albums.end());
    const std::vector<GoogleAlbum> albums = remember(own.albums);

    hasInsufficientScopes_ = scopeIssue;
    if (scopeIssue)
        log_.log(QStringLiteral(
            "[GoogleAlbumManager] ⚠️ Google Photos albüm okuma kapsamı (scope) "
            "yetersiz. Kullanıcının oturumu yenilemesi gerekebilir."));
    log_.log(QStringLiteral(
                 "[GoogleAlbumManager] Toplam %1 Google Photos albümü yüklendi (scopeIssue: %2)")
                 .arg(QString::number(albums.size()), flagText(scopeIssue)));
    return albums;
}

GoogleAlbumManager::Listing GoogleAlbumManager::fetchEndpointAlbums(const QUrl& endpoint,
                                                                    const QString& jsonArrayKey,
                                                                    const QString& token,
                                                                    std::stop_token stop) {
    Listing listing;
    QSet<QString> seenPages;
    QString pageToken;
    do {
        seenPages.insert(pageToken);
        const auto page = fetchPage(endpoint, pageToken, token, listing, stop);
        if (!page)
            break;
        for (const QJsonValue& element : page->value(jsonArrayKey).toArray())
            if (const auto album = GoogleAlbum::fromJson(element.toObject()))
                listing.albums.push_back(*album);
        pageToken = page->value(QStringLiteral("nextPageToken")).toString();
    } while (!pageToken.isEmpty() && !seenPages.contains(pageToken) &&
             seenPages.size() < maximumPages);
    return listing;
}

/// One page, or none after a failure, which is logged.
std::optional<QJsonObject> GoogleAlbumManager::fetchPage(const QUrl& endpoint,
                                                         const QString& pageToken,
                                                         const QString& token, Listing& listing,
                                                         std::stop_token stop) {
    const QString where =
        QStringLiteral("[GoogleAlbumManager] ⚠️ Endpoint ") + endpoint.toString();
    HttpRequest request;
    request.url = pageURL(endpoint, pageToken);
    request.headers = {{"Authorization", bearer(token)}};
    HttpResponse response;
    try {
        response = http_.send(request, stop);
    } catch (const Error& error) {
        log_.log(QStringLiteral("[GoogleAlbumManager] Ağ hatası (") + endpoint.toString() +
                 QStringLiteral("): ") + error.localizedDescription());
        return std::nullopt;
    }
    if (response.status == 403) {
        listing.insufficientScopes = true;
        listing.isServiceDisabled = response.body.contains("SERVICE_DISABLED");
        log_.log(where + QStringLiteral(" HTTP 403 (excludeNonAppCreatedData: true): ") +
                 bodyText(response));
        return std::nullopt;
    }
    if (response.status != 200) {
        log_.log(where + QStringLiteral(" HTTP %1: ").arg(response.status) + bodyText(response));
        return std::nullopt;
    }
    const QJsonDocument document = QJsonDocument::fromJson(response.body);
    if (!document.isObject()) {
        log_.log(where + QStringLiteral(": ") +
                 AlbumError::invalidResponse().localizedDescription());
        return std::nullopt;
    }
    return document.object();
}

GoogleAlbum GoogleAlbumManager::createAlbum(const QString& title, std::stop_token stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = albumsEndpoint_;
    request.isCreation = true;
    request.headers = {{"Authorization", bearer(tokens_.validAccessToken(stop))},
                       {"Content-Type", "application/json"}};
    request.body = QJsonDocument(QJsonObject{{QStringLiteral("album"),
                                              QJsonObject{{QStringLiteral("title"), title}}}})
                       .toJson(QJsonDocument::Compact);
    const HttpResponse response = http_.send(request, stop);
    if (response.status != 200) {
        log_.log(QStringLiteral("[GoogleAlbumManager] Albüm oluşturma HTTP hatası: %1 - Yanıt: ")
                     .arg(response.status) +
                 bodyText(response));
        throw AlbumError::httpError(response.status);
    }
    auto album = GoogleAlbum::fromJson(QJsonDocument::fromJson(response.body).object());
    if (!album)
        throw AlbumError::invalidResponse();
    if (!album->title)
        album->title = title;
    saveLocalCreatedAlbum(*album);
    selectTargetAlbum(album);
    return *album;
}

GoogleAlbum GoogleAlbumManager::createAndSelectNextPartAlbum(std::stop_token stop) {
    const QString current =
        preferences_.string(preferenceKeys::targetAlbumTitle).value_or(QStringLiteral("Yedek"));
    return createAlbum(nextPartTitle(current), stop);
}

QString GoogleAlbumManager::nextPartTitle(const QString& title) {
    static const QRegularExpression suffix(QStringLiteral(" - Parça ([0-9]+)$"));
    const QRegularExpressionMatch match = suffix.match(title);
    bool isNumber = false;
    const qulonglong part = match.captured(1).toULongLong(&isNumber);
    if (!isNumber)
        return title + QStringLiteral(" - Parça 2");
    return title.left(match.capturedStart()) + QStringLiteral(" - Parça %1").arg(part + 1);
}

void GoogleAlbumManager::selectTargetAlbum(const std::optional<GoogleAlbum>& album) {
    if (!album) {
        preferences_.remove(preferenceKeys::targetAlbumID);
        preferences_.remove(preferenceKeys::targetAlbumTitle);
        return;
    }
    preferences_.setString(preferenceKeys::targetAlbumID, album->id);
    preferences_.setString(preferenceKeys::targetAlbumTitle, album->title.value_or(QString()));
}

std::optional<QString> GoogleAlbumManager::targetAlbumID() const {
    auto id = preferences_.string(preferenceKeys::targetAlbumID);
    return id && !id->isEmpty() ? id : std::nullopt;
}

std::vector<GoogleAlbum> GoogleAlbumManager::getLocalCreatedAlbums() const {
    const QByteArray stored =
        preferences_.data(preferenceKeys::localCreatedAlbums).value_or(QByteArray());
    std::vector<GoogleAlbum> albums;
    for (const QJsonValue& element : QJsonDocument::fromJson(stored).array())
        if (const auto album = GoogleAlbum::fromJson(element.toObject()))
            albums.push_back(*album);
    return albums;
}

void GoogleAlbumManager::saveLocalCreatedAlbum(const GoogleAlbum& album) {
    const std::lock_guard lock(memory_);
    std::vector<GoogleAlbum> albums = getLocalCreatedAlbums();
    if (std::ranges::find(albums, album.id, &GoogleAlbum::id) != albums.end())
        return;
    albums.push_back(album);
    saveDiscoveredAlbums(albums);
}

void GoogleAlbumManager::saveDiscoveredAlbums(const std::vector<GoogleAlbum>& albums) {
    QJsonArray array;
    for (const GoogleAlbum& album : albums)
        array.append(album.toJson());
    preferences_.setData(preferenceKeys::localCreatedAlbums,
                         QJsonDocument(array).toJson(QJsonDocument::Compact));
}

/// Merges into the memory as it is now: an album may have been made during the listing.
std::vector<GoogleAlbum> GoogleAlbumManager::remember(const std::vector<GoogleAlbum>& fetched) {
    const std::lock_guard lock(memory_);
    std::vector<GoogleAlbum> albums;
    for (const GoogleAlbum& album : getLocalCreatedAlbums())
        merge(albums, album);
    for (const GoogleAlbum& album : fetched)
        merge(albums, album);
    saveDiscoveredAlbums(albums);
    return albums;
}

} // namespace quorvane

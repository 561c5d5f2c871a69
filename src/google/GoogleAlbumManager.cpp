#include "google/GoogleAlbumManager.h"

#include "google/GoogleErrors.h"
#include "google/GoogleFaults.h"

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

QString bodyText(const HttpResponse& response) {
    return QString::fromUtf8(response.body.left(loggedBodyLength)).simplified();
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

GoogleAlbumManager::GoogleAlbumManager(GoogleLibraryApi& api, Preferences& preferences, Log& log)
    : api_(api), preferences_(preferences), log_(log) {}

std::vector<GoogleAlbum> GoogleAlbumManager::listAlbums(std::stop_token stop) {
    api_.requireSession(stop);
    Listing own = fetchEndpointAlbums(albumsPath, QStringLiteral("albums"), stop);
    const Listing shared = fetchEndpointAlbums(QStringLiteral("/v1/sharedAlbums"),
                                               QStringLiteral("sharedAlbums"), stop);
    *listingFault_.lock() = own.fault;
    const bool scopeIssue = own.insufficientScopes || shared.insufficientScopes;
    own.albums.insert(own.albums.end(), shared.albums.begin(), shared.albums.end());
    std::vector<GoogleAlbum> albums = remember(own.albums);

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

bool GoogleAlbumManager::lacksReadPermission() const {
    const auto fault = listingFault();
    return fault &&
           (fault->code == FaultCode::permissionMissing || fault->code == FaultCode::accessDenied);
}

std::optional<Fault> GoogleAlbumManager::listingFault() const {
    return *listingFault_.lock();
}

GoogleAlbumManager::Listing GoogleAlbumManager::fetchEndpointAlbums(const QString& path,
                                                                    const QString& jsonArrayKey,
                                                                    const std::stop_token& stop) {
    const QUrl endpoint = api_.at(path);
    Listing listing;
    QSet<QString> seenPages;
    QString pageToken;
    do {
        seenPages.insert(pageToken);
        const auto page = fetchPage(endpoint, pageToken, listing, stop);
        if (!page)
            break;
        for (const QJsonValue element : page->value(jsonArrayKey).toArray())
            if (const auto album = GoogleAlbum::fromJson(element.toObject()))
                listing.albums.push_back(*album);
        pageToken = page->value(QStringLiteral("nextPageToken")).toString();
    } while (!pageToken.isEmpty() && !seenPages.contains(pageToken) &&
             seenPages.size() < maximumPages);
    return listing;
}

/// One page, or none after a failure, which is logged.
std::optional<QJsonObject> GoogleAlbumManager::fetchPage(const QUrl& endpoint,
                                                         const QString& pageToken, Listing& listing,
                                                         const std::stop_token& stop) {
    const QString where =
        QStringLiteral("[GoogleAlbumManager] ⚠️ Endpoint ") + endpoint.toString();
    HttpRequest request;
    request.url = pageURL(endpoint, pageToken);
    HttpResponse response;
    try {
        response = api_.send(std::move(request), stop);
    } catch (const TransportError& error) {
        listing.fault = error.fault();
        log_.log(QStringLiteral("[GoogleAlbumManager] Ağ hatası (") + endpoint.toString() +
                 QStringLiteral("): ") + error.localizedDescription());
        return std::nullopt;
    }
    if (response.status != 200)
        listing.fault = faultIn(response);
    if (response.status == 403) {
        listing.insufficientScopes = true;
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
        listing.fault = foreignAnswer();
        log_.log(where + QStringLiteral(": ") +
                 GoogleError::invalidResponse(GoogleError::Area::album).localizedDescription());
        return std::nullopt;
    }
    return document.object();
}

GoogleAlbum GoogleAlbumManager::createAlbum(const QString& title, std::stop_token stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = api_.at(albumsPath);
    request.isCreation = true;
    request.headers = {{"Content-Type", "application/json"}};
    request.body = QJsonDocument(QJsonObject{{QStringLiteral("album"),
                                              QJsonObject{{QStringLiteral("title"), title}}}})
                       .toJson(QJsonDocument::Compact);
    const HttpResponse response = api_.send(std::move(request), stop);
    if (response.status != 200) {
        log_.log(QStringLiteral("[GoogleAlbumManager] Albüm oluşturma HTTP hatası: %1 - Yanıt: ")
                     .arg(response.status) +
                 bodyText(response));
        throw GoogleError::http(GoogleError::Area::album, response);
    }
    auto album = GoogleAlbum::fromJson(QJsonDocument::fromJson(response.body).object());
    if (!album)
        throw GoogleError::invalidResponse(GoogleError::Area::album);
    if (!album->title)
        album->title = title;
    return adopted(*album);
}

GoogleAlbum GoogleAlbumManager::createAndSelectNextPartAlbum(std::stop_token stop) {
    const QString current =
        preferences_.string(preferenceKeys::targetAlbumTitle).value_or(QStringLiteral("Yedek"));
    return createAlbum(nextPartTitle(current), stop);
}

bool GoogleAlbumManager::continueInNextPart(std::stop_token stop) {
    const QString current = targetAlbumID().value_or(QString());
    QJsonObject parts = rolloverParts();
    QString newest = current;
    for (qsizetype i = 0; i < parts.size() && !parts[newest].toString().isEmpty(); ++i)
        newest = parts[newest].toString();
    if (newest != current)
        for (const GoogleAlbum& album : getLocalCreatedAlbums())
            if (album.id == newest) {
                selectTargetAlbum(album);
                return false;
            }
    const auto lost = parts.contains(current) ? lostPart(stop) : std::nullopt;
    parts[current] = QString(); // asked for, and not known to be made
    saveRolloverParts(parts);
    parts[current] = lost ? adopted(*lost).id : createAndSelectNextPartAlbum(stop).id;
    saveRolloverParts(parts);
    return true;
}

/// The part that was made for the target without this program having learnt of it: empty, and of
/// the title that follows. None when the account does not allow to look.
std::optional<GoogleAlbum> GoogleAlbumManager::lostPart(const std::stop_token& stop) {
    const QString title =
        nextPartTitle(preferences_.string(preferenceKeys::targetAlbumTitle).value_or(QString()));
    const Listing listing = fetchEndpointAlbums(albumsPath, QStringLiteral("albums"), stop);
    if (listing.fault && kindOf(listing.fault->code) == FaultKind::moment)
        throw Error(QStringLiteral("[Album] Albümler listelenemedi"), listing.fault);
    for (const GoogleAlbum& album : listing.albums)
        if (album.title == title && album.itemCount() == 0)
            return album;
    return std::nullopt;
}

GoogleAlbum GoogleAlbumManager::adopted(const GoogleAlbum& album) {
    saveLocalCreatedAlbum(album);
    selectTargetAlbum(album);
    return album;
}

QJsonObject GoogleAlbumManager::rolloverParts() const {
    const auto stored = preferences_.data(preferenceKeys::rolloverParts);
    return QJsonDocument::fromJson(stored.value_or(QByteArray())).object();
}

void GoogleAlbumManager::saveRolloverParts(const QJsonObject& parts) {
    preferences_.setData(preferenceKeys::rolloverParts,
                         QJsonDocument(parts).toJson(QJsonDocument::Compact));
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

bool GoogleAlbumManager::isFull(const QString& id, const std::stop_token& stop) try {
    HttpRequest request;
    request.url = api_.at(albumsPath + u'/' + id);
    const HttpResponse response = api_.send(std::move(request), stop);
    const auto album = GoogleAlbum::fromJson(QJsonDocument::fromJson(response.body).object());
    return response.status == 200 && album && album->itemCount() >= GoogleAlbum::capacity;
} catch (const Error&) {
    return false; // what was asked for before counts
}

void GoogleAlbumManager::selectTargetAlbum(const std::optional<GoogleAlbum>& album) {
    if (!album) {
        preferences_.remove(preferenceKeys::targetAlbumID);
        preferences_.remove(preferenceKeys::targetAlbumTitle);
        return;
    }
    const QString title = album->title.value_or(QString());
    if (preferences_.isVolatile(preferenceKeys::targetAlbumID)) { // named for this process alone
        preferences_.setVolatile(preferenceKeys::targetAlbumID, album->id);
        preferences_.setVolatile(preferenceKeys::targetAlbumTitle, title);
        return;
    }
    preferences_.setString(preferenceKeys::targetAlbumID, album->id);
    preferences_.setString(preferenceKeys::targetAlbumTitle, title);
}

std::optional<QString> GoogleAlbumManager::targetAlbumID() const {
    auto id = preferences_.string(preferenceKeys::targetAlbumID);
    return id && !id->isEmpty() ? id : std::nullopt;
}

std::vector<GoogleAlbum> GoogleAlbumManager::getLocalCreatedAlbums() const {
    const QByteArray stored =
        preferences_.data(preferenceKeys::localCreatedAlbums).value_or(QByteArray());
    std::vector<GoogleAlbum> albums;
    for (const QJsonValue element : QJsonDocument::fromJson(stored).array())
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

#include "library/PhotoAlbumService.h"

#include "foundation/MainThread.h"
#include "library/AlbumCollector.h"

#include <algorithm>
#include <set>

namespace quorvane {

namespace {

const QString photosAppPrefix = QStringLiteral("photos_app_album:");
const QString partSeparator = QStringLiteral(":::");

const QString albumsProgram = QStringLiteral("tell application \"Photos\"\n"
                                             "    set out to \"\"\n"
                                             "    repeat with a in albums\n"
                                             "        set out to out & (id of a) & \":::\" & "
                                             "(name of a) & \":::\" & "
                                             "(count of media items of a) & \"\n\"\n"
                                             "    end repeat\n"
                                             "    return out\n"
                                             "end tell");

const QString itemsProgramStart =
    QStringLiteral("tell application \"Photos\"\n"
                   "    set prevTIDs to AppleScript's text item delimiters\n"
                   "    set AppleScript's text item delimiters to linefeed\n"
                   "    set theIDs to (id of media items of album id \"");
const QString itemsProgramEnd =
    QStringLiteral("\") as text\n"
                   "    set AppleScript's text item delimiters to prevTIDs\n"
                   "    return theIDs\n"
                   "end tell");

/// The text as the inside of a string literal of the program.
QString escaped(QString text) {
    return text.replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\""));
}

QStringList linesOf(QString text) {
    text.replace(u'\r', u'\n');
    return text.split(u'\n', Qt::SkipEmptyParts);
}

QString titleOf(const QString& title) {
    return title.isEmpty() ? QStringLiteral("İsimsiz") : title;
}

/// By creation date; assets without one first, equal ones in the order they came in.
SourceAssets inOrder(AssetFetchResult assets) {
    auto sorted = std::make_shared<std::vector<PhotoAsset>>(*assets);
    std::ranges::stable_sort(*sorted, {}, &PhotoAsset::creationDate);
    return {std::move(assets), std::move(sorted)};
}

/// "<id>:::<name>:::<count>"; none for a malformed line. A name may hold the separator itself.
std::optional<LocalAlbumItem> albumOf(const QString& line) {
    const qsizetype first = line.indexOf(partSeparator);
    const qsizetype last = line.lastIndexOf(partSeparator);
    const qsizetype nameStart = first + partSeparator.size();
    if (first <= 0 || last < nameStart)
        return std::nullopt;
    bool isNumber = false;
    const int count = line.mid(last + partSeparator.size()).trimmed().toInt(&isNumber);
    if (!isNumber || count < 0)
        return std::nullopt;
    return LocalAlbumItem{photosAppPrefix + line.left(first),
                          titleOf(line.mid(nameStart, last - nameStart)), count};
}

} // namespace

PhotoAlbumService::PhotoAlbumService(PhotoLibrary& library, Preferences& preferences, Log& log,
                                     QString libraryIdentity, PhotosAppScripts* photosApp)
    : library_(library),
      preferences_(preferences),
      log_(log),
      libraryIdentity_(std::move(libraryIdentity)),
      photosApp_(photosApp) {}

std::vector<LocalAlbumItem> PhotoAlbumService::performFetchLocalAlbums() {
    std::vector<LocalAlbumItem> albums;
    try {
        const AuthorizationStatus status = library_.authorizationStatus();
        if (status != AuthorizationStatus::authorized && status != AuthorizationStatus::limited) {
            log_.log(QStringLiteral(
                         "[PhotoAlbumService] Yetki yok (status: %1) — albümler listelenemedi")
                         .arg(static_cast<int>(status)));
            return {};
        }
        albums = listAlbums();
    } catch (const Error& error) {
        log_.log(QStringLiteral("[PhotoAlbumService] Kitaplık okunamadı: ") +
                 error.localizedDescription());
        return {};
    }
    *cachedAlbums_.lock() = albums;
    return albums;
}

std::vector<LocalAlbumItem> PhotoAlbumService::listAlbums() {
    std::vector<LocalAlbumItem> albums;
    size_t userAlbums = 0;
    for (const AssetCollection& album : AlbumCollector(library_).collect()) {
        const LocalAlbumItem item{album.localIdentifier, titleOf(album.title), assetCount(album),
                                  album.type == CollectionType::smartAlbum};
        log_.log(QStringLiteral(
                     "[PhotoAlbumService] 📁 Albüm bulundu: '%1' (type: %2, subtype: %3, adet: %4)")
                     .arg(item.title, QString::number(static_cast<int>(album.type)),
                          QString::number(album.subtype), QString::number(item.count)));
        userAlbums += album.type == CollectionType::album ? 1 : 0;
        albums.push_back(item);
    }
    std::set<QString> taken;
    for (LocalAlbumItem& item : fetchApplePhotosAlbums()) {
        if (!taken.insert(item.id).second)
            continue;
        ++userAlbums;
        albums.push_back(std::move(item));
    }
    log_.log(QStringLiteral("[PhotoAlbumService] Toplam %1 albüm listelendi (%2 kullanıcı albümü, "
                            "%3 sistem/diğer albüm)")
                 .arg(albums.size())
                 .arg(userAlbums)
                 .arg(albums.size() - userAlbums));
    return albums;
}

int PhotoAlbumService::assetCount(const AssetCollection& album) {
    if (album.estimatedAssetCount)
        return *album.estimatedAssetCount;
    return static_cast<int>(library_.fetchAssets(album)->size());
}

void PhotoAlbumService::refreshLocalAlbumsAsync(
    std::function<void(const std::vector<LocalAlbumItem>&)> done) {
    tasks_.post([this, done = std::move(done)](const std::stop_token&) {
        onMainThread([done, albums = performFetchLocalAlbums()] { done(albums); });
    });
}

std::vector<LocalAlbumItem> PhotoAlbumService::cachedAlbums() const {
    return *cachedAlbums_.lock();
}

std::optional<QString> PhotoAlbumService::selectedSourceAlbumID() const {
    auto albumID = preferences_.string(preferenceKeys::sourceAlbumID);
    if (!albumID || albumID->isEmpty())
        return std::nullopt;
    if (ownsSelectedSource())
        return albumID;
    log_.log(
        QStringLiteral("[PhotoAlbumService] ⚠️ Kayıtlı kaynak albüm başka bir arşive ait, "
                       "uygulanmadı: ") +
        preferences_.string(preferenceKeys::sourceAlbumTitle).value_or(*albumID));
    return std::nullopt;
}

bool PhotoAlbumService::ownsSelectedSource() const {
    return preferences_.string(preferenceKeys::sourceAlbumLibrary).value_or(libraryIdentity_) ==
           libraryIdentity_;
}

void PhotoAlbumService::setSelectedSourceAlbumID(const std::optional<QString>& albumID) {
    if (albumID && !albumID->isEmpty()) {
        preferences_.setString(preferenceKeys::sourceAlbumLibrary, libraryIdentity_);
        preferences_.setString(preferenceKeys::sourceAlbumID, *albumID);
    } else {
        preferences_.remove(preferenceKeys::sourceAlbumID);
        preferences_.remove(preferenceKeys::sourceAlbumLibrary);
    }
}

void PhotoAlbumService::selectForThisRun(const LocalAlbumItem& album) {
    preferences_.setVolatile(preferenceKeys::sourceAlbumLibrary, libraryIdentity_);
    preferences_.setVolatile(preferenceKeys::sourceAlbumID, album.id);
    preferences_.setVolatile(preferenceKeys::sourceAlbumTitle, album.title);
}

SourceAssets PhotoAlbumService::fetchAssets(const std::optional<QString>& albumID,
                                            std::stop_token stop) {
    if (albumID && albumID->startsWith(photosAppPrefix))
        return inOrder(library_.fetchAssets(
            fetchItemIDsFromApplePhotos(albumID->mid(photosAppPrefix.size()))));
    if (albumID)
        if (const auto album = library_.fetchAssetCollection(*albumID))
            return inOrder(library_.fetchAssets(*album));
    const AssetFetchResult all = library_.fetchAssets(std::move(stop));
    return {all, all}; // in that order already
}

std::vector<LocalAlbumItem> PhotoAlbumService::fetchApplePhotosAlbums() {
    if (photosApp_ == nullptr)
        return {};
    std::vector<LocalAlbumItem> albums;
    try {
        for (const QString& line : linesOf(photosApp_->run(albumsProgram)))
            if (auto album = albumOf(line))
                albums.push_back(std::move(*album));
    } catch (const ScriptNotCreated&) {
        log_.log(QStringLiteral("[PhotoAlbumService] AppleScript derlenemedi"));
        return {};
    } catch (const ScriptFailed& error) {
        log_.log(QStringLiteral("[PhotoAlbumService] AppleScript albüm sorgusu hatası: ") +
                 error.localizedDescription());
        return {};
    }
    QStringList titles;
    for (const LocalAlbumItem& album : albums)
        titles.append(album.title);
    log_.log(
        QStringLiteral("[PhotoAlbumService] Apple Photos uygulamasından %1 özel albüm alındı: ")
            .arg(albums.size()) +
        titles.join(QStringLiteral(", ")));
    return albums;
}

QStringList PhotoAlbumService::fetchItemIDsFromApplePhotos(const QString& albumID) {
    QStringList identifiers;
    try {
        if (photosApp_ == nullptr)
            throw ScriptNotCreated(QStringLiteral("Photos uygulaması yok"));
        identifiers =
            linesOf(photosApp_->run(itemsProgramStart + escaped(albumID) + itemsProgramEnd));
    } catch (const ScriptNotCreated&) {
        log_.log(QStringLiteral("[PhotoAlbumService] Media item IDs AppleScript derlenemedi"));
        return {};
    } catch (const ScriptFailed& error) {
        log_.log(QStringLiteral("[PhotoAlbumService] Media item IDs AppleScript hatası: ") +
                 error.localizedDescription());
        return {};
    }
    log_.log(QStringLiteral("[PhotoAlbumService] Albümden (") + albumID +
             QStringLiteral(") %1 adet yerel ID çekildi").arg(identifiers.size()));
    return identifiers;
}

} // namespace quorvane

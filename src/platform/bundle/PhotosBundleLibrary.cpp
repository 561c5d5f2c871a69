#include "platform/bundle/PhotosBundleLibrary.h"

#include "library/FileExport.h"
#include "library/LocalIdentifier.h"
#include "platform/bundle/BundleCollections.h"
#include "platform/bundle/SmartAlbums.h"
#include "platform/folder/FolderIdentity.h"

#include <algorithm>

#include <unistd.h>

namespace quorvane {

namespace {

using namespace localIdentifier;

constexpr const char* databaseInside = "database/Photos.sqlite";

AssetFetchResult resultOf(std::vector<PhotoAsset> assets) {
    return std::make_shared<const std::vector<PhotoAsset>>(std::move(assets));
}

void requireSupported(const std::filesystem::path& bundle) {
    std::error_code error;
    if (!std::filesystem::exists(bundle, error))
        throw PhotoLibraryError::away(
            QStringLiteral("Fotoğraflar arşivine ulaşılamıyor: %1").arg(pathText(bundle)));
    if (std::filesystem::exists(bundle / databaseInside, error))
        return;
    if (std::filesystem::exists(bundle / "database/photos.db", error))
        throw PhotoLibraryError(
            QStringLiteral("Bu Fotoğraflar arşivi çok eski: macOS 10.15 veya sonrasının "
                           "Fotoğraflar arşivi gerekir (%1)")
                .arg(pathText(bundle)));
    throw PhotoLibraryError(
        QStringLiteral("Bu bir Fotoğraflar arşivi değil: veritabanı bulunamadı (%1)")
            .arg(pathText(bundle)));
}

void addSmartAlbums(PhotosDatabase& database, std::optional<int> subtype,
                    std::vector<AssetCollection>& collections) {
    std::vector<const SmartAlbum*> albums;
    std::vector<const char*> conditions;
    for (const SmartAlbum& album : smartAlbums())
        if (subtype.value_or(album.subtype) == album.subtype) {
            albums.push_back(&album);
            conditions.push_back(album.condition);
        }
    const std::vector<int> counts = database.counts(conditions);
    for (std::size_t i = 0; i < albums.size(); ++i)
        collections.push_back(collectionOf(*albums[i], counts[i]));
}

} // namespace

const std::vector<PhotosAlbum>& PhotosBundleLibrary::Opened::albums() {
    if (!albums_)
        albums_ = database.albums();
    return *albums_;
}

PhotosBundleLibrary::PhotosBundleLibrary(std::filesystem::path bundle,
                                         std::filesystem::path workFolder, Log& log,
                                         const WatchTimes& times)
    : bundle_(std::move(bundle)),
      layout_(std::make_shared<const BundleLayout>(bundle_, LibraryChoices())),
      snapshot_(bundle_ / databaseInside, std::move(workFolder)),
      watch_(
          QStringLiteral("[PhotosBundle]"), FolderNotifier::Events::contents,
          [this](bool, const std::stop_token&) { return look(); }, fetches_, log, times) {}

void PhotosBundleLibrary::use(const LibraryChoices& choices) {
    *layout_.lock() = std::make_shared<const BundleLayout>(bundle_, choices);
    sendsCaptions_ = choices.captions;
}

std::shared_ptr<const BundleLayout> PhotosBundleLibrary::layout() const {
    return *layout_.lock();
}

bool PhotosBundleLibrary::looksLikeBundle(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error) &&
           (path.extension() == ".photoslibrary" ||
            std::filesystem::exists(path / databaseInside, error));
}

AuthorizationStatus PhotosBundleLibrary::authorizationStatus() const {
    if (bundle_.empty())
        return AuthorizationStatus::notDetermined;
    std::error_code error;
    if (!std::filesystem::is_directory(bundle_, error) ||
        ::access(bundle_.c_str(), R_OK | X_OK) != 0)
        return AuthorizationStatus::denied;
    return ::access(bundle_.c_str(), W_OK) == 0 ? AuthorizationStatus::authorized
                                                : AuthorizationStatus::limited;
}

void PhotosBundleLibrary::open(Freshness freshness) {
    if (opened_ && (freshness == Freshness::asLastRead || snapshot_.isCurrent()))
        return;
    opened_.reset();
    requireSupported(bundle_);
    if (!snapshot_.refresh())
        throw PhotoLibraryError(
            QStringLiteral("Fotoğraflar arşivi şu anda sürekli değişiyor, sonra yeniden deneyin: "
                           "%1")
                .arg(pathText(bundle_)));
    opened_.emplace(snapshot_.file());
    ++version_;
}

template <typename Work>
auto PhotosBundleLibrary::query(Freshness freshness, Work&& work, std::stop_token stop) {
    const std::lock_guard lock(mutex_);
    try {
        open(freshness);
        opened_->database.stopOn(std::move(stop));
        return work(*opened_);
    } catch (const sqlite::SqliteError& error) {
        throw PhotoLibraryError(
            QStringLiteral("Fotoğraflar arşivinin veritabanı okunamıyor: %1 (%2)")
                .arg(pathText(bundle_), error.localizedDescription()));
    }
}

QString PhotosBundleLibrary::identity() {
    try {
        const QString uuid = query(Freshness::asLastRead,
                                   [](Opened& opened) { return opened.database.libraryUuid(); });
        if (!uuid.isEmpty())
            return QStringLiteral("photos:") + uuid;
    } catch (const Error&) {
        // It may be readable later, and is still the same folder then.
    }
    return folderLibraryIdentity(bundle_);
}

template <typename List>
AssetFetchResult PhotosBundleLibrary::remember(List list, std::stop_token stop) {
    int seen = 0;
    AssetFetchResult first = query(
        Freshness::current,
        [&](Opened& opened) {
            seen = version_;
            return resultOf(list(opened));
        },
        std::move(stop));
    return fetches_.remember(std::move(first), [this, list, seen]() mutable {
        return query(Freshness::asLastRead, [&](Opened& opened) -> AssetFetchResult {
            const bool isSame = version_ == std::exchange(seen, version_);
            return isSame ? nullptr : resultOf(list(opened));
        });
    });
}

AssetFetchResult PhotosBundleLibrary::fetchAssets(std::stop_token stop) {
    return remember([](Opened& opened) { return opened.database.assets(); }, std::move(stop));
}

AssetFetchResult PhotosBundleLibrary::fetchAssets(const AssetCollection& collection) {
    return remember([identifier = collection.localIdentifier](Opened& opened) {
        if (const SmartAlbum* smart = findSmart(identifier))
            return opened.database.assets(smart->condition);
        const PhotosAlbum* album = find(opened.albums(), uuidOf(identifier, albumTail));
        return album ? opened.database.assetsOf(*album) : std::vector<PhotoAsset>();
    });
}

AssetFetchResult PhotosBundleLibrary::fetchAssets(const QStringList& localIdentifiers) {
    return query(Freshness::asLastRead, [&](Opened& opened) {
        std::vector<PhotoAsset> assets;
        for (const QString& identifier : localIdentifiers)
            if (auto asset = opened.database.asset(uuidOf(identifier, assetTail)))
                assets.push_back(std::move(*asset));
        return resultOf(std::move(assets));
    });
}

std::vector<AssetCollection>
PhotosBundleLibrary::fetchAssetCollections(CollectionType type, std::optional<int> subtype) {
    return query(Freshness::current, [&](Opened& opened) {
        std::vector<AssetCollection> collections;
        for (const PhotosAlbum& album : opened.albums())
            if (auto collection = collectionOf(album);
                collection && collection->type == type &&
                subtype.value_or(collection->subtype) == collection->subtype)
                collections.push_back(std::move(*collection));
        if (type == CollectionType::smartAlbum)
            addSmartAlbums(opened.database, subtype, collections);
        return collections;
    });
}

std::optional<AssetCollection>
PhotosBundleLibrary::fetchAssetCollection(const QString& localIdentifier) {
    return query(Freshness::current, [&](Opened& opened) -> std::optional<AssetCollection> {
        if (const SmartAlbum* smart = findSmart(localIdentifier))
            return collectionOf(*smart, opened.database.counts({smart->condition}).front());
        const PhotosAlbum* album = find(opened.albums(), uuidOf(localIdentifier, albumTail));
        return album ? collectionOf(*album) : std::nullopt;
    });
}

std::vector<Collection> PhotosBundleLibrary::fetchTopLevelUserCollections() {
    return query(Freshness::current,
                 [](Opened& opened) { return collectionsIn(opened.albums(), nullptr); });
}

std::vector<CollectionList> PhotosBundleLibrary::fetchCollectionLists(CollectionListType type) {
    if (type != CollectionListType::folder)
        return {};
    return query(Freshness::asLastRead, [](Opened& opened) {
        // From the top down, so that folders which only contain each other are never reached.
        const std::vector<PhotosAlbum>& albums = opened.albums();
        std::vector<const PhotosAlbum*> reached = childrenOf(albums, nullptr);
        std::vector<CollectionList> lists;
        for (std::size_t i = 0; i < reached.size(); ++i) {
            if (reached[i]->kind != PhotosAlbum::folder)
                continue;
            lists.push_back(listOf(*reached[i]));
            const auto children = childrenOf(albums, reached[i]);
            reached.insert(reached.end(), children.begin(), children.end());
        }
        return lists;
    });
}

std::vector<Collection> PhotosBundleLibrary::fetchCollections(const CollectionList& list) {
    return query(Freshness::asLastRead, [&](Opened& opened) {
        const PhotosAlbum* folder = find(opened.albums(), uuidOf(list.localIdentifier, folderTail));
        return folder ? collectionsIn(opened.albums(), folder) : std::vector<Collection>();
    });
}

std::vector<PhotoAssetResource> PhotosBundleLibrary::assetResources(const PhotoAsset& asset) {
    const auto files = query(Freshness::asLastRead, [&](Opened& opened) {
        return opened.database.filesOf(uuidOf(asset.localIdentifier, assetTail));
    });
    return files ? layout()->resources(*files) : std::vector<PhotoAssetResource>();
}

std::map<QString, AbsentOriginal>
PhotosBundleLibrary::absentOriginals(const std::vector<PhotoAsset>& assets, std::stop_token stop) {
    const auto identifierOf = [](const PhotoAsset* asset) -> const AssetIdentifier& {
        return asset->localIdentifier;
    };
    std::vector<const PhotoAsset*> asked;
    asked.reserve(assets.size());
    for (const PhotoAsset& asset : assets)
        asked.push_back(&asset);
    std::ranges::sort(asked, {}, identifierOf);
    const auto layout = this->layout();
    FoldersBeneath folders(bundle_);
    std::map<QString, AbsentOriginal> absent;
    std::int64_t after = 0;
    const auto next = [&after](Opened& opened) { return opened.database.originals(after); };
    for (auto some = query(Freshness::asLastRead, next, stop); !some.empty();
         some = query(Freshness::asLastRead, next, stop))
        for (const PhotosAssetFiles& asset : some) {
            if (stop.stop_requested())
                throw Cancelled();
            const auto identifier = AssetIdentifier::ofUuid(asset.uuid.toStdString());
            if (!std::ranges::binary_search(asked, identifier, {}, identifierOf))
                continue;
            if (auto absence = layout->absence(asset, folders))
                absent.emplace(identifier, std::move(*absence));
        }
    return absent;
}

std::filesystem::path PhotosBundleLibrary::pathOf(const PhotoAssetResource& resource) const {
    return layout()->pathOf(resource.location);
}

FileDescriptor PhotosBundleLibrary::openResource(const PhotoAssetResource& resource) const {
    try {
        if (resource.absence)
            throw PhotoLibraryError(resource.absence->reason);
        if (resource.location.empty())
            throw PhotoLibraryError(
                QStringLiteral("%1 için arşivde kullanılabilir bir dosya adı yok: ya boş ya da "
                               "arşivin dışını gösteriyor")
                    .arg(resource.originalFilename));
        return layout()->open(resource.location);
    } catch (const FileError& error) {
        if (authorizationStatus() == AuthorizationStatus::denied)
            throw PhotoLibraryError::away(
                QStringLiteral("Fotoğraflar arşivine ulaşılamıyor: %1").arg(pathText(bundle_)));
        throw PhotoLibraryError(QStringLiteral("%1 adlı özgün dosya bu makinede değil (%2)")
                                    .arg(resource.originalFilename, error.localizedDescription()));
    }
}

SourceContent PhotosBundleLibrary::writeData(const PhotoAssetResource& resource,
                                             const std::filesystem::path& destination,
                                             std::stop_token stop) {
    return exportFile(openResource(resource), pathOf(resource), destination, stop);
}

SourceContent PhotosBundleLibrary::readContent(const PhotoAssetResource& resource,
                                               std::stop_token stop) {
    return quorvane::readContent(openResource(resource), pathOf(resource), stop);
}

std::optional<std::int64_t> PhotosBundleLibrary::sampleOf(const PhotoAssetResource& resource) {
    try {
        return contentSample(openResource(resource), pathOf(resource));
    } catch (const Error&) { // whoever reads it whole tells
        return std::nullopt;
    }
}

std::optional<FileVersion> PhotosBundleLibrary::versionOf(const PhotoAssetResource& resource) {
    return resource.location.empty() ? std::nullopt : fileVersion(pathOf(resource));
}

void PhotosBundleLibrary::deleteAssets(const std::vector<DeletionCandidate>& candidates,
                                       DeletionQuestion, DeletionGuard&, std::stop_token) {
    if (!candidates.empty())
        throw PhotoLibraryError(
            QStringLiteral("Fotoğraflar arşivine hiçbir zaman yazılmaz; silme işlemi yalnızca "
                           "Fotoğraflar uygulamasında yapılabilir"));
}

void PhotosBundleLibrary::registerChangeObserver(LibraryChangeObserver& observer) {
    watch_.observe(observer);
}

void PhotosBundleLibrary::unregisterChangeObserver(LibraryChangeObserver& observer) {
    watch_.unobserve(observer);
}

ChangeWatch::Found PhotosBundleLibrary::look() {
    const int version = query(Freshness::current, [this](Opened&) { return version_; });
    const bool changed = version != std::exchange(announced_, version);
    return {changed, false, {(bundle_ / databaseInside).parent_path()}};
}

QString PhotosBundleLibrary::captionOf(const QString& localIdentifier) {
    if (!sendsCaptions_)
        return {};
    return query(Freshness::asLastRead, [&](Opened& opened) {
        return opened.database.captionOf(uuidOf(localIdentifier, assetTail)).trimmed();
    });
}

std::optional<AssetFacts> PhotosBundleLibrary::factsOf(const QString& localIdentifier) {
    return query(Freshness::asLastRead, [&](Opened& opened) -> std::optional<AssetFacts> {
        const auto asset = opened.database.asset(uuidOf(localIdentifier, assetTail));
        return asset ? std::optional(asset->facts()) : std::nullopt;
    });
}

} // namespace quorvane

#include "platform/folder/FolderLibrary.h"

#include "library/FileExport.h"
#include "library/LocalIdentifier.h"
#include "platform/folder/FolderScanner.h"
#include "platform/folder/FolderTrash.h"

#include <algorithm>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

using namespace localIdentifier;

QString identifierText(const QUuid& identifier, const QString& tail) {
    return identifier.toString(QUuid::WithoutBraces).toUpper() + tail;
}

/// Null when the text is no identifier with that tail.
QUuid identifierFrom(const QString& text, const QString& tail) {
    return QUuid::fromString(uuidOf(text, tail));
}

PhotoAsset assetOf(const FolderFile& file) {
    PhotoAsset asset;
    asset.localIdentifier = identifierText(file.identifier, assetTail);
    asset.mediaType = mediaTypeOfName(file.path);
    asset.modificationDate =
        Date(std::chrono::duration_cast<Date::duration>(std::chrono::nanoseconds(file.modified)));
    return asset;
}

AssetFetchResult assetsOf(const FolderIndex& index) {
    auto assets = std::make_shared<std::vector<PhotoAsset>>();
    assets->reserve(index.files().size());
    std::ranges::transform(index.files(), std::back_inserter(*assets), assetOf);
    return assets;
}

AssetFetchResult assetsOf(const FolderIndex& index, const QUuid& album) {
    auto assets = std::make_shared<std::vector<PhotoAsset>>();
    if (const Folder* folder = index.album(album))
        for (const std::size_t position : folder->files)
            assets->push_back(assetOf(index.files()[position]));
    return assets;
}

/// When the file last got its content or its name: also a file that took another's place, whatever
/// modification time it brought along.
std::optional<Date> lastChange(const std::filesystem::path& file) {
    struct stat status {};
    if (::lstat(file.c_str(), &status) != 0)
        return std::nullopt;
    const auto seconds = std::max(status.st_mtim.tv_sec, status.st_ctim.tv_sec);
    return Date(std::chrono::seconds(seconds));
}

QString titleOf(const Folder& folder) {
    return pathText(std::filesystem::path(folder.path).filename());
}

AssetCollection albumOf(const Folder& folder) {
    return {identifierText(folder.albumIdentifier, albumTail), titleOf(folder),
            CollectionType::album, collectionSubtype::albumRegular,
            static_cast<int>(folder.files.size())};
}

CollectionList listOf(const Folder& folder) {
    return {identifierText(folder.listIdentifier, folderTail), titleOf(folder),
            CollectionListType::folder};
}

std::vector<Collection> collectionsIn(const FolderIndex& index, const Folder& parent) {
    std::vector<Collection> collections;
    for (const std::size_t position : parent.folders) {
        const Folder& folder = index.folders()[position];
        if (folder.isAlbum())
            collections.emplace_back(albumOf(folder));
        if (index.isList(folder))
            collections.emplace_back(listOf(folder));
    }
    return collections;
}

} // namespace

FolderLibrary::FolderLibrary(std::filesystem::path root, DeletionConfirmation& confirmation,
                             Log& log, const WatchTimes& times)
    : root_(std::move(root)),
      library_(folderLibraryIdentifier(root_)),
      confirmation_(confirmation),
      log_(log),
      watch_(
          QStringLiteral("[FolderLibrary]"), FolderNotifier::Events::entries,
          [this](bool told, const std::stop_token& stop) { return look(told, stop); }, fetches_,
          log, times) {}

AuthorizationStatus FolderLibrary::authorizationStatus() const {
    if (root_.empty())
        return AuthorizationStatus::notDetermined;
    std::error_code error;
    if (!std::filesystem::is_directory(root_, error) || ::access(root_.c_str(), R_OK | X_OK) != 0)
        return AuthorizationStatus::denied;
    return ::access(root_.c_str(), W_OK) == 0 ? AuthorizationStatus::authorized
                                              : AuthorizationStatus::limited;
}

FolderLibrary::Index FolderLibrary::scan(const std::stop_token& stop) {
    const auto report = [this](const std::string& path, const QString& reason) {
        reportSkip(path, reason);
    };
    Index index = std::make_shared<const FolderIndex>(scanFolder(root_, report, stop));
    const std::lock_guard lock(mutex_);
    if (!index_ || *index_ != *index) // the same index tells that nothing changed
        index_.swap(index);
    return index_;
}

FolderLibrary::Index FolderLibrary::lastScan() {
    {
        const std::lock_guard lock(mutex_);
        if (index_)
            return index_;
    }
    return scan();
}

FolderLibrary::Index FolderLibrary::current() {
    const Index index = lastScan();
    return index->isOutdated(root_) ? scan() : index;
}

std::optional<std::filesystem::path> FolderLibrary::find(const QString& localIdentifier) {
    const QUuid identifier = identifierFrom(localIdentifier, assetTail);
    if (identifier.isNull())
        return std::nullopt;
    const auto pathIn = [&](const Index& index) -> std::optional<std::filesystem::path> {
        const FolderFile* file = index->file(identifier);
        struct stat status {};
        if (!file || ::lstat((root_ / file->path).c_str(), &status) != 0 ||
            !S_ISREG(status.st_mode))
            return std::nullopt;
        return file->path;
    };
    const Index index = lastScan();
    if (auto path = pathIn(index))
        return path;
    const Index newer = current();
    return newer == index ? std::nullopt : pathIn(newer);
}

void FolderLibrary::reportSkip(const std::string& path, const QString& reason) {
    {
        const std::lock_guard lock(mutex_);
        if (!reported_.insert(path).second)
            return;
    }
    QString name = pathText(path);
    name.replace(u'\n', u' ');
    log_.log(QStringLiteral("[FolderLibrary] Atlandı: %1 (%2)").arg(name, reason));
}

template <typename List>
AssetFetchResult FolderLibrary::remember(const Index& index, List list) {
    return fetches_.remember(
        list(*index), [this, list, seen = std::weak_ptr(index)]() mutable -> AssetFetchResult {
            const Index now = lastScan();
            if (now == seen.lock())
                return nullptr;
            seen = now;
            return list(*now);
        });
}

AssetFetchResult FolderLibrary::fetchAssets() {
    return remember(scan(), [](const FolderIndex& index) { return assetsOf(index); });
}

AssetFetchResult FolderLibrary::fetchAssets(const AssetCollection& collection) {
    const QUuid album = identifierFrom(collection.localIdentifier, albumTail);
    return remember(current(),
                    [album](const FolderIndex& index) { return assetsOf(index, album); });
}

AssetFetchResult FolderLibrary::fetchAssets(const QStringList& localIdentifiers) {
    auto assets = std::make_shared<std::vector<PhotoAsset>>();
    for (const QString& identifier : localIdentifiers) {
        const auto path = find(identifier);
        if (!path)
            continue;
        assets->push_back(
            assetOf({path->native(), folderFileIdentifier(library_, path->native()), 0}));
        assets->back().modificationDate = lastChange(root_ / *path);
    }
    return assets;
}

std::vector<AssetCollection> FolderLibrary::fetchAssetCollections(CollectionType type,
                                                                  std::optional<int> subtype) {
    std::vector<AssetCollection> albums;
    if (type != CollectionType::album ||
        subtype.value_or(collectionSubtype::albumRegular) != collectionSubtype::albumRegular)
        return albums;
    const Index index = current(); // outlives the loop over it
    for (const Folder& folder : index->folders())
        if (folder.isAlbum())
            albums.push_back(albumOf(folder));
    return albums;
}

std::optional<AssetCollection> FolderLibrary::fetchAssetCollection(const QString& localIdentifier) {
    const Index index = current();
    const Folder* folder = index->album(identifierFrom(localIdentifier, albumTail));
    return folder ? std::optional(albumOf(*folder)) : std::nullopt;
}

std::vector<Collection> FolderLibrary::fetchTopLevelUserCollections() {
    const Index index = current();
    return collectionsIn(*index, index->folders().front());
}

std::vector<CollectionList> FolderLibrary::fetchCollectionLists(CollectionListType type) {
    std::vector<CollectionList> lists;
    if (type != CollectionListType::folder)
        return lists;
    const Index index = lastScan();
    for (const Folder& folder : index->folders())
        if (!folder.path.empty() && index->isList(folder))
            lists.push_back(listOf(folder));
    return lists;
}

std::vector<Collection> FolderLibrary::fetchCollections(const CollectionList& list) {
    const Index index = lastScan();
    const Folder* folder = index->list(identifierFrom(list.localIdentifier, folderTail));
    return folder ? collectionsIn(*index, *folder) : std::vector<Collection>();
}

std::vector<PhotoAssetResource> FolderLibrary::assetResources(const PhotoAsset& asset) {
    const auto path = find(asset.localIdentifier);
    std::error_code error;
    const auto size = path ? std::filesystem::file_size(root_ / *path, error) : 0;
    if (!path || error)
        return {};
    const bool isMovie = mediaTypeOfName(*path) == AssetMediaType::video;
    const QString name = pathText(path->filename());
    return {{isMovie ? AssetResourceType::video : AssetResourceType::photo,
             resourceFilename(name, name), static_cast<std::int64_t>(size), *path}};
}

void FolderLibrary::writeData(const PhotoAssetResource& resource,
                              const std::filesystem::path& destination, std::stop_token stop) {
    exportFile(openOriginalBeneath(root_, resource.location), root_ / resource.location,
               destination, stop);
}

void FolderLibrary::deleteAssets(const std::vector<PhotoAsset>& assets) {
    if (assets.empty())
        return;
    if (authorizationStatus() != AuthorizationStatus::authorized)
        throw PhotoLibraryError(
            QStringLiteral("Resim klasörü yazılabilir değil: %1").arg(pathText(root_)));
    std::vector<std::filesystem::path> files;
    for (const PhotoAsset& asset : assets) {
        const auto path = find(asset.localIdentifier);
        if (!path)
            throw PhotoLibraryError(QStringLiteral("Silinecek dosya kitaplıkta bulunamadı: %1")
                                        .arg(asset.localIdentifier));
        if (std::ranges::find(files, *path) == files.end())
            files.push_back(*path);
    }
    if (!confirmation_.confirmDeletion(static_cast<int>(files.size())))
        throw PhotoLibraryError(QStringLiteral("Silme onayı verilmedi"));
    moveToTrash(root_, files);
}

void FolderLibrary::registerChangeObserver(LibraryChangeObserver& observer) {
    watch_.observe(observer);
}

void FolderLibrary::unregisterChangeObserver(LibraryChangeObserver& observer) {
    watch_.unobserve(observer);
}

ChangeWatch::Found FolderLibrary::look(bool told, const std::stop_token& stop) {
    Index index = told ? scan(stop) : lastScan();
    if (!told && (index->hasUnfinished() || index->isOutdated(root_)))
        index = scan(stop);
    ChangeWatch::Found found;
    found.changed = announced_.lock() != index;
    found.unfinished = index->hasUnfinished();
    found.folders.reserve(index->folders().size());
    for (const Folder& folder : index->folders())
        found.folders.push_back(root_ / folder.path);
    announced_ = index;
    return found;
}

std::optional<AssetFacts> FolderLibrary::factsOf(const QString& localIdentifier) {
    return find(localIdentifier) ? std::optional(AssetFacts()) : std::nullopt;
}

} // namespace quorvane

#include "FakePhotoLibrary.h"

#include "foundation/File.h"

#include <algorithm>

namespace quorvane::test {

namespace {

class FakeChange final : public LibraryChange {
  public:
    explicit FakeChange(FetchResultChangeDetails details) : details_(std::move(details)) {}
    std::optional<FetchResultChangeDetails> changeDetails(const AssetFetchResult&) const override {
        return details_;
    }

  private:
    FetchResultChangeDetails details_;
};

AssetFetchResult resultOf(std::vector<PhotoAsset> assets) {
    return std::make_shared<const std::vector<PhotoAsset>>(std::move(assets));
}

} // namespace

void FakePhotoLibrary::add(const QString& identifier, const QString& filename,
                           AssetMediaType mediaType, std::uint32_t subtypes,
                           AssetResourceType resourceType) {
    PhotoAsset asset;
    asset.localIdentifier = identifier;
    asset.mediaType = mediaType;
    asset.mediaSubtypes = subtypes;
    add({asset, {{resourceType, filename, std::nullopt, {}}}, "bytes of " + filename.toUtf8()});
}

void FakePhotoLibrary::add(Entry entry) {
    for (PhotoAssetResource& resource : entry.resources)
        resource.location = pathFrom(entry.asset.localIdentifier);
    const std::lock_guard lock(mutex_);
    entries_.push_back(std::move(entry));
}

void FakePhotoLibrary::remove(const QString& identifier) {
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_,
                  [&](const Entry& entry) { return entry.asset.localIdentifier == identifier; });
}

std::vector<PhotoAsset> FakePhotoLibrary::assets() const {
    const std::lock_guard lock(mutex_);
    std::vector<PhotoAsset> all;
    for (const Entry& entry : entries_)
        all.push_back(entry.asset);
    return all;
}

void FakePhotoLibrary::announce(const std::vector<PhotoAsset>& inserted,
                                const std::vector<PhotoAsset>& removed) {
    if (auto* observer = observer_.load())
        observer->photoLibraryDidChange(FakeChange({resultOf(assets()), inserted, removed, {}}));
}

QStringList FakePhotoLibrary::exported() const {
    const std::lock_guard lock(mutex_);
    return exported_;
}

void FakePhotoLibrary::requireReadable() const {
    if (unreadable)
        throw PhotoLibraryError(*unreadable);
}

AssetFetchResult FakePhotoLibrary::fetchAssets() {
    requireReadable();
    return resultOf(assets());
}

AssetFetchResult FakePhotoLibrary::fetchAssets(const AssetCollection& collection) {
    return fetchAssets(inAlbum[collection.localIdentifier]);
}

AssetFetchResult FakePhotoLibrary::fetchAssets(const QStringList& localIdentifiers) {
    requireReadable();
    const std::vector<PhotoAsset> all = assets();
    std::vector<PhotoAsset> found;
    for (const QString& identifier : localIdentifiers)
        std::ranges::copy_if(all, std::back_inserter(found), [&](const PhotoAsset& asset) {
            return asset.localIdentifier == identifier;
        });
    return resultOf(std::move(found));
}

std::vector<AssetCollection> FakePhotoLibrary::fetchAssetCollections(CollectionType type,
                                                                     std::optional<int> subtype) {
    std::vector<AssetCollection> found;
    std::ranges::copy_if(albums, std::back_inserter(found), [&](const AssetCollection& album) {
        return album.type == type && (!subtype || album.subtype == *subtype);
    });
    return found;
}

std::optional<AssetCollection>
FakePhotoLibrary::fetchAssetCollection(const QString& localIdentifier) {
    const auto album =
        std::ranges::find(albums, localIdentifier, &AssetCollection::localIdentifier);
    return album == albums.end() ? std::nullopt : std::optional(*album);
}

std::vector<CollectionList> FakePhotoLibrary::fetchCollectionLists(CollectionListType type) {
    std::vector<CollectionList> found;
    std::ranges::copy_if(lists, std::back_inserter(found),
                         [&](const CollectionList& list) { return list.type == type; });
    return found;
}

std::vector<Collection> FakePhotoLibrary::fetchCollections(const CollectionList& list) {
    return inList[list.localIdentifier];
}

std::vector<PhotoAssetResource> FakePhotoLibrary::assetResources(const PhotoAsset& asset) {
    const std::lock_guard lock(mutex_);
    for (const Entry& entry : entries_)
        if (entry.asset.localIdentifier == asset.localIdentifier)
            return entry.resources;
    return {};
}

void FakePhotoLibrary::writeData(const PhotoAssetResource& resource,
                                 const std::filesystem::path& destination, std::stop_token stop) {
    QByteArray bytes;
    {
        const std::lock_guard lock(mutex_);
        const QString identifier = pathText(resource.location);
        exported_.append(identifier);
        for (const Entry& entry : entries_)
            if (entry.asset.localIdentifier == identifier)
                bytes = entry.bytes;
    }
    if (onExport)
        onExport();
    if (stop.stop_requested())
        throw Cancelled();
    replaceFile(destination, bytes);
}

void FakePhotoLibrary::deleteAssets(const std::vector<PhotoAsset>& assets) {
    if (onDelete)
        onDelete();
    for (const PhotoAsset& asset : assets)
        remove(asset.localIdentifier);
}

void FakePhotoLibrary::registerChangeObserver(LibraryChangeObserver& observer) {
    observer_ = &observer;
}

void FakePhotoLibrary::unregisterChangeObserver(LibraryChangeObserver& observer) {
    LibraryChangeObserver* expected = &observer;
    observer_.compare_exchange_strong(expected, nullptr);
}

std::optional<AssetFacts> FakePhotoLibrary::factsOf(const QString& localIdentifier) {
    const AssetFetchResult found = fetchAssets(QStringList{localIdentifier});
    return found->empty() ? std::nullopt : std::optional(found->front().facts());
}

} // namespace quorvane::test

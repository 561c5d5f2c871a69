#include "FakePhotoLibrary.h"

#include "foundation/Crypto.h"
#include "foundation/File.h"

#include <algorithm>
#include <cerrno>

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

SourceContent contentOf(const FakePhotoLibrary::Entry& entry) {
    return {QString::fromLatin1(Sha256::digest(entry.bytes).toHex()), entry.version};
}

} // namespace

void FakePhotoLibrary::add(const QString& identifier, const QString& filename,
                           AssetMediaType mediaType, std::uint32_t subtypes,
                           AssetResourceType resourceType) {
    PhotoAsset asset;
    asset.localIdentifier = identifier;
    asset.mediaType = mediaType;
    asset.mediaSubtypes = subtypes;
    add({asset, {{resourceType, filename, std::nullopt, {}}}, "bytes of " + filename.toUtf8(), {}});
}

void FakePhotoLibrary::add(Entry entry) {
    for (PhotoAssetResource& resource : entry.resources)
        if (resource.location.empty())
            resource.location = pathFrom(entry.asset.localIdentifier);
    const std::lock_guard lock(mutex_);
    ++changes_;
    entry.version = {entry.bytes.size(), changes_, changes_, static_cast<std::uint64_t>(changes_)};
    entries_.push_back(std::move(entry));
}

void FakePhotoLibrary::replace(const QString& identifier, const QByteArray& bytes) {
    Entry entry = entryOf(identifier).value();
    entry.bytes = bytes;
    remove(identifier);
    add(std::move(entry));
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

AssetFetchResult FakePhotoLibrary::fetchAssets(std::stop_token) {
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

std::optional<FakePhotoLibrary::Entry> FakePhotoLibrary::entryOf(const QString& identifier) const {
    const std::lock_guard lock(mutex_);
    for (const Entry& entry : entries_)
        if (entry.asset.localIdentifier == identifier)
            return entry;
    return std::nullopt;
}

std::vector<PhotoAssetResource> FakePhotoLibrary::assetResources(const PhotoAsset& asset) {
    const auto entry = entryOf(asset.localIdentifier);
    return entry ? entry->resources : std::vector<PhotoAssetResource>();
}

SourceContent FakePhotoLibrary::writeData(const PhotoAssetResource& resource,
                                          const std::filesystem::path& destination,
                                          std::stop_token stop) {
    const QString identifier = pathText(resource.location);
    const Entry entry = entryOf(identifier).value_or(Entry());
    {
        const std::lock_guard lock(mutex_);
        exported_.append(identifier);
    }
    if (onExport)
        onExport();
    if (stop.stop_requested())
        throw Cancelled();
    if (std::filesystem::exists(destination))
        throw FileError(QStringLiteral("Dosya kopyalanamadı"), destination, EEXIST);
    replaceFile(destination, entry.bytes);
    return contentOf(entry);
}

SourceContent FakePhotoLibrary::readContent(const PhotoAssetResource& resource, std::stop_token) {
    const auto entry = entryOf(pathText(resource.location));
    if (!entry)
        throw PhotoLibraryError(QStringLiteral("Özgün dosya yok"));
    return contentOf(*entry);
}

std::optional<std::int64_t> FakePhotoLibrary::sampleOf(const PhotoAssetResource& resource) {
    const auto entry = entryOf(pathText(resource.location));
    return entry ? std::optional(std::int64_t{entry->bytes.size()}) : std::nullopt;
}

std::optional<FileVersion> FakePhotoLibrary::versionOf(const PhotoAssetResource& resource) {
    const auto entry = entryOf(pathText(resource.location));
    return entry ? std::optional(entry->version) : std::nullopt;
}

void FakePhotoLibrary::deleteAssets(const std::vector<DeletionCandidate>& candidates,
                                    DeletionQuestion question, DeletionGuard& guard,
                                    std::stop_token stop) {
    asked = std::move(question);
    if (onDelete)
        onDelete();
    for (auto from = candidates.begin(); from != candidates.end() && !stop.stop_requested();) {
        const auto to = from + std::min(candidates.end() - from,
                                        static_cast<std::ptrdiff_t>(DeletionGuard::atOnce));
        for (const DeletionCandidate& candidate : guard.stillSafe({from, to})) {
            const QString& identifier = candidate.asset.localIdentifier;
            try {
                if (contentOf(entryOf(identifier).value()).sha256 != candidate.source.sha256)
                    throw PhotoLibraryError(QStringLiteral("değişmiş"));
                guard.willDelete(candidate);
            } catch (const Error& error) {
                guard.leftOut(candidate, error.localizedDescription());
                continue;
            }
            if (onRemoval)
                onRemoval(identifier);
            remove(identifier);
            guard.didDelete(candidate);
        }
        from = to;
    }
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

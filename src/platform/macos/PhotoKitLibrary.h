#pragma once

#include "library/DeletionConfirmation.h"
#include "platform/macos/PhotoKitChanges.h"

namespace quorvane {

/// The Photos library of this Mac, through PhotoKit (macOS 11 or later). Originals that lie in
/// iCloud only are fetched when they are read. Any thread; no fetch needs the main one.
class PhotoKitLibrary final : public PhotoLibrary {
  public:
    /// `confirmation` is asked only for what PhotoKit's own question cannot say: its warnings.
    PhotoKitLibrary(DeletionConfirmation& confirmation, Log& log);

    /// Has the system ask the person unless they answered before. Blocks until they do; none when
    /// stopped first.
    static std::optional<AuthorizationStatus> requestAuthorization(const std::stop_token& stop);
    AuthorizationStatus authorizationStatus() const override;

    AssetFetchResult fetchAssets(std::stop_token stop = {}) override;
    AssetFetchResult fetchAssets(const AssetCollection& collection) override;
    AssetFetchResult fetchAssets(const QStringList& localIdentifiers) override;

    std::vector<AssetCollection> fetchAssetCollections(CollectionType type,
                                                       std::optional<int> subtype) override;
    std::optional<AssetCollection> fetchAssetCollection(const QString& localIdentifier) override;
    std::vector<Collection> fetchTopLevelUserCollections() override;
    std::vector<CollectionList> fetchCollectionLists(CollectionListType type) override;
    std::vector<Collection> fetchCollections(const CollectionList& list) override;

    std::vector<PhotoAssetResource> assetResources(const PhotoAsset& asset) override;
    /// The copy gets the asset's modification date.
    SourceContent writeData(const PhotoAssetResource& resource,
                            const std::filesystem::path& destination,
                            std::stop_token stop) override;
    SourceContent readContent(const PhotoAssetResource& resource, std::stop_token stop) override;
    /// None: PhotoKit has no part of a file without what lies before it.
    std::optional<std::int64_t> sampleOf(const PhotoAssetResource& resource) override;
    std::optional<FileVersion> versionOf(const PhotoAssetResource& resource) override;

    /// PhotoKit removes all of them at once, and its own question comes right before: so the bytes
    /// are proven and the guard is asked before the person is. A stop during the question leaves
    /// its outcome to whoever settles interrupted removals.
    void deleteAssets(const std::vector<DeletionCandidate>& candidates, DeletionQuestion question,
                      DeletionGuard& guard, std::stop_token stop) override;

    void registerChangeObserver(LibraryChangeObserver& observer) override;
    void unregisterChangeObserver(LibraryChangeObserver& observer) override;

    std::optional<AssetFacts> factsOf(const QString& localIdentifier) override;

  private:
    /// PhotoKit shows whom it refuses an empty library. Throws `PhotoLibraryError` instead.
    void requireReadable() const;

    DeletionConfirmation& confirmation_;
    PhotoKitChanges changes_;
};

} // namespace quorvane

#pragma once

#include "foundation/Log.h"
#include "library/DeletionConfirmation.h"
#include "library/LiveFetches.h"
#include "platform/folder/FolderIndex.h"
#include "platform/watch/ChangeWatch.h"

#include <mutex>
#include <set>

namespace quorvane {

/// A plain folder tree of pictures as a photo library. A picture is identified by the library and
/// its path in it (a version 5 UUID, RFC 4122): in a tree that moved all pictures are new, and
/// Google knows their bytes. A folder with pictures is an album of them; a folder with sub-folders
/// is a list of albums. The library knows no dates and no places: what stands in the files decides.
/// A file that is being written is not there before it was closed. Originals are only read, and
/// only the Trash takes them away. Any thread.
class FolderLibrary final : public PhotoLibrary {
  public:
    /// `root` empty: no library was chosen yet.
    FolderLibrary(std::filesystem::path root, DeletionConfirmation& confirmation, Log& log,
                  const WatchTimes& times = {});

    AuthorizationStatus authorizationStatus() const override;

    /// Scans the tree. By modification time, then path.
    AssetFetchResult fetchAssets() override;
    AssetFetchResult fetchAssets(const AssetCollection& collection) override;
    AssetFetchResult fetchAssets(const QStringList& localIdentifiers) override;

    std::vector<AssetCollection> fetchAssetCollections(CollectionType type,
                                                       std::optional<int> subtype) override;
    std::optional<AssetCollection> fetchAssetCollection(const QString& localIdentifier) override;
    std::vector<Collection> fetchTopLevelUserCollections() override;
    std::vector<CollectionList> fetchCollectionLists(CollectionListType type) override;
    std::vector<Collection> fetchCollections(const CollectionList& list) override;

    std::vector<PhotoAssetResource> assetResources(const PhotoAsset& asset) override;
    void writeData(const PhotoAssetResource& resource, const std::filesystem::path& destination,
                   std::stop_token stop) override;
    void deleteAssets(const std::vector<PhotoAsset>& assets) override;

    void registerChangeObserver(LibraryChangeObserver& observer) override;
    void unregisterChangeObserver(LibraryChangeObserver& observer) override;

    std::optional<AssetFacts> factsOf(const QString& localIdentifier) override;

  private:
    using Index = std::shared_ptr<const FolderIndex>;

    /// The index before when nothing changed.
    Index scan(const std::stop_token& stop = {});
    /// The last scan; a new one when there is none.
    Index lastScan();
    /// The same, but a new one also when a folder changed since.
    Index current();
    /// The file's path inside the library; none when no such file is there (any more).
    std::optional<std::filesystem::path> find(const QString& localIdentifier);
    /// Lists an index, and each that follows it when the list is fetched again.
    template <typename List>
    AssetFetchResult remember(const Index& index, List list);
    ChangeWatch::Found look(bool told, const std::stop_token& stop);
    void reportSkip(const std::string& path, const QString& reason);

    const std::filesystem::path root_;
    const QUuid library_;
    DeletionConfirmation& confirmation_;
    Log& log_;
    std::mutex mutex_; ///< never held while the disk is read
    Index index_;
    std::set<std::string> reported_; ///< each skipped path is logged once
    LiveFetches fetches_;
    std::weak_ptr<const FolderIndex> announced_; ///< the watching thread's: told to the observer
    ChangeWatch watch_;                          ///< last: its thread uses the rest
};

} // namespace quorvane

#pragma once

#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "library/DeletionConfirmation.h"
#include "library/LiveFetches.h"
#include "platform/folder/FileRecognition.h"
#include "platform/folder/FolderIndex.h"
#include "platform/watch/ChangeWatch.h"

#include <condition_variable>
#include <set>

namespace quorvane {

/// A plain folder tree of pictures as a photo library. A picture is one version of a file: it keeps
/// its identifier wherever it is moved in the library, and a file that was edited or replaced is
/// another picture. A folder with pictures is an album of them; a folder with sub-folders
/// is a list of albums. The library knows no dates and no places: what stands in the files decides.
/// A file that is being written is not there before it was closed. Originals are only read, and
/// only the Trash takes them away. Any thread.
class FolderLibrary final : public PhotoLibrary {
  public:
    /// `root` empty: no library was chosen yet.
    FolderLibrary(std::filesystem::path root, KnownFiles& known, DeletionConfirmation& confirmation,
                  Log& log, const WatchTimes& times = {});

    AuthorizationStatus authorizationStatus() const override;

    /// Scans the tree, and reads the files of which only the bytes can tell what they are. By
    /// modification time, then path. Throws also what `known` throws.
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
    SourceContent writeData(const PhotoAssetResource& resource,
                            const std::filesystem::path& destination,
                            std::stop_token stop) override;
    SourceContent readContent(const PhotoAssetResource& resource, std::stop_token stop) override;
    std::optional<std::int64_t> sampleOf(const PhotoAssetResource& resource) override;
    std::optional<FileVersion> versionOf(const PhotoAssetResource& resource) override;
    void deleteAssets(const std::vector<DeletionCandidate>& candidates, DeletionQuestion question,
                      DeletionGuard& guard, std::stop_token stop) override;
    LeftOut leftOut() const override;

    void registerChangeObserver(LibraryChangeObserver& observer) override;
    void unregisterChangeObserver(LibraryChangeObserver& observer) override;

    std::optional<AssetFacts> factsOf(const QString& localIdentifier) override;

  private:
    using Index = std::shared_ptr<const FolderIndex>;
    class ScanTurn;
    struct State {
        bool isScanning = false;
        Index index; ///< of the last scan; only a scan changes it
        LeftOut leftOut;
        std::set<std::string> reported; ///< each skipped path is logged once
    };

    /// The index before when nothing changed. One at a time.
    Index scan(const std::stop_token& stop = {});
    KnownByPath knownByPath();
    /// Gives the files found their identifiers, and remembers what is different. Returns what is
    /// known and not there.
    std::vector<KnownFile> recognise(FolderScan& found, const KnownByPath& known,
                                     const std::stop_token& stop);
    std::optional<SourceContent> read(const std::string& path, LeftOut& leftOut,
                                      const std::stop_token& stop);
    /// The last scan; a new one when there is none.
    Index lastScan();
    /// The same, but a new one also when a folder changed since.
    Index current();
    /// The file that goes by the identifier, at its path inside the library; none when it is not
    /// there (any more).
    std::optional<KnownFile> find(const QString& localIdentifier);
    /// Lists an index, and each that follows it when the list is fetched again.
    template <typename List>
    AssetFetchResult remember(const Index& index, List list);
    ChangeWatch::Found look(bool told, const std::stop_token& stop);
    void reportSkip(const std::string& path, const QString& reason);
    void reportOthers(const FolderScan& found);

    const std::filesystem::path root_;
    const QString identity_; ///< an empty folder of another one is what a disk is mounted on
    KnownFiles& known_;
    DeletionConfirmation& confirmation_;
    Log& log_;
    Guarded<State> state_; ///< never locked while the disk is read
    std::condition_variable_any scanEnded_;
    /// The scanning thread's: what is known and not in the index; all of it before the first scan.
    std::optional<std::vector<KnownFile>> absent_;
    int othersReported_ = 0; ///< the scanning thread's
    LiveFetches fetches_;
    std::weak_ptr<const FolderIndex> announced_; ///< the watching thread's: told to the observer
    ChangeWatch watch_;                          ///< last: its thread uses the rest
};

} // namespace quorvane

#pragma once

#include "foundation/Guarded.h"
#include "library/LiveFetches.h"
#include "platform/bundle/BundleLayout.h"
#include "platform/watch/ChangeWatch.h"
#include "sqlite/DatabaseSnapshot.h"

#include <atomic>
#include <mutex>

namespace quorvane {

/// An Apple Photos library on a disk (`*.photoslibrary`, of macOS 10.15 or later) as a photo
/// library. It is never written: its database is read from a private copy, which is made anew when
/// the original was changed, and deletion is refused. Any thread.
class PhotosBundleLibrary final : public PhotoLibrary {
  public:
    /// `bundle` empty: no library was chosen yet. The copy of the database is kept in a private
    /// folder below `workFolder`. Nothing is read before the first fetch.
    PhotosBundleLibrary(std::filesystem::path bundle, std::filesystem::path workFolder, Log& log,
                        const WatchTimes& times = {});

    static bool looksLikeBundle(const std::filesystem::path& path);

    /// Tells this library from every other: what Photos calls it, else what the file system says of
    /// it. Empty when neither can be read.
    QString identity();

    /// What was chosen for the library holds from now on.
    void use(const LibraryChoices& choices);

    AuthorizationStatus authorizationStatus() const override;

    AssetFetchResult fetchAssets(std::stop_token stop = {}) override;
    AssetFetchResult fetchAssets(const AssetCollection& collection) override;
    AssetFetchResult fetchAssets(const QStringList& localIdentifiers) override;

    /// Albums, shared albums and import sessions; smart albums as far as an asset's own row decides
    /// them, and the person's own, whose members only Photos knows, as empty.
    std::vector<AssetCollection> fetchAssetCollections(CollectionType type,
                                                       std::optional<int> subtype) override;
    std::optional<AssetCollection> fetchAssetCollection(const QString& localIdentifier) override;
    std::vector<Collection> fetchTopLevelUserCollections() override;
    std::vector<CollectionList> fetchCollectionLists(CollectionListType type) override;
    std::vector<Collection> fetchCollections(const CollectionList& list) override;

    std::vector<PhotoAssetResource> assetResources(const PhotoAsset& asset) override;
    std::map<QString, AbsentOriginal> absentOriginals(const std::vector<PhotoAsset>& assets,
                                                      std::stop_token stop) override;
    SourceContent writeData(const PhotoAssetResource& resource,
                            const std::filesystem::path& destination,
                            std::stop_token stop) override;
    SourceContent readContent(const PhotoAssetResource& resource, std::stop_token stop) override;
    std::optional<std::int64_t> sampleOf(const PhotoAssetResource& resource) override;
    std::optional<FileVersion> versionOf(const PhotoAssetResource& resource) override;
    /// Always refuses.
    void deleteAssets(const std::vector<DeletionCandidate>& candidates, DeletionQuestion question,
                      DeletionGuard& guard, std::stop_token stop) override;

    void registerChangeObserver(LibraryChangeObserver& observer) override;
    void unregisterChangeObserver(LibraryChangeObserver& observer) override;

    QString captionOf(const QString& localIdentifier) override;
    std::optional<AssetFacts> factsOf(const QString& localIdentifier) override;

  private:
    enum class Freshness { asLastRead, current };

    struct Opened {
        explicit Opened(const std::filesystem::path& copy) : database(copy) {}

        const std::vector<PhotosAlbum>& albums();

        PhotosDatabase database;

      private:
        std::optional<std::vector<PhotosAlbum>> albums_;
    };

    /// Runs `work` on the open database, one caller at a time.
    template <typename Work>
    auto query(Freshness freshness, Work&& work, std::stop_token stop = {});
    void open(Freshness freshness);
    /// Lists the open database, and each that follows it when the list is fetched again.
    template <typename List>
    AssetFetchResult remember(List list, std::stop_token stop = {});
    std::shared_ptr<const BundleLayout> layout() const;
    std::filesystem::path pathOf(const PhotoAssetResource& resource) const;
    FileDescriptor openResource(const PhotoAssetResource& resource) const;
    ChangeWatch::Found look();

    const std::filesystem::path bundle_;
    Guarded<std::shared_ptr<const BundleLayout>> layout_;
    std::atomic<bool> sendsCaptions_ = false;
    /// Held while the database is copied and queried: one connection serves one thread.
    std::mutex mutex_;
    DatabaseSnapshot snapshot_;
    std::optional<Opened> opened_;
    int version_ = 0; ///< how often it was opened
    LiveFetches fetches_;
    int announced_ = 0; ///< the watching thread's: the version the observer was told of
    ChangeWatch watch_; ///< last: its thread uses the rest
};

} // namespace quorvane

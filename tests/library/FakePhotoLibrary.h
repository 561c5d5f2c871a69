#pragma once

#include "library/PhotoLibrary.h"

#include <QByteArray>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>

namespace quorvane::test {

/// A library in memory that also does what a real one does only on a bad day. Any thread.
class FakePhotoLibrary final : public PhotoLibrary {
  public:
    struct Entry {
        PhotoAsset asset;
        std::vector<PhotoAssetResource> resources;
        QByteArray bytes;
        FileVersion version; ///< kept by the library
    };

    /// An asset with one resource.
    void add(const QString& identifier, const QString& filename,
             AssetMediaType mediaType = AssetMediaType::image, std::uint32_t subtypes = 0,
             AssetResourceType resourceType = AssetResourceType::photo);
    void add(Entry entry);
    void remove(const QString& identifier);
    /// Another version of the original takes its place; the same bytes are one, too.
    void replace(const QString& identifier, const QByteArray& bytes);
    std::vector<PhotoAsset> assets() const;
    /// Tells the observer; any fetch result is told to have changed like this.
    void announce(const std::vector<PhotoAsset>& inserted, const std::vector<PhotoAsset>& removed);

    // What may be set before use.
    AuthorizationStatus status = AuthorizationStatus::authorized;
    std::function<void()> onExport; ///< called before a byte is written; may throw
    std::function<void()> onDelete; ///< the dialog; throws when refused
    /// Called when the guard has heard that the asset goes, and before it does.
    std::function<void(const QString& identifier)> onRemoval;
    std::optional<QString> unreadable; ///< every fetch throws this
    std::vector<AssetCollection> albums;
    std::vector<Collection> topLevel;
    std::vector<CollectionList> lists;
    std::map<QString, std::vector<Collection>> inList;
    std::map<QString, QStringList> inAlbum;
    std::map<QString, AbsentOriginal> absent; ///< what no resource of the asset says

    QStringList exported() const;
    DeletionQuestion asked; ///< the last one
    bool hasObserver() const { return observer_ != nullptr; }

    AuthorizationStatus authorizationStatus() const override { return status; }
    AssetFetchResult fetchAssets(std::stop_token stop = {}) override;
    AssetFetchResult fetchAssets(const AssetCollection& collection) override;
    AssetFetchResult fetchAssets(const QStringList& localIdentifiers) override;
    std::vector<AssetCollection> fetchAssetCollections(CollectionType type,
                                                       std::optional<int> subtype) override;
    std::optional<AssetCollection> fetchAssetCollection(const QString& localIdentifier) override;
    std::vector<Collection> fetchTopLevelUserCollections() override { return topLevel; }
    std::vector<CollectionList> fetchCollectionLists(CollectionListType type) override;
    std::vector<Collection> fetchCollections(const CollectionList& list) override;
    std::vector<PhotoAssetResource> assetResources(const PhotoAsset& asset) override;
    std::map<QString, AbsentOriginal> absentOriginals(const std::vector<PhotoAsset>&,
                                                      std::stop_token) override {
        return absent;
    }
    SourceContent writeData(const PhotoAssetResource& resource,
                            const std::filesystem::path& destination,
                            std::stop_token stop) override;
    SourceContent readContent(const PhotoAssetResource& resource, std::stop_token stop) override;
    std::optional<std::int64_t> sampleOf(const PhotoAssetResource& resource) override;
    std::optional<FileVersion> versionOf(const PhotoAssetResource& resource) override;
    void deleteAssets(const std::vector<DeletionCandidate>& candidates, DeletionQuestion question,
                      DeletionGuard& guard, std::stop_token stop) override;
    void registerChangeObserver(LibraryChangeObserver& observer) override;
    void unregisterChangeObserver(LibraryChangeObserver& observer) override;
    std::optional<AssetFacts> factsOf(const QString& localIdentifier) override;

  private:
    void requireReadable() const;
    std::optional<Entry> entryOf(const QString& identifier) const;

    mutable std::mutex mutex_;
    std::vector<Entry> entries_;
    QStringList exported_;
    std::int64_t changes_ = 0;
    std::atomic<LibraryChangeObserver*> observer_ = nullptr;
};

} // namespace quorvane::test

#pragma once

#include "foundation/Date.h"
#include "foundation/Error.h"
#include "metadata/MetadataTypes.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <variant>
#include <vector>

/// The photo library as the product sees it. The vocabulary and the numbers are PhotoKit's, so that
/// its adapter is a translation; a bundle on a disk and a plain folder speak it too.
namespace quorvane {

enum class AuthorizationStatus : int {
    notDetermined = 0, ///< no library was chosen yet
    restricted = 1,
    denied = 2,     ///< gone or unreadable
    authorized = 3, ///< readable and writable
    limited = 4,    ///< read only
};

enum class AssetMediaType : int { unknown = 0, image = 1, video = 2, audio = 3 };

/// Bits of `PhotoAsset::mediaSubtypes`.
inline constexpr std::uint32_t mediaSubtypePhotoLive = 8;

enum class AssetResourceType : int {
    photo = 1,
    video = 2,
    audio = 3,
    alternatePhoto = 4,
    fullSizePhoto = 5,
    fullSizeVideo = 6,
    adjustmentData = 7,
    adjustmentBasePhoto = 8,
    pairedVideo = 9,
    fullSizePairedVideo = 10,
};

struct PhotoAsset {
    QString localIdentifier; ///< "<UUID>/L0/001"
    AssetMediaType mediaType = AssetMediaType::unknown;
    std::uint32_t mediaSubtypes = 0;
    std::optional<Date> creationDate;
    std::optional<Date> modificationDate; ///< of the asset's content, where the library knows it
    std::optional<GeoLocation> location;

    bool operator==(const PhotoAsset&) const = default;
    AssetFacts facts() const { return {creationDate, location}; }
};

/// One file of an asset.
struct PhotoAssetResource {
    AssetResourceType type = AssetResourceType::photo;
    QString originalFilename;
    std::optional<std::int64_t> fileSize; ///< bytes; absent when the bytes are not on this machine
    std::filesystem::path location;       ///< inside the library; absolute when it lies elsewhere
};

/// An immutable list of assets in the order of the fetch. Shared between threads.
using AssetFetchResult = std::shared_ptr<const std::vector<PhotoAsset>>;

enum class CollectionType : int { album = 1, smartAlbum = 2, moment = 3 };
enum class CollectionListType : int { momentList = 1, folder = 2, smartFolder = 3 };

/// Subtypes of `AssetCollection`, PhotoKit's numbers.
namespace collectionSubtype {
inline constexpr int albumRegular = 2;
inline constexpr int albumSyncedAlbum = 5;
inline constexpr int albumImported = 6;
inline constexpr int albumCloudShared = 101;
inline constexpr int smartAlbumRegular = 200;
inline constexpr int smartAlbumAllHidden = 205;
inline constexpr int smartAlbumUserLibrary = 209;
inline constexpr int smartAlbumUnableToUpload = 216;
} // namespace collectionSubtype

struct AssetCollection {
    QString localIdentifier;
    QString title; ///< empty when the album has none
    CollectionType type = CollectionType::album;
    int subtype = collectionSubtype::albumRegular;
    std::optional<int> estimatedAssetCount;
};

struct CollectionList {
    QString localIdentifier;
    QString title;
    CollectionListType type = CollectionListType::folder;
};

using Collection = std::variant<AssetCollection, CollectionList>;

/// What changed in a fetch result.
struct FetchResultChangeDetails {
    AssetFetchResult fetchResultAfterChanges;
    std::vector<PhotoAsset> insertedObjects;
    std::vector<PhotoAsset> removedObjects;
    std::vector<PhotoAsset> changedObjects; ///< as they are now
};

/// One notification of a changed library.
class LibraryChange {
  public:
    virtual ~LibraryChange() = default;
    /// None when `before` is not affected.
    virtual std::optional<FetchResultChangeDetails>
    changeDetails(const AssetFetchResult& before) const = 0;
};

class LibraryChangeObserver {
  public:
    virtual ~LibraryChangeObserver() = default;
    /// Called on any thread, one call at a time.
    virtual void photoLibraryDidChange(const LibraryChange& change) = 0;
};

/// A library that cannot do what was asked: the original is not on this machine, the library may
/// not be written, the file vanished.
class PhotoLibraryError : public Error {
  public:
    using Error::Error;
};

/// A photo library. All operations may be called from any thread and block; fetches of what is not
/// there yield empty results, and throw `PhotoLibraryError` when the library itself cannot be read.
/// Originals are only ever read. Adapters live in platform/.
class PhotoLibrary : public AssetFactsSource {
  public:
    virtual AuthorizationStatus authorizationStatus() const = 0;

    /// Assets sorted by creation date, oldest first, then by the adapter's own stable order.
    virtual AssetFetchResult fetchAssets() = 0;
    /// In the album's own order.
    virtual AssetFetchResult fetchAssets(const AssetCollection& collection) = 0;
    /// In the order asked for, without those that are not there.
    virtual AssetFetchResult fetchAssets(const QStringList& localIdentifiers) = 0;

    virtual std::vector<AssetCollection> fetchAssetCollections(CollectionType type,
                                                               std::optional<int> subtype) = 0;
    virtual std::optional<AssetCollection> fetchAssetCollection(const QString& localIdentifier) = 0;
    virtual std::vector<Collection> fetchTopLevelUserCollections() = 0;
    virtual std::vector<CollectionList> fetchCollectionLists(CollectionListType type) = 0;
    virtual std::vector<Collection> fetchCollections(const CollectionList& list) = 0;

    /// In PhotoKit's order: the original first.
    virtual std::vector<PhotoAssetResource> assetResources(const PhotoAsset& asset) = 0;

    /// Writes the resource's bytes to `destination`, which must not exist; it appears whole and
    /// flushed, with the original's modification time, or not at all. Throws `PhotoLibraryError`,
    /// `FileError`, or `Cancelled` when `stop` was requested.
    virtual void writeData(const PhotoAssetResource& resource,
                           const std::filesystem::path& destination, std::stop_token stop) = 0;

    /// Asks the person, then removes all the assets, or none. Throws with the reason when the
    /// person or the system refused.
    virtual void deleteAssets(const std::vector<PhotoAsset>& assets) = 0;

    /// At most one observer at a time, another one takes its place; it must outlive its
    /// registration. After `unregister` it is not called any more.
    virtual void registerChangeObserver(LibraryChangeObserver& observer) = 0;
    virtual void unregisterChangeObserver(LibraryChangeObserver& observer) = 0;
};

} // namespace quorvane

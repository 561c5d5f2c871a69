#pragma once

#include "foundation/Date.h"
#include "foundation/Error.h"
#include "foundation/FileVersion.h"
#include "library/DeletionConfirmation.h"
#include "metadata/MetadataTypes.h"
#include "store/AssetIdentifier.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <filesystem>
#include <map>
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
    AssetIdentifier localIdentifier;
    AssetMediaType mediaType = AssetMediaType::unknown;
    std::uint32_t mediaSubtypes = 0;
    std::optional<Date> creationDate;
    std::optional<Date> modificationDate; ///< of the asset's content, where the library knows it
    std::optional<GeoLocation> location;

    bool operator==(const PhotoAsset&) const = default;
    AssetFacts facts() const { return {creationDate, location}; }
};

/// An original that the library knows and this machine does not have.
struct AbsentOriginal {
    enum class Why {
        onlyInCloud, ///< until the person has Photos download it
        elsewhere,   ///< it stands outside the library, at a place that is not here
    };
    Why why = Why::onlyInCloud;
    QString reason; ///< one line, for a person; names the original

    bool operator==(const AbsentOriginal&) const = default;
};

/// One file of an asset.
struct PhotoAssetResource {
    AssetResourceType type = AssetResourceType::photo;
    QString originalFilename;
    std::optional<std::int64_t> fileSize; ///< bytes; absent when the bytes are not on this machine
    std::filesystem::path location;       ///< inside the library; absolute when it lies elsewhere
    std::optional<AbsentOriginal> absence = {}; ///< where the library can tell why
    bool joinsStill = false; ///< the movie of a live photo that is sent inside its still
};

/// The resource that stands for an asset: the first, in the library's order, that is a photo, a
/// video or a full-size photo.
std::optional<PhotoAssetResource> resourceToStage(const std::vector<PhotoAssetResource>& resources);

class PhotoLibrary;

/// The name a person knows an asset by; none when the library does not have it. Throws
/// `PhotoLibraryError`.
std::optional<QString> nameOf(PhotoLibrary& library, const QString& identifier);

/// The movie that is to be sent inside it, if any.
std::optional<PhotoAssetResource> movieToJoin(const std::vector<PhotoAssetResource>& resources);

/// What of an asset stays behind when that resource is sent, with its movie when `joinsMovie`. Bits
/// of `RecordRemainders`.
int remainderOf(const std::vector<PhotoAssetResource>& resources, bool joinsMovie);
inline int remainderOf(const std::vector<PhotoAssetResource>& resources) {
    return remainderOf(resources, movieToJoin(resources).has_value());
}

/// One version of an original: the digest of its bytes, and what its file system says of them. Two
/// versions of the same digest are the same picture, whatever the times.
struct SourceContent {
    QString sha256; ///< 64 lower-case hexadecimal digits
    FileVersion version;
    std::int64_t sample = 0; ///< follows from the size, the beginning and the end of the bytes

    bool operator==(const SourceContent&) const = default;
};

/// What a library left out when it was last listed. The first two are pictures and movies that a
/// person would miss.
struct LeftOut {
    int unreadable = 0; ///< closed by permissions, or a fault of the disk
    int inUse = 0;      ///< being written by another program
    int hidden = 0;     ///< hidden pictures and movies, and links to some
    int otherFiles = 0; ///< neither picture nor movie

    int missed() const { return unreadable + inUse; }
    bool operator==(const LeftOut&) const = default;
};

/// An original whose copy is safe, as far as the store knows.
struct DeletionCandidate {
    PhotoAsset asset;
    SourceContent source; ///< what was staged and sent

    bool operator==(const DeletionCandidate&) const = default;
};

/// Stands beside a library that removes originals. All calls come on the removing thread.
class DeletionGuard {
  public:
    virtual ~DeletionGuard() = default;

    /// Right before they would go, after the person's answer, at most `atOnce` at a time: those
    /// that are still safe elsewhere. The others are left out without a further word.
    virtual std::vector<DeletionCandidate>
    stillSafe(const std::vector<DeletionCandidate>& candidates) = 0;

    /// The very next thing is the removal. What this throws leaves the asset out.
    virtual void willDelete(const DeletionCandidate& candidate) = 0;
    virtual void didDelete(const DeletionCandidate& candidate) = 0;
    /// It stays, and `reason` (one line, for a person) says why.
    virtual void leftOut(const DeletionCandidate& candidate, const QString& reason) = 0;

    static constexpr std::size_t atOnce = 50;
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

    /// The library as a whole is not to be had now: its disk, say, was unplugged.
    static PhotoLibraryError away(const QString& description) {
        return PhotoLibraryError(description, Fault{.code = FaultCode::libraryAway});
    }
};

/// A photo library. All operations may be called from any thread and block; fetches of what is not
/// there yield empty results, and throw `PhotoLibraryError` when the library itself cannot be read.
/// Originals are only ever read. Adapters live in platform/.
class PhotoLibrary : public AssetFactsSource {
  public:
    virtual AuthorizationStatus authorizationStatus() const = 0;

    /// Assets sorted by creation date, oldest first, then by the adapter's own stable order. It may
    /// take as long as reading them all. Throws also `Cancelled`.
    virtual AssetFetchResult fetchAssets(std::stop_token stop = {}) = 0;
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

    /// Those of the assets whose original is known not to be on this machine, by local identifier.
    /// Quick for many. Throws also `Cancelled`.
    virtual std::map<QString, AbsentOriginal> absentOriginals(const std::vector<PhotoAsset>&,
                                                              std::stop_token) {
        return {};
    }

    /// Writes the resource's bytes to `destination`, which must not exist; it appears whole and
    /// flushed, with the original's modification time, or not at all. Returns what was written, as
    /// the original was before and after. Throws `PhotoLibraryError`, `FileError`, or `Cancelled`
    /// when `stop` was requested.
    virtual SourceContent writeData(const PhotoAssetResource& resource,
                                    const std::filesystem::path& destination,
                                    std::stop_token stop) = 0;

    /// The same without writing anything: reads the original from beginning to end.
    virtual SourceContent readContent(const PhotoAssetResource& resource, std::stop_token stop) = 0;

    /// The same originals have the same sample, and hardly any others: read in a moment. None when
    /// it cannot be read.
    virtual std::optional<std::int64_t> sampleOf(const PhotoAssetResource& resource) = 0;

    /// What the file system says of the original now, without reading it; none when it is not
    /// there.
    virtual std::optional<FileVersion> versionOf(const PhotoAssetResource& resource) = 0;

    /// Asks the person once, completing `question` (its warning, and what stays) with what
    /// goes and where, then removes the assets one after another, each only if its bytes are, now,
    /// those of its candidate. What cannot be removed stays and is told to the guard. Throws
    /// `PhotoLibraryError` with the reason when the person or the system refused: nothing was
    /// removed then. A stop leaves the rest.
    virtual void deleteAssets(const std::vector<DeletionCandidate>& candidates,
                              DeletionQuestion question, DeletionGuard& guard,
                              std::stop_token stop) = 0;

    /// Of the last listing of the whole library.
    virtual LeftOut leftOut() const { return {}; }

    /// What the person wrote about the item, where that is to be sent with it; else empty.
    virtual QString captionOf(const QString& /*localIdentifier*/) { return {}; }

    /// At most one observer at a time, another one takes its place; it must outlive its
    /// registration. After `unregister` it is not called any more.
    virtual void registerChangeObserver(LibraryChangeObserver& observer) = 0;
    virtual void unregisterChangeObserver(LibraryChangeObserver& observer) = 0;
};

/// Throws `PhotoLibraryError` when the library is away, or may not be read any more.
void requireThere(const PhotoLibrary& library);

} // namespace quorvane

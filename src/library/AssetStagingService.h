#pragma once

#include "foundation/Console.h"
#include "foundation/UserFolders.h"
#include "library/PhotoLibrary.h"
#include "library/StagingFolder.h"
#include "metadata/MediaMetadataService.h"
#include "store/DatabaseManager.h"

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <set>
#include <stop_token>
#include <vector>

namespace quorvane {

/// The whole file's digest (64 lower-case hexadecimal digits) and its length in bytes.
struct HashAndSize {
    QString sha256;
    std::int64_t sizeBytes = 0;
};

/// The resource that stands for an asset: the first, in the library's order, that is a photo, a
/// video or a full-size photo.
std::optional<PhotoAssetResource> resourceToStage(const std::vector<PhotoAssetResource>& resources);

/// Exports assets into a staging folder, has their capture date made explicit there, and finds and
/// removes the staged files. Any thread; one asset is worked on at a time, whoever asks, and the
/// others wait: an asset's file is never looked for, rewritten or removed while it is being made.
class AssetStagingService {
  public:
    /// Creates both staging folders, mode 0700.
    AssetStagingService(PhotoLibrary& library, DatabaseManager& database,
                        MediaMetadataService& metadata, const UserFolders& folders,
                        Console& console);

    /// Stages the DISCOVERED ones of the oldest ten pending records, one after another. Outcomes go
    /// to the store and the console. Throws `Cancelled` when stopped: the record at hand stays as
    /// it was.
    void stageDiscoveredAssets(std::stop_token stop = {});

    /// The same for these records, whatever their place in the queue.
    void stageDiscoveredAssets(const std::vector<SyncRecord>& records, std::stop_token stop);

    /// True when the asset, or a file of it that can be staged, was missing when last tried.
    bool isUnavailable(const QString& identifier) const;

    /// The asset's staged file; the permanent folder comes before the temporary one.
    std::optional<std::filesystem::path> findStagingFile(const QString& identifier);

    /// Deletes every staged file of the asset; failures are ignored.
    void removeFromStaging(const QString& identifier);

    /// `MediaMetadataService::ensureMetadata` for a staged file, in turn with the staging.
    MetadataResult ensureMetadata(const std::filesystem::path& stagedFile,
                                  const QString& identifier, DateFallbackMode fallbackMode);

    /// Removes the temporary files of runs that died or were stopped. Call once, when no other
    /// process stages.
    void removeLeftovers(const std::stop_token& stop = {});

    const std::filesystem::path& permanentFolder() const { return permanent_.path(); }

    /// Reads in chunks of 1 MiB. Throws `FileError`, or `Cancelled` between two chunks.
    static HashAndSize computeHashAndSize(const std::filesystem::path& file,
                                          std::stop_token stop = {});

  private:
    struct Source {
        PhotoAsset asset;
        PhotoAssetResource resource;
    };

    std::vector<SyncRecord> recordsToStage();
    void stageAsset(const SyncRecord& record, const std::stop_token& stop);
    std::optional<Source> sourceOf(const QString& identifier);
    void exportAndRecord(const SyncRecord& record, const Source& source,
                         const std::stop_token& stop);
    void recordFailure(const SyncRecord& record, const QString& reason);
    void missing(const QString& what, const QString& identifier);
    void printError(const QString& identifier, const QString& reason);
    StagingFolder& folderForStaging();

    PhotoLibrary& library_;
    DatabaseManager& database_;
    MediaMetadataService& metadata_;
    Console& console_;
    mutable std::mutex
        mutex_; ///< held while one asset is exported: that wait is meant to be serial
    StagingFolder permanent_;
    StagingFolder temporary_;
    std::set<QString> unavailable_;
    size_t passes_ = 0;
};

} // namespace quorvane

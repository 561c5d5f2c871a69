#pragma once

#include "foundation/Console.h"
#include "foundation/FileLock.h"
#include "library/PhotoLibrary.h"
#include "library/StagedCopies.h"
#include "metadata/MediaMetadataService.h"
#include "store/KnownContents.h"
#include "store/RecordLife.h"

#include <mutex>
#include <set>

namespace quorvane {

/// A staged file whose bytes are those that its record tells of.
struct StagedFile {
    std::filesystem::path path;
    QString originalName; ///< in the library; empty where only the copy's own is known
    HashAndSize content;
    FileVersion version; ///< as it was when the content was made sure of
};

/// The disk has no room for the next file, not even without the copies that are no longer needed.
class StagingDiskFull : public Error {
  public:
    using Error::Error;
};

/// Exports assets into a staging folder, has their capture date made explicit there, and finds and
/// removes the staged files. Any thread; one asset is worked on at a time, whoever asks, in all of
/// the user's processes, and the others wait: an asset's file is never looked for, rewritten or
/// removed while it is being made.
class AssetStagingService {
  public:
    struct Services {
        PhotoLibrary& library;
        DatabaseManager& database;
        RecordLife& life;
        KnownContents& known;
        MediaMetadataService& metadata;
        Console& console;
    };

    /// Creates both staging folders, mode 0700. `lockFile` is one for all states of the user.
    AssetStagingService(Services services, const StatePlace& place, std::filesystem::path lockFile);

    /// Stages the DISCOVERED ones of the oldest ten pending records, one after another, without
    /// those whose bytes may be at the destination already. Outcomes go to the store and the
    /// console. Throws `Cancelled` when stopped: the record at hand stays as it was.
    void stageDiscoveredAssets(std::stop_token stop = {});

    /// The record's staged file, made anew from the original unless there is one whose bytes are
    /// proven. None when no file came of it: the record failed, or its original is not there now.
    /// Throws `Cancelled`, `DBError`, and `StagingDiskFull`; the record stays pending then.
    std::optional<StagedFile> stage(const SyncRecord& record, const std::stop_token& stop);

    /// The asset's staged file, whatever its bytes.
    std::optional<std::filesystem::path> findStagingFile(const QString& identifier);

    /// Deletes every staged file of the asset; failures are ignored.
    void removeFromStaging(const QString& identifier) noexcept;

    /// The record left the queue unsent: its staged file goes, unless its original is not there as
    /// it was any more. Then it is set aside, and the console says where. False when nobody could
    /// tell: the file stays.
    bool discard(const QString& identifier) noexcept;

    /// The record was sent: its staged file is kept only as long as there is room.
    void wasSent(const QString& identifier) noexcept;

    /// `MediaMetadataService::ensureMetadata` for a staged file, in turn with the staging. The file
    /// and its record tell of the new bytes afterwards.
    MetadataResult ensureMetadata(StagedFile& file, const SyncRecord& record,
                                  DateFallbackMode fallbackMode, const std::stop_token& stop);

    /// Removes the temporary files of runs that died or were stopped.
    void removeLeftovers(const std::stop_token& stop = {});

    const std::filesystem::path& permanentFolder() const { return copies_.permanentFolder(); }

  private:
    struct Source {
        PhotoAsset asset;
        PhotoAssetResource resource;
    };

    std::vector<SyncRecord> recordsToStage();
    bool mayBeKnown(const PhotoAssetResource& resource);
    std::optional<StagedFile> stageLocked(const SyncRecord& record, const std::stop_token& stop);
    std::optional<StagedFile> stageAsset(const SyncRecord& record, const Source& source,
                                         const std::stop_token& stop);
    std::optional<StagedFile> provenCopy(const SyncRecord& record, const std::stop_token& stop);
    std::optional<StagedFile> rescue(SyncRecord record, const std::stop_token& stop);
    std::optional<Source> sourceOf(const QString& identifier);
    std::optional<StagedFile> recordCopy(const SyncRecord& record, const StagedFile& copy,
                                         const std::optional<RecordSource>& source);
    std::optional<StagedFile> exportAndRecord(const SyncRecord& record, const Source& source,
                                              const std::stop_token& stop);
    std::pair<StagedFile, RecordSource> exportDated(const SyncRecord& record, const Source& source,
                                                    const std::filesystem::path& file,
                                                    const std::stop_token& stop);
    std::optional<std::filesystem::path> makeWay(const Source& source,
                                                 const std::filesystem::path& file);
    void settleAside(const std::filesystem::path& aside, const RecordSource& original,
                     const StagedFile& copy, const std::stop_token& stop);
    bool isUnchanged(const QString& identifier, const PhotoAssetResource& resource);
    bool isOriginalUnchanged(const QString& identifier);
    void missing(const QString& what, const QString& identifier);
    void printError(const QString& identifier, const QString& reason);
    void tellAside(const std::filesystem::path& aside);

    Services s_;
    const std::filesystem::path lockFile_;
    std::mutex mutex_; ///< held while one asset is exported: that wait is meant to be serial
    StagedCopies copies_;
    std::set<QString> unavailable_;
    size_t passes_ = 0;
};

} // namespace quorvane

#pragma once

#include "foundation/FileLock.h"
#include "library/RecordStaging.h"

#include <mutex>

namespace quorvane {

/// Exports assets into a staging folder, has their capture date made explicit there, and finds and
/// removes the staged files. Any thread; one asset is worked on at a time, whoever asks, in all of
/// the user's processes, and the others wait: an asset's file is never looked for, rewritten or
/// removed while it is being made.
class AssetStagingService {
  public:
    using Services = StagingServices;

    /// Creates both staging folders, mode 0700. `lockFile` is one for all states of the user.
    AssetStagingService(Services services, const StatePlace& place, std::filesystem::path lockFile);

    /// Stages the DISCOVERED ones of the oldest ten pending records, one after another, without
    /// those whose bytes may be at the destination already. Outcomes go to the store and the
    /// console. Throws `Cancelled` when stopped: the record at hand stays as it was.
    void stageDiscoveredAssets(std::stop_token stop = {});

    /// The record's staged file, made anew from the original unless there is one whose bytes are
    /// proven. None when no file came of it: the record failed, or its original is not there now.
    /// Throws `Cancelled`, and what is this computer's fault (`isMachines`): no room is left, not
    /// even without the copies that are no longer needed, the library is away, or the state cannot
    /// be used. The record stays pending then.
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

    /// From now on files are made in this manner (`LibraryChoices::form`): unsent ones that were
    /// made in another are made anew. Throws `DBError`, `PhotoLibraryError`.
    void settleForm(const QString& form);

    /// Removes the temporary files of runs that died or were stopped.
    void removeLeftovers(const std::stop_token& stop = {});

    const std::filesystem::path& permanentFolder() const { return copies_.permanentFolder(); }

  private:
    std::vector<SyncRecord> recordsToStage();
    QString captionOf(const QString& identifier);
    bool mayBeKnown(const PhotoAssetResource& resource);

    Services s_;
    const std::filesystem::path lockFile_;
    std::mutex mutex_; ///< held while one asset is exported: that wait is meant to be serial
    StagedCopies copies_;
    RecordStaging one_;
    size_t passes_ = 0;
};

} // namespace quorvane

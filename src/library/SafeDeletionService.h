#pragma once

#include "foundation/Log.h"
#include "library/AssetStagingService.h"
#include "library/PhotoLibrary.h"
#include "store/DatabaseManager.h"

#include <stop_token>
#include <vector>

namespace quorvane {

/// Asks for the removal of originals whose copies are safe. Every guard must hold on its own: the
/// store says VERIFIED with a remote id for every record of the asset, the asset is still in the
/// library, and the person agrees in the library's own dialog. All lines go to the log.
class SafeDeletionService {
  public:
    SafeDeletionService(DatabaseManager& database, AssetStagingService& staging,
                        PhotoLibrary& library, Log& log);

    /// One pass. Blocks until the person answered; not on the main thread. A stop is honoured until
    /// the question is asked: what was removed is always recorded.
    void performDeletion(bool deletionEnabled, std::stop_token stop = {}) noexcept;

  private:
    std::vector<SyncRecord> deletionCandidates();
    QStringList safelyStored(const std::vector<SyncRecord>& candidates);
    void deleteFromPhotoLibrary(const QStringList& identifiers,
                                const std::vector<SyncRecord>& records,
                                const std::stop_token& stop);
    void recordDeletion(const QString& identifier, const std::vector<const SyncRecord*>& records);

    DatabaseManager& database_;
    AssetStagingService& staging_;
    PhotoLibrary& library_;
    Log& log_;
};

} // namespace quorvane

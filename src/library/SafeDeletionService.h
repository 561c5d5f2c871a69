#pragma once

#include "foundation/Log.h"
#include "library/AssetStagingService.h"
#include "library/PhotoLibrary.h"
#include "library/RemoteItems.h"
#include "store/RecordLife.h"

#include <map>
#include <stop_token>
#include <vector>

namespace quorvane {

/// What one pass of deletions did.
struct DeletionSummary {
    int deleted = 0;
    struct LeftOut {
        QString name; ///< of the file, as a person knows it
        QString reason;
    };
    std::vector<LeftOut> leftOut; ///< offered to nobody, or not removed after all
};

/// Asks for the removal of originals whose copies are safe. Every guard must hold on its own: the
/// store says VERIFIED with a remote id for every record of the asset, the whole asset was sent and
/// its bytes are known, the asset is still in the library, the person agrees in the library's own
/// dialog; and then, at the moment of the removal, the destination still has the item and the
/// original is still, byte for byte, what was sent. All lines go to the log.
class SafeDeletionService {
  public:
    struct Services {
        DatabaseManager& database;
        RecordLife& life;
        AssetStagingService& staging;
        PhotoLibrary& library;
        RemoteItems& remote;
        Log& log;
    };

    explicit SafeDeletionService(Services services) : s_(services) {}

    /// One pass. Blocks until the person answered; not on the main thread. A stop leaves the rest;
    /// what was removed is always recorded.
    DeletionSummary performDeletion(bool deletionEnabled, std::stop_token stop = {}) noexcept;

    /// Finds out how the removals ended in the midst of which a run died, and records it. Throws
    /// what the library or the store throws.
    void settleInterrupted();

  private:
    class Guard;
    using RecordsOf = std::map<QString, std::vector<SyncRecord>>; ///< by asset

    std::vector<SyncRecord> deletionCandidates();
    QStringList safelyStored(const std::vector<SyncRecord>& candidates);
    void deleteFromPhotoLibrary(const QStringList& identifiers,
                                const std::vector<SyncRecord>& records, DeletionSummary& summary,
                                const std::stop_token& stop);
    void requireMovieAsSent(const PhotoAsset& asset);
    std::optional<KeptReason> obstacle(const std::vector<PhotoAssetResource>& resources,
                                       const std::optional<RecordSource>& source,
                                       const std::stop_token& stop);
    bool isChanged(const PhotoAssetResource& sent, const RecordSource& source,
                   const std::stop_token& stop);
    std::vector<DeletionCandidate> choose(const std::vector<PhotoAsset>& assets,
                                          DeletionQuestion& question, DeletionSummary& summary,
                                          const std::stop_token& stop);
    void countKept(DeletionQuestion& question);
    static QStringList remoteIDsOf(const std::vector<DeletionCandidate>& candidates,
                                   const RecordsOf& records);
    std::optional<std::set<QString>> existing(const QStringList& remoteIDs,
                                              const std::stop_token& stop);
    QString warningFor(const std::vector<DeletionCandidate>& candidates, const RecordsOf& records,
                       const std::stop_token& stop);
    void recordDeletion(const std::vector<SyncRecord>& records);
    QString nameOf(const PhotoAsset& asset);
    void leaveOut(DeletionSummary& summary, const QString& name, const QString& reason);

    Services s_;
};

} // namespace quorvane

#pragma once

#include "google/TransferActivityTracker.h"
#include "library/AssetStagingService.h"
#include "library/SafeDeletionService.h"
#include "metadata/MediaMetadataService.h"
#include "store/RecordLife.h"
#include "store/UploadSessions.h"
#include "sync/BatchCoordinator.h"
#include "sync/DateGate.h"
#include "sync/Destination.h"
#include "sync/Recognition.h"
#include "sync/RunFlags.h"
#include "sync/StageAhead.h"

#include <functional>
#include <mutex>
#include <set>

namespace quorvane {

/// The name a staged file goes by: its own, without the identifier in front.
QString uploadName(const SyncRecord& record, const std::filesystem::path& stagedFile);

/// Drives a sync run: drains the pending records in passes of at most 50, at most two in flight,
/// each through staging, date gate, upload and batch creation; backs off after failures; at the end
/// lets safe deletion do its work. While records upload, the next ones are staged ahead. One run at
/// a time (`RunFlags`).
class SyncCoordinator {
  public:
    /// (completed, total); called on the main thread.
    using ProgressHandler = std::function<void(int, int)>;

    /// What the services of a run are. Not owned; they outlive the coordinator.
    struct Services {
        DatabaseManager& db;
        RecordLife& life;
        UploadSessions& sessions;
        AssetStagingService& staging;
        MediaMetadataService& metadata;
        Recognition& recognition;
        Destination& destination;
        BatchCoordinator& batchCoord;
        TransferActivityTracker& tracker;
        SafeDeletionService& deletion;
        Preferences& preferences;
        RunFlags& flags;
        Log& log;
        Console& console;
        Clock& clock;
    };

    /// How a run went, beyond what the store says.
    struct Summary {
        int completed = 0;
        int total = 0;
        int passes = 0;
        int unavailable = 0; ///< stayed pending: the library cannot hand them out now
        int recognised = 0;  ///< became VERIFIED unsent: the same bytes were there already
        std::int64_t uploadedBytes = 0;
        bool cancelled = false;
        std::optional<QString> failure; ///< why this computer could not go on; nothing FAILED by it
        DeletionSummary deletion;
    };

    explicit SyncCoordinator(Services services, StageAhead::Limits stagingLimits = {});

    /// One whole run; blocks its caller until it is over. The caller has set the run flags.
    Summary drainPendingQueue(bool deletionEnabled, ProgressHandler progressHandler = {});

    /// Called on the run's thread after each pass. Set while no run is active.
    std::function<void()> onPassEnded;

    static constexpr int passSize = 50;
    static constexpr int maxConcurrent = 2;
    static constexpr int maximumSyncPasses = 1000;

  private:
    /// The records of one pass and how far its workers are.
    struct Pass {
        std::vector<SyncRecord> records;
        size_t next = 0;
        bool stopLogged = false;
    };

    int pendingOrZero();
    void runPasses();
    bool runSyncLoop();
    std::vector<SyncRecord> nextRecords();
    void processAll(std::vector<SyncRecord> records);
    void work(Pass& pass);

    void processRecord(const SyncRecord& record) noexcept;
    void upload(const SyncRecord& record, std::stop_token stop);
    void leaveOut(const SyncRecord& record);
    void handleFailure(const SyncRecord& record, const std::exception& error);
    void endBecauseOf(const QString& failure);
    std::optional<QString> takeDiskFull();
    int completed();
    void finishRecord(std::int64_t bytes);
    void finishRecognised(int count);
    void catchUpProgress(int pending);
    void reportProgress();

    Services s_;
    DateGate dateGate_;
    StageAhead::Limits stagingLimits_;

    std::mutex mutex_; ///< guards everything below; never held over network or disk
    ProgressHandler currentProgressHandler_;
    Summary summary_;
    int consecutiveErrors_ = 0;
    std::optional<QString> diskFull_; ///< no further record of this pass can be staged
    std::set<QString> unavailable_;   ///< found without a file in this run; not tried again in it

    std::optional<StageAhead> stageAhead_; ///< while the passes of a run last; not guarded
};

} // namespace quorvane

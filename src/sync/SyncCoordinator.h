#pragma once

#include "foundation/Guarded.h"
#include "library/SafeDeletionService.h"
#include "store/RecordLife.h"
#include "store/UploadSessions.h"
#include "sync/Attempts.h"
#include "sync/BatchCoordinator.h"
#include "sync/PendingQueue.h"
#include "sync/RecordTransfer.h"
#include "sync/RunFlags.h"

#include <deque>
#include <functional>

namespace quorvane {

/// Drives a sync run: drains the pending records in passes of at most 50, at most two in flight,
/// each through staging, date gate and upload to the batches, which make the items beside it; backs
/// off after failures, waits while the world is out of order; at the end lets safe deletion do its
/// work. While records upload, the next ones are staged ahead. One run at a time (`RunFlags`).
class SyncCoordinator {
  public:
    /// (completed, total); called on the main thread.
    using ProgressHandler = std::function<void(int, int)>;

    /// What the services of a run are. Not owned; they outlive the coordinator.
    struct Services {
        DatabaseManager& db;
        RecordLife& life;
        UploadTokens& tokens;
        UploadSessions& sessions;
        AssetStagingService& staging;
        MediaMetadataService& metadata;
        Recognition& recognition;
        Destination& destination;
        Attempts& attempts;
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
        std::optional<Error> failure =
            {}; ///< why this computer could not go on; nothing FAILED by it
        DeletionSummary deletion = {};
    };

    explicit SyncCoordinator(Services services, StageAhead::Limits stagingLimits = {});

    /// One whole drain; blocks its caller until it is over, with every batch settled. The caller
    /// has set the run flags and begun the attempts. Attempts that end leave the rest pending.
    Summary drainPendingQueue(bool deletionEnabled, ProgressHandler progressHandler = {});

    /// Called on the run's thread after each pass. Set while no run is active.
    std::function<void()> onPassEnded;

    static constexpr int passSize = 50;
    static constexpr int maxConcurrent = 2;
    static constexpr int maximumSyncPasses = 1000;

  private:
    /// What the workers of a run write down together.
    struct Course {
        ProgressHandler progress = {};
        Summary summary = {};
        std::optional<Error> diskFull = {}; ///< a record of this pass found no room to be staged
        std::deque<SyncRecord> queue = {};  ///< of the pass: still to be started
        bool isStopLogged = false;          ///< in the pass
    };

    bool isOver();
    int pendingOrZero();
    int pendingAfterPass();
    void forgetExpiredUploads();
    void drain();
    void runPasses();
    bool runSyncLoop();
    void processAll(std::vector<SyncRecord> records);
    void work();
    std::optional<SyncRecord> nextInPass();
    bool isStopLogged();

    void processRecord(const SyncRecord& record, Attempts::Permit permit) noexcept;
    void bring(const SyncRecord& record, std::optional<Attempts::Permit>& permit);
    void leaveStopped(const SyncRecord& record);
    void handleFailure(const SyncRecord& record, const std::exception& error,
                       std::optional<Attempts::Permit>& permit);
    World::Verdict judge(const SyncRecord& record, const std::exception& error,
                         std::optional<Attempts::Permit>& permit);
    void relieve(const SyncRecord& record) noexcept;

    std::optional<Error> takeDiskFull();
    int completed();
    void endBecauseOf(const Error& failure);
    void endIfStoreRefused();
    void finishRecord(std::int64_t bytes);
    void finishRecognised(int count);
    void catchUpProgress(int pending);
    void reportProgress();

    Services s_;
    StageAhead::Limits stagingLimits_;
    PendingQueue queue_;

    Guarded<Course> course_; ///< never locked over network or disk

    std::optional<StageAhead> stageAhead_;   ///< this and the next: while the passes of a run
    std::optional<RecordTransfer> transfer_; ///< last
};

} // namespace quorvane

#pragma once

#include "library/PhotoLibraryObserver.h"
#include "store/StoreCounts.h"
#include "sync/AlbumMirror.h"
#include "sync/RunState.h"
#include "sync/SyncCoordinator.h"

#include <functional>
#include <optional>
#include <stop_token>

namespace quorvane {

/// What a run works with: one library, and the state of one account. Not owned; they outlive it.
struct SyncRunServices {
    DatabaseManager& db;
    PhotoLibrary& library;
    PhotoLibraryObserver& observer;
    AssetStagingService& staging;
    SafeDeletionService& deletion;
    BatchCoordinator& batches;
    SyncCoordinator& coordinator;
    RunFlags& flags;
    RecordLife& life;
    Attempts& attempts;
    RunStateFile& stateFile;
    Log& log;
    AlbumMirror* mirror = nullptr; ///< none: albums are not mirrored
};

/// What whoever starts a run wants of it.
struct SyncRunOrder {
    bool deletes = false; ///< safe deletion follows
    World::Patience patience = World::endless;
    /// Which FAILED records are tried again beside those that the world ended a run by.
    enum class TakesUp { nothing, whatTheMomentFailed, everything } takesUp = TakesUp::nothing;
};

/// What a run tells while it runs. All may be empty.
struct SyncRunCallbacks {
    SyncCoordinator::ProgressHandler progress; ///< called on the main thread
    std::function<void()> discovered; ///< called on the run's thread, before the first pass
    std::function<void()> passEnded;  ///< called on the run's thread
    std::function<void(const RunState&)> stateChanged; ///< any thread, one call at a time
};

/// How one run ended.
struct SyncRunOutcome {
    int verified = 0; ///< records that became verified
    int failed = 0;   ///< records that became failed
    int undated = 0;  ///< records that were held back for want of a date
    int total = 0;    ///< records that the run set out to do
    int passes = 0;
    int recognised = 0;    ///< of `verified`: not sent, the same bytes were there already
    int existing = 0;      ///< of `verified`: sent, and the destination had the same bytes
    int datedByNumber = 0; ///< of `verified`: by a number in the name, taken for a Unix time
    std::int64_t uploadedBytes = 0;
    LeftOut leftOut; ///< by the library, when it was listed
    DeletionSummary deletion;
    MirrorOutcome mirror;
    bool albumFull = false;
    bool wasStopped = false;      ///< by whoever started it
    std::optional<QString> error; ///< why the run could not do its work, or not to its end
    std::optional<Fault> fault;   ///< that ended it, where one is known; the rest is pending
    bool hasItemsLeft = false;    ///< something is pending, failed or without a date
    bool mayPassLater = false;    ///< some of it without anybody's doing

    /// Something here kept the run from its work.
    void endBecauseOf(const std::exception& failure);

    /// As `RunState` tells it.
    RunState state() const;
    /// Nothing reached the destination although something was tried.
    bool hasFailed() const { return error || fault || (failed > 0 && verified == 0); }
};

/// One run, on the calling thread: the removals in which an earlier one died are settled, the
/// source is listed, and its pending records are drained until nothing untried is left; a full
/// album ends it; safe deletion has the last word. Never throws. The caller holds the run lock.
SyncRunOutcome runSync(const SyncRunServices& services, const SyncRunOrder& order,
                       const SyncRunCallbacks& callbacks, std::stop_token stop);

} // namespace quorvane

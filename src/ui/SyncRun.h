#pragma once

#include "store/DatabaseManager.h"
#include "ui/LibrarySession.h"

#include <functional>
#include <optional>
#include <stop_token>

namespace quorvane {

/// How one run of a person's sync ended.
struct SyncRunOutcome {
    int verified = 0; ///< records that became verified
    int failed = 0;   ///< records that became failed
    int undated = 0;  ///< records that were held back for want of a date
    bool wasStopped = false;
    std::optional<QString> error; ///< why the run could not do its work

    /// Nothing reached Google although something was tried.
    bool hasFailed() const { return error || (failed > 0 && verified == 0); }
};

/// What a run tells while it runs. Both may be empty.
struct SyncRunCallbacks {
    SyncCoordinator::ProgressHandler progress; ///< called on the main thread
    std::function<void()> passEnded;           ///< called on the run's thread
};

/// One run, from the first drain to the last, on the calling thread. A drain is followed by another
/// only while records are pending that this run has not tried: those that appeared meanwhile, or
/// those beyond the engine's limit of passes.
SyncRunOutcome runSync(const LibrarySession& session, DatabaseManager& db, bool deletionEnabled,
                       const SyncRunCallbacks& callbacks, std::stop_token stop);

} // namespace quorvane

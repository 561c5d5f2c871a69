#include "ui/SyncRun.h"

#include "store/StoreCounts.h"

#include <algorithm>

namespace quorvane {

namespace {

/// Marks the run's beginning and end, and carries a stop into it.
class ActiveRun {
  public:
    ActiveRun(RunFlags& flags, const std::stop_token& stop)
        : flags_((flags.begin(), flags)), onStop_(stop, [&flags] { flags.cancel(); }) {}
    ~ActiveRun() { flags_.end(); }
    ActiveRun(const ActiveRun&) = delete;
    ActiveRun& operator=(const ActiveRun&) = delete;

  private:
    RunFlags& flags_;
    std::stop_callback<std::function<void()>> onStop_;
};

/// Drains until nothing untried is left. Why the store ended it, if it did.
std::optional<QString> drainAll(const LibrarySession& session, DatabaseManager& db,
                                bool deletionEnabled, const SyncRunCallbacks& callbacks) {
    session.coordinator.onPassEnded = callbacks.passEnded;
    for (int done = 0;;) {
        const auto summary = session.coordinator.drainPendingQueue(
            deletionEnabled, [progress = callbacks.progress, done](int completed, int total) {
                if (progress)
                    progress(done + completed, done + total);
            });
        if (summary.storeFailure || summary.cancelled)
            return summary.storeFailure;
        done += summary.completed;
        if (summary.completed == 0 || db.countPendingRecords() <= summary.unavailable)
            return std::nullopt;
    }
}

} // namespace

SyncRunOutcome runSync(const LibrarySession& session, DatabaseManager& db, bool deletionEnabled,
                       const SyncRunCallbacks& callbacks, std::stop_token stop) {
    SyncRunOutcome outcome;
    try {
        const StoreCounts before = StoreCounts::of(db);
        {
            const ActiveRun run(session.flags, stop);
            outcome.error = drainAll(session, db, deletionEnabled, callbacks);
            outcome.wasStopped = session.flags.isCancelled();
        }
        const StoreCounts after = StoreCounts::of(db);
        outcome.verified = std::max(0, after.verified - before.verified);
        outcome.failed = std::max(0, after.failed - before.failed);
        outcome.undated = std::max(0, after.undated - before.undated);
    } catch (const Cancelled&) {
        outcome.wasStopped = true;
    } catch (const std::exception& error) {
        outcome.error = describe(error);
    }
    return outcome;
}

} // namespace quorvane

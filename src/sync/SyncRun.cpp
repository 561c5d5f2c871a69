#include "sync/SyncRun.h"

#include <algorithm>
#include <atomic>

namespace quorvane {

namespace {

/// Marks the run's beginning and end, and carries a stop and a full album into it.
class ActiveRun {
  public:
    ActiveRun(const SyncRunServices& services, const std::stop_token& stop)
        : services_(services),
          onStop_((services.flags.begin(), stop), [&flags = services.flags] { flags.cancel(); }) {
        services_.batches.onAlbumFull = [this] {
            isAlbumFull_ = true;
            services_.flags.cancel(); // else the same bytes again and again
        };
    }
    ~ActiveRun() {
        services_.batches.onAlbumFull = [] {};
        services_.flags.end();
    }
    ActiveRun(const ActiveRun&) = delete;
    ActiveRun& operator=(const ActiveRun&) = delete;

    bool isAlbumFull() const { return isAlbumFull_; }

  private:
    const SyncRunServices& services_;
    std::atomic<bool> isAlbumFull_ = false;
    std::stop_callback<std::function<void()>> onStop_;
};

void discover(const SyncRunServices& services, const SyncRunCallbacks& callbacks) {
    services.staging.removeLeftovers(services.flags.stopToken());
    services.observer.initialScan(services.flags.stopToken());
    services.deletion.settleInterrupted();
    if (callbacks.discovered)
        callbacks.discovered();
}

/// A drain is followed by another only while records are pending that this run has not tried: those
/// that appeared meanwhile, or those beyond the engine's limit of passes.
void drainAll(const SyncRunServices& services, bool deletionEnabled,
              const SyncRunCallbacks& callbacks, SyncRunOutcome& outcome) {
    services.coordinator.onPassEnded = callbacks.passEnded;
    while (true) {
        const int done = outcome.total;
        auto summary = services.coordinator.drainPendingQueue(
            deletionEnabled, [progress = callbacks.progress, done](int completed, int total) {
                if (progress)
                    progress(done + completed, done + total);
            });
        outcome.total += summary.total;
        outcome.passes += summary.passes;
        outcome.recognised += summary.recognised;
        outcome.uploadedBytes += summary.uploadedBytes;
        outcome.deletion.deleted += summary.deletion.deleted;
        outcome.deletion.leftOut = std::move(summary.deletion.leftOut);
        outcome.error = summary.failure;
        if (summary.failure || summary.cancelled || summary.completed == 0 ||
            services.db.countPendingRecords() <= summary.unavailable)
            return;
    }
}

} // namespace

SyncRunOutcome runSync(const SyncRunServices& services, bool deletionEnabled,
                       const SyncRunCallbacks& callbacks, std::stop_token stop) {
    SyncRunOutcome outcome;
    const ActiveRun run(services, stop);
    try {
        const StoreCounts before = StoreCounts::of(services.db);
        services.batches.takeAlreadyExisting();
        discover(services, callbacks);
        outcome.leftOut = services.library.leftOut();
        drainAll(services, deletionEnabled, callbacks, outcome);
        if (services.mirror != nullptr && !outcome.error && !services.flags.isCancelled())
            outcome.mirror = services.mirror->run(services.flags.stopToken());
        const StoreCounts after = StoreCounts::of(services.db);
        outcome.existing = services.batches.takeAlreadyExisting();
        outcome.verified = std::max(0, after.verified - before.verified);
        outcome.datedByNumber = std::max(0, after.datedByNumber - before.datedByNumber);
        outcome.failed = std::max(0, after.failed - before.failed);
        outcome.undated = std::max(0, after.undated - before.undated);
    } catch (const Cancelled&) {
        outcome.wasStopped = true;
    } catch (const std::exception& error) {
        outcome.error = describe(error);
    }
    outcome.albumFull = run.isAlbumFull();
    outcome.wasStopped = !outcome.albumFull && services.flags.isCancelled();
    return outcome;
}

} // namespace quorvane

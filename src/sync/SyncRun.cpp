#include "sync/SyncRun.h"

#include "store/RecordFaults.h"

#include <algorithm>
#include <atomic>

namespace quorvane {

namespace {

/// Marks the run's beginning and end, carries a stop and a full album into it, and tells its state.
class ActiveRun {
  public:
    ActiveRun(const SyncRunServices& services, const SyncRunOrder& order,
              const SyncRunCallbacks& callbacks, const std::stop_token& stop)
        : services_(services),
          callbacks_(callbacks),
          onStop_((services.flags.begin(), stop), [&flags = services.flags] { flags.cancel(); }) {
        services_.batches.onAlbumFull = [this] {
            isAlbumFull_ = true;
            services_.flags.cancel(); // else the same bytes again and again
        };
        services_.attempts.begin(order.patience, [this](const auto& waiting) { tell(waiting); });
        tell(RunState{.phase = RunState::Phase::running});
    }
    ~ActiveRun() {
        services_.attempts.begin(World::endless);
        services_.batches.onAlbumFull = [] {};
        services_.flags.end();
    }
    ActiveRun(const ActiveRun&) = delete;
    ActiveRun& operator=(const ActiveRun&) = delete;

    bool isAlbumFull() const { return isAlbumFull_; }

    void tell(const RunState& state) {
        services_.stateFile.keep(state);
        if (callbacks_.stateChanged)
            callbacks_.stateChanged(state);
    }

  private:
    void tell(const std::optional<Attempts::Waiting>& waiting) {
        RunState state{.phase = RunState::Phase::running};
        if (waiting)
            state = {.phase = RunState::Phase::waiting,
                     .fault = waiting->obstacle,
                     .until = waiting->until};
        services_.log.log(QStringLiteral("[Sync] ") +
                          (waiting ? QStringLiteral("⏸ ") : QStringLiteral("▶ ")) + state.text());
        tell(state);
    }

    const SyncRunServices& services_;
    const SyncRunCallbacks& callbacks_;
    std::atomic<bool> isAlbumFull_ = false;
    std::stop_callback<std::function<void()>> onStop_;
};

/// The run before this one never came to tell whether what failed last failed by the world.
bool hasDied(const RunState& last) {
    return last.phase == RunState::Phase::running || last.phase == RunState::Phase::waiting;
}

bool isOfTheMoment(FaultCode code) {
    return kindOf(code) == FaultKind::moment;
}

/// What failed by the world's fault, or this computer's, is in the queue again.
void relieve(const SyncRunServices& services, const SyncRunOrder& order, const RunState& last) {
    if (order.takesUp == SyncRunOrder::TakesUp::everything)
        return services.life.retriedFailed(true);
    const bool takesMoments =
        order.takesUp == SyncRunOrder::TakesUp::whatTheMomentFailed || hasDied(last);
    const auto mayPass = [takesMoments](FaultCode code) {
        const FaultKind kind = kindOf(code);
        return kind == FaultKind::item     ? code == FaultCode::fileTrouble
               : kind == FaultKind::moment ? takesMoments
                                           : true;
    };
    for (const SyncRecord& record : RecordFaults(services.db).failedBy(mayPass))
        services.life.relieved(record);
}

void discover(const SyncRunServices& services, const SyncRunCallbacks& callbacks) {
    services.staging.removeLeftovers(services.flags.stopToken());
    services.observer.initialScan(services.flags.stopToken());
    services.deletion.settleInterrupted();
    if (callbacks.discovered)
        callbacks.discovered();
}

/// A drain is followed by another only while records are pending that this run has not tried: those
/// that appeared meanwhile, or those beyond the engine's limit of passes.
void drainAll(const SyncRunServices& services, bool deletes, const SyncRunCallbacks& callbacks,
              SyncRunOutcome& outcome) {
    services.coordinator.onPassEnded = callbacks.passEnded;
    while (true) {
        const int done = outcome.total;
        auto summary = services.coordinator.drainPendingQueue(
            deletes, [progress = callbacks.progress, done](int completed, int total) {
                if (progress)
                    progress(done + completed, done + total);
            });
        outcome.total += summary.total;
        outcome.passes += summary.passes;
        outcome.recognised += summary.recognised;
        outcome.uploadedBytes += summary.uploadedBytes;
        outcome.deletion.deleted += summary.deletion.deleted;
        outcome.deletion.leftOut = std::move(summary.deletion.leftOut);
        if (summary.failure)
            outcome.endBecauseOf(*summary.failure);
        if (summary.failure || summary.cancelled || services.attempts.ending() ||
            summary.completed == 0 || services.db.countPendingRecords() <= summary.unavailable)
            return;
    }
}

} // namespace

void SyncRunOutcome::endBecauseOf(const std::exception& failure) {
    error = describe(failure);
    fault = faultOf(failure);
}

RunState SyncRunOutcome::state() const {
    using End = RunState::End;
    const End end = error          ? End::machine
                    : fault        ? End::world
                    : albumFull    ? End::albumFull
                    : wasStopped   ? End::stopped
                    : hasItemsLeft ? End::itemsLeft
                                   : End::complete;
    return {.phase = RunState::Phase::ended,
            .end = end,
            .fault = end == End::world || end == End::machine ? fault : std::nullopt,
            .error = error.value_or(QString())};
}

SyncRunOutcome runSync(const SyncRunServices& services, const SyncRunOrder& order,
                       const SyncRunCallbacks& callbacks, std::stop_token stop) {
    SyncRunOutcome outcome;
    const RunState last = services.stateFile.last();
    ActiveRun run(services, order, callbacks, stop);
    try {
        relieve(services, order, last);
        const StoreCounts before = StoreCounts::of(services.db);
        services.batches.takeAlreadyExisting();
        discover(services, callbacks);
        outcome.leftOut = services.library.leftOut();
        drainAll(services, order.deletes, callbacks, outcome);
        if (services.mirror != nullptr && !outcome.error && !services.attempts.ending() &&
            !services.flags.isCancelled())
            outcome.mirror = services.mirror->run(services.flags.stopToken());
        const StoreCounts after = StoreCounts::of(services.db);
        outcome.existing = services.batches.takeAlreadyExisting();
        outcome.verified = std::max(0, after.verified - before.verified);
        outcome.datedByNumber = std::max(0, after.datedByNumber - before.datedByNumber);
        outcome.failed = std::max(0, after.failed - before.failed);
        outcome.undated = std::max(0, after.undated - before.undated);
        const int pending = services.db.countPendingRecords();
        outcome.hasItemsLeft = after.failed + after.undated + pending > 0;
        outcome.mayPassLater =
            pending > 0 || !RecordFaults(services.db).failedBy(isOfTheMoment).empty();
    } catch (const Cancelled&) {
        outcome.wasStopped = true;
    } catch (const std::exception& error) {
        outcome.endBecauseOf(error);
    }
    outcome.albumFull = run.isAlbumFull();
    outcome.wasStopped = !outcome.albumFull && services.flags.isCancelled();
    if (!outcome.wasStopped && !outcome.error)
        outcome.fault = services.attempts.ending();
    run.tell(outcome.state());
    return outcome;
}

} // namespace quorvane

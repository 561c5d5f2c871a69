#include "ui/RunModel.h"

#include "foundation/MainThread.h"

namespace quorvane {

namespace {

constexpr int transferInterval = 250; // milliseconds between two looks at the transfers
constexpr int samplesToACount = 8;    // the records are counted anew every two seconds of a run

} // namespace

RunModel::RunModel(const Services& services)
    : s_(services), transfers_(services.tracker.getSnapshot()) {
    sampling_.setInterval(transferInterval);
    connect(&sampling_, &QTimer::timeout, this, &RunModel::sampleTransfers);
}

void RunModel::set(const RunState& state) {
    if (state.phase == RunState::Phase::waiting && state_.phase != RunState::Phase::waiting)
        waitingSince_ = s_.clock.now();
    if (state.phase != state_.phase)
        paceSince_.reset();
    state_ = state;
    Q_EMIT changed();
}

void RunModel::end(const RunState& state) {
    stop_.request_stop();
    set(state);
}

/// Under the lock that keeps other processes out, unless it was stopped while it waited for its
/// turn. On the run's thread.
SyncRunOutcome RunModel::runLocked(const LibrarySession& session, const SyncRunOrder& order,
                                   const SyncRunCallbacks& callbacks,
                                   const std::stop_token& stop) const {
    SyncRunOutcome outcome;
    if (stop.stop_requested()) {
        outcome.wasStopped = true;
        return outcome;
    }
    try {
        const std::shared_ptr<void> lock = s_.acquireRunLock();
        return runSync(session.run, order, callbacks, stop);
    } catch (const Error& error) {
        outcome.error = error.localizedDescription();
    }
    return outcome;
}

void RunModel::begin(std::shared_ptr<const LibrarySession> session, const SyncRunOrder& order,
                     int pending) {
    ++number_;
    set({.phase = RunState::Phase::running});
    setProgress(0, pending);
    tellProgress();
    stop_ = std::stop_source();
    sampling_.start();
    tasks_.post([this, order, session = std::move(session), callbacks = callbacks(), run = number_,
                 source = stop_](const std::stop_token& ends) {
        const std::stop_callback onEnd(ends, [source]() mutable { source.request_stop(); });
        const SyncRunOutcome outcome = runLocked(*session, order, callbacks, source.get_token());
        onMainThread([self = self_, run, outcome] {
            if (self && run == self->number_)
                Q_EMIT self->finished(outcome);
            else if (self)
                Q_EMIT self->countsChanged(); // a later run has begun: the display is its own
        });
    });
}

SyncRunCallbacks RunModel::callbacks() {
    SyncRunCallbacks callbacks;
    callbacks.progress = [self = self_, run = number_](int completed, int total) {
        if (self && self->number_ == run && self->isSyncing())
            self->setProgress(completed, total);
    };
    callbacks.passEnded = [self = self_] {
        onMainThread([self] {
            if (self)
                Q_EMIT self->countsChanged();
        });
    };
    callbacks.stateChanged = [self = self_, run = number_](const RunState& state) {
        onMainThread([self, run, state] {
            if (self && run == self->number_ && self->isSyncing() &&
                state.phase != RunState::Phase::ended)
                self->set(state);
        });
    };
    return callbacks;
}

/// Told at the next look at the transfers: a run ends more items than anybody can read, and the
/// window is drawn for each telling.
void RunModel::setProgress(int completed, int total) {
    if (completed == completed_ && total == total_)
        return;
    isProgressNew_ = true;
    completed_ = completed;
    total_ = total;
    if (completed > 0 && !paceSince_) {
        paceSince_ = s_.clock.monotonic();
        paceFrom_ = completed;
    }
}

void RunModel::tellProgress() {
    if (std::exchange(isProgressNew_, false))
        Q_EMIT progressChanged();
}

std::optional<std::chrono::seconds> RunModel::timeLeft() const {
    using namespace std::chrono;
    constexpr int leastItems = 5;
    constexpr seconds leastTime{5};
    if (!paceSince_ || state_.phase != RunState::Phase::running)
        return std::nullopt;
    const int done = completed_ - paceFrom_;
    const auto elapsed = duration_cast<milliseconds>(s_.clock.monotonic() - *paceSince_);
    if (done < leastItems || elapsed < leastTime)
        return std::nullopt;
    return duration_cast<seconds>(elapsed * (total_ - completed_) / done);
}

/// The transfers are looked at only while something moves.
void RunModel::sampleTransfers() {
    tellProgress();
    TransferSnapshot now = s_.tracker.getSnapshot();
    const bool isIdle = !isSyncing() && now.items.empty();
    const double before = speed_.current();
    if (isIdle)
        speed_.rest();
    else
        speed_.sample(now.sentBytes, s_.clock.monotonic());
    const bool hasChanged = now.items != transfers_.items || before != speed_.current() ||
                            now.latencyMilliseconds != transfers_.latencyMilliseconds;
    transfers_ = std::move(now);
    if (hasChanged)
        Q_EMIT transfersChanged();
    if (isIdle)
        sampling_.stop();
    else if (++samples_ % samplesToACount == 0)
        Q_EMIT countsChanged();
}

} // namespace quorvane

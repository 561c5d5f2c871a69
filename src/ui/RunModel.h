#pragma once

#include "foundation/TaskRunner.h"
#include "google/TransferActivityTracker.h"
#include "ui/LibrarySession.h"
#include "ui/SpeedMeter.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

namespace quorvane {

/// The run: how far it is, what it waits for, how fast it sends, how it ended. Main thread; it
/// works on a thread on which nothing else of the library's is done meanwhile.
class RunModel final : public QObject {
    Q_OBJECT

  public:
    struct Services {
        TransferActivityTracker& tracker;
        Clock& clock;
        /// Held for the length of a run; throws `Error` while another process runs one.
        std::function<std::shared_ptr<void>()> acquireRunLock;
    };

    explicit RunModel(const Services& services);

    /// Of the latest run of this process: what it waits for, or how it ended.
    const RunState& state() const { return state_; }
    bool isSyncing() const {
        return state_.phase == RunState::Phase::running || state_.phase == RunState::Phase::waiting;
    }
    bool ended(RunState::End end) const {
        return state_.phase == RunState::Phase::ended && state_.end == end;
    }
    /// Tells the latest runs apart; an earlier one publishes nothing.
    int number() const { return number_; }
    Date waitingSince() const { return waitingSince_; } ///< while it waits
    int completed() const { return completed_; }
    int total() const { return total_; }
    /// How long the run is likely to take from now on; none while that is not known.
    std::optional<std::chrono::seconds> timeLeft() const;

    const TransferSnapshot& transfers() const { return transfers_; }
    /// As a person would measure it; 0 while nothing runs.
    const SpeedMeter& speed() const { return speed_; }

    /// `pending`: how many items it begins with.
    void begin(std::shared_ptr<const LibrarySession> session, const SyncRunOrder& order,
               int pending);
    /// The display says so at once; the run's own thread follows.
    void end(const RunState& state);
    /// What is known of the latest run otherwise.
    void set(const RunState& state);
    /// Work that must not overlap a run, in the order of asking.
    void post(TaskRunner::Work work) { tasks_.post(std::move(work)); }

    bool isWorking() { return !tasks_.isIdle(); }

  Q_SIGNALS:
    void changed();
    void progressChanged();
    void transfersChanged();
    void countsChanged(); ///< items have changed: they are to be counted anew
    void finished(const quorvane::SyncRunOutcome& outcome);

  private:
    SyncRunOutcome runLocked(const LibrarySession& session, const SyncRunOrder& order,
                             const SyncRunCallbacks& callbacks, const std::stop_token& stop) const;
    SyncRunCallbacks callbacks();
    void setProgress(int completed, int total);
    void tellProgress();
    void sampleTransfers();

    const Services s_;
    const QPointer<RunModel> self_{this}; ///< none once the model is gone
    RunState state_;
    int number_ = 0;
    bool isProgressNew_ = false;
    int completed_ = 0;
    int total_ = 0;
    Date waitingSince_{};
    std::optional<Clock::Monotonic> paceSince_; ///< when the run's first item was done
    int paceFrom_ = 0;                          ///< what was done by then
    TransferSnapshot transfers_;
    SpeedMeter speed_;
    int samples_ = 0; ///< of the transfers, since the run began
    QTimer sampling_;
    std::stop_source stop_{std::nostopstate};
    TaskRunner tasks_; ///< last: its work uses the rest
};

} // namespace quorvane

#pragma once

#include "sync/SyncRun.h"

namespace quorvane {

/// When the next run of whoever backs up by itself comes although nothing appeared: soon while some
/// work is left that may pass next time, after ever longer waits while it does not.
class Turns {
  public:
    static constexpr std::chrono::seconds usualSettling{30}; ///< of quiet, before a run begins
    static constexpr std::chrono::hours never{24 * 365};

    explicit Turns(std::chrono::seconds first = usualSettling)
        : first_(std::max(first, shortestWait)) {}

    void ended(const SyncRunOutcome& outcome) {
        const bool isMoving = outcome.verified > 0;
        next_ = isMoving || next_ == never
                    ? first_
                    : std::min<std::chrono::seconds>(2 * next_, longestRetry);
        if (!outcome.mayPassLater && !outcome.error && !outcome.fault)
            next_ = never;
    }
    /// Another process ran.
    void missed() { next_ = first_; }
    std::chrono::seconds next() const { return next_; }

  private:
    static constexpr std::chrono::seconds shortestWait{1};
    static constexpr std::chrono::hours longestRetry{1};

    const std::chrono::seconds first_;
    std::chrono::seconds next_ = never;
};

} // namespace quorvane

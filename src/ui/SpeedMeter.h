#pragma once

#include "foundation/Clock.h"

#include <cstdint>
#include <deque>

namespace quorvane {

/// The pace of what was sent over the last seconds, in bytes a second, also of what began and ended
/// between two samples.
class SpeedMeter {
  public:
    /// `sentBytes`: since some beginning, never less than before.
    void sample(std::int64_t sentBytes, Clock::Monotonic now);
    /// Nothing runs.
    void rest();

    double current() const { return current_; }
    double peak() const { return peak_; }

  private:
    struct Sample {
        Clock::Monotonic time;
        std::int64_t bytes;
    };
    std::deque<Sample> samples_; ///< the oldest first
    double current_ = 0;
    double peak_ = 0;
};

} // namespace quorvane

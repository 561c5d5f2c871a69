#pragma once

#include "foundation/Guarded.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace quorvane {

/// Shares a number of bytes a second among all that is sent at once. Any thread; waits for nothing.
class UploadLimit {
  public:
    using Steady = std::chrono::steady_clock;

    struct Grant {
        std::size_t bytes = 0;
        Steady::duration wait{0}; ///< with no bytes: when to ask again
    };

    /// At most `wanted` bytes, all of which count as sent. A rate of 0 or less is no limit.
    Grant take(std::size_t wanted, std::int64_t bytesPerSecond, Steady::time_point now);

  private:
    Guarded<Steady::time_point> paidUntil_; ///< what was granted so far fills the time up to here
};

} // namespace quorvane

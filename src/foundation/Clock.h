#pragma once

#include "foundation/Date.h"

#include <chrono>
#include <stop_token>

namespace quorvane {

/// Time as a parameter, so that waits and expiries are tested without waiting. Any thread.
class Clock {
  public:
    using Monotonic = std::chrono::steady_clock::time_point;

    virtual ~Clock() = default;

    virtual Date now() const = 0;
    virtual Monotonic monotonic() const = 0;

    /// Blocks for `duration`, or until `stop` is requested. True when the whole time passed.
    virtual bool sleep(std::chrono::milliseconds duration, std::stop_token stop) = 0;
};

class SystemClock final : public Clock {
  public:
    Date now() const override;
    Monotonic monotonic() const override;
    bool sleep(std::chrono::milliseconds duration, std::stop_token stop) override;
};

} // namespace quorvane

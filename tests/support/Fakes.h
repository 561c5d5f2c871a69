#pragma once

#include "foundation/Clock.h"
#include "foundation/Log.h"

#include <QStringList>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

namespace quorvane::test {

/// Keeps the messages. Any thread.
class RecordingLog final : public Log {
  public:
    void log(const QString& message) override;
    QStringList messages() const;
    bool contains(const QString& part) const;

  private:
    mutable std::mutex mutex_;
    QStringList messages_;
};

/// Time that moves only when a test says so. A sleep ends when the time was advanced past it, or
/// at once when `skipSleeps` is on (the time then jumps forward). Any thread.
class FakeClock final : public Clock {
  public:
    explicit FakeClock(Date start = Date(std::chrono::milliseconds(1'700'000'000'000)));

    Date now() const override;
    Monotonic monotonic() const override;
    bool sleep(std::chrono::milliseconds duration, std::stop_token stop) override;

    void advance(std::chrono::milliseconds duration);
    void skipSleeps(bool on);
    /// The dates are the system's from now on, as those that the store makes; the rest stays.
    void followSystem();

    /// The durations slept so far, in order of their start.
    std::vector<std::chrono::milliseconds> sleeps() const;

  private:
    mutable std::mutex mutex_;
    std::condition_variable_any moved_;
    Date start_;
    std::chrono::milliseconds elapsed_{0};
    bool skipSleeps_ = false;
    bool followsSystem_ = false;
    std::vector<std::chrono::milliseconds> sleeps_;
};

/// Runs the main thread's event loop until `condition` holds; false after ten seconds.
bool waitOnMainThread(const std::function<bool()>& condition);

} // namespace quorvane::test

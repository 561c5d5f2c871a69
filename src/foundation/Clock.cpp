#include "foundation/Clock.h"

#include <condition_variable>
#include <mutex>

namespace quorvane {

Date SystemClock::now() const {
    return std::chrono::time_point_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now());
}

Clock::Monotonic SystemClock::monotonic() const {
    return std::chrono::steady_clock::now();
}

bool SystemClock::sleep(std::chrono::milliseconds duration, std::stop_token stop) {
    std::mutex mutex;
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    wake.wait_for(lock, stop, duration, [] { return false; });
    return !stop.stop_requested();
}

} // namespace quorvane

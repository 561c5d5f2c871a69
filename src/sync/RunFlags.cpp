#include "sync/RunFlags.h"

namespace quorvane {

void RunFlags::begin() {
    const std::lock_guard lock(mutex_);
    stop_ = std::stop_source();
    running_ = true;
}

void RunFlags::cancel() {
    std::stop_source current;
    {
        const std::lock_guard lock(mutex_);
        current = stop_;
    }
    current.request_stop(); // runs the callbacks of whoever waits, so not under the lock
}

void RunFlags::end() {
    const std::lock_guard lock(mutex_);
    running_ = false;
}

bool RunFlags::isRunning() const {
    const std::lock_guard lock(mutex_);
    return running_;
}

bool RunFlags::isCancelled() const {
    const std::lock_guard lock(mutex_);
    return stop_.stop_requested();
}

std::stop_token RunFlags::stopToken() const {
    const std::lock_guard lock(mutex_);
    return stop_.get_token();
}

} // namespace quorvane

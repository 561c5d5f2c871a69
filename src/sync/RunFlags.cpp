#include "sync/RunFlags.h"

namespace quorvane {

void RunFlags::begin() {
    *run_.lock() = {.stop = {}, .isUnderWay = true};
}

void RunFlags::cancel() {
    std::stop_source current = run_.lock()->stop;
    current.request_stop(); // runs the callbacks of whoever waits, so not under the lock
}

void RunFlags::end() {
    run_.lock()->isUnderWay = false;
}

bool RunFlags::isRunning() const {
    return run_.lock()->isUnderWay;
}

bool RunFlags::isCancelled() const {
    return run_.lock()->stop.stop_requested();
}

std::stop_token RunFlags::stopToken() const {
    return run_.lock()->stop.get_token();
}

} // namespace quorvane

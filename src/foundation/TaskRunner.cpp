#include "foundation/TaskRunner.h"

#include "foundation/Error.h"

#include <utility>

namespace quorvane {

TaskRunner::TaskRunner() : thread_([this](const std::stop_token& stop) { run(stop); }) {}

void TaskRunner::post(Work work) {
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(work));
    }
    posted_.notify_one();
}

bool TaskRunner::isIdle() {
    const std::lock_guard lock(mutex_);
    return waiting_.empty() && !isRunning_;
}

void TaskRunner::run(const std::stop_token& stop) {
    while (true) {
        Work work;
        {
            std::unique_lock lock(mutex_);
            isRunning_ = false;
            if (!posted_.wait(lock, stop, [this] { return !waiting_.empty(); }) ||
                stop.stop_requested())
                return;
            work = std::move(waiting_.front());
            waiting_.pop_front();
            isRunning_ = true;
        }
        try {
            work(stop);
        } catch (const Cancelled&) {
            continue;
        }
    }
}

} // namespace quorvane

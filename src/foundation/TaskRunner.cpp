#include "foundation/TaskRunner.h"

#include "foundation/Error.h"

#include <utility>

namespace quorvane {

TaskRunner::TaskRunner() : thread_([this](const std::stop_token& stop) { run(stop); }) {}

void TaskRunner::post(Work work) {
    tasks_.lock()->waiting.push_back(std::move(work));
    posted_.notify_one();
}

bool TaskRunner::isIdle() {
    const auto tasks = tasks_.lock();
    return tasks->waiting.empty() && !tasks->isRunning;
}

void TaskRunner::run(const std::stop_token& stop) {
    while (true) {
        Work work;
        {
            auto tasks = tasks_.lock();
            tasks->isRunning = false;
            if (!tasks.wait(posted_, stop, [&] { return !tasks->waiting.empty(); }) ||
                stop.stop_requested())
                return;
            work = std::move(tasks->waiting.front());
            tasks->waiting.pop_front();
            tasks->isRunning = true;
        }
        try {
            work(stop);
        } catch (const Cancelled&) {
            continue;
        }
    }
}

} // namespace quorvane

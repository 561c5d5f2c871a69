#pragma once

#include "foundation/Guarded.h"

#include <deque>
#include <functional>
#include <thread>

namespace quorvane {

/// Runs posted work in the background, in the order of posting, on one thread of its own. At its
/// end the running work is told to stop and waited for; what has not begun is dropped. The work
/// must not throw anything but `Cancelled`.
class TaskRunner {
  public:
    using Work = std::function<void(std::stop_token)>;

    TaskRunner();
    ~TaskRunner() = default;
    TaskRunner(const TaskRunner&) = delete;
    TaskRunner& operator=(const TaskRunner&) = delete;

    /// Returns at once. Any thread.
    void post(Work work);

    /// True when nothing runs and nothing waits. Any thread.
    bool isIdle();

  private:
    void run(const std::stop_token& stop);

    struct Tasks {
        std::deque<Work> waiting;
        bool isRunning = false;
    };
    Guarded<Tasks> tasks_;
    std::condition_variable_any posted_;
    std::jthread thread_;
};

} // namespace quorvane

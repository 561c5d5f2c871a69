#pragma once

#include <csignal>
#include <stop_token>
#include <thread>

#include <signal.h>

namespace quorvane {

/// SIGINT, SIGTERM and SIGHUP, as at the end of a session, blocked in every thread, become a
/// request to stop. Made before any thread.
class StopSignals {
  public:
    StopSignals() {
        sigemptyset(&signals_);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, wakeUp})
            sigaddset(&signals_, signal);
        pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
        waiter_ = std::thread([this] {
            int signal = 0;
            while (sigwait(&signals_, &signal) == 0 && signal != wakeUp)
                stop_.request_stop();
        });
    }
    ~StopSignals() {
        pthread_kill(waiter_.native_handle(), wakeUp);
        waiter_.join();
    }
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    std::stop_token token() const { return stop_.get_token(); }

  private:
    static constexpr int wakeUp = SIGUSR1;
    sigset_t signals_{};
    std::stop_source stop_;
    std::thread waiter_;
};

} // namespace quorvane

#pragma once

#include <condition_variable>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

namespace quorvane {

/// What a platform will say once, on a thread of its own, maybe when nobody waits for it any more.
/// Shared between the one who waits and the handler that the platform calls. Any thread.
template <typename T>
class Answer {
  public:
    /// The first one counts. False when nobody waits any more: then it falls to the caller to clean
    /// up what the answer stands for.
    bool give(T value) {
        const std::lock_guard lock(mutex_);
        if (!isGiven_ && !isAbandoned_) {
            isGiven_ = true;
            value_.emplace(std::move(value));
            given_.notify_all();
        }
        return !isAbandoned_;
    }

    /// None when `stop` was requested first; from then on every answer is too late. Call once.
    std::optional<T> wait(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        isAbandoned_ = !given_.wait(lock, stop, [this] { return isGiven_; });
        return std::exchange(value_, std::nullopt);
    }

  private:
    std::mutex mutex_;
    std::condition_variable_any given_;
    std::optional<T> value_;
    bool isGiven_ = false;
    bool isAbandoned_ = false; ///< by a wait that was stopped
};

} // namespace quorvane

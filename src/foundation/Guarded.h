#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <utility>

namespace quorvane {

/// A value that nobody reaches without its lock. Any thread.
///
///     count_.lock()->sent += bytes;       // for one expression
///     const auto state = state_.lock();   // for a scope
template <typename Value>
class Guarded {
    template <typename Held>
    class Access;

  public:
    Guarded() = default;
    explicit Guarded(Value value) : value_(std::move(value)) {}

    using Lock = Access<Value>;

    [[nodiscard]] Lock lock() { return {mutex_, value_}; }
    [[nodiscard]] Access<const Value> lock() const { return {mutex_, value_}; }

  private:
    mutable std::mutex mutex_;
    Value value_{};
};

/// Holds the lock while it lives; of one thread.
template <typename Value>
template <typename Held>
class Guarded<Value>::Access {
  public:
    Access(std::mutex& mutex, Held& value) : lock_(mutex), value_(value) {}

    Held* operator->() const { return &value_; }
    Held& operator*() const { return value_; }

    /// Lets go of the lock until `isReady`, which is asked under it after each notification. False
    /// when `stop` came first.
    template <typename Ready>
    bool wait(std::condition_variable_any& changed, const std::stop_token& stop, Ready&& isReady) {
        return changed.wait(lock_, stop, std::forward<Ready>(isReady));
    }

    /// The same, for `time` at most: then it says what `isReady` says.
    template <typename Ready>
    bool waitFor(std::condition_variable_any& changed, const std::stop_token& stop,
                 std::chrono::nanoseconds time, Ready&& isReady) {
        return changed.wait_for(lock_, stop, time, std::forward<Ready>(isReady));
    }

    /// Does `work` without the lock.
    template <typename Work>
    void without(Work&& work) {
        lock_.unlock();
        work();
        lock_.lock();
    }

  private:
    std::unique_lock<std::mutex> lock_;
    Held& value_;
};

} // namespace quorvane

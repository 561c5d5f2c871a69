#pragma once

#include <QString>

#include <atomic>
#include <mutex>
#include <thread>

namespace quorvane {

/// Runs work one piece at a time, each on its caller's thread, like a synchronous dispatch onto a
/// serial queue. Work that is already on the queue runs directly, so nested calls never deadlock.
class SerialQueue {
  public:
    explicit SerialQueue(QString label) : label_(std::move(label)) {}

    const QString& label() const { return label_; }

    /// True when the calling thread is running work of this queue.
    bool isCurrent() const { return owner_.load() == std::this_thread::get_id(); }

    /// Results and exceptions pass through to the caller.
    template <typename Work>
    decltype(auto) sync(Work&& work) {
        if (isCurrent())
            return work();
        const std::lock_guard lock(mutex_);
        const Ownership ownership(owner_);
        return work();
    }

  private:
    class Ownership {
      public:
        explicit Ownership(std::atomic<std::thread::id>& owner) : owner_(owner) {
            owner_ = std::this_thread::get_id();
        }
        ~Ownership() { owner_ = std::thread::id(); }
        Ownership(const Ownership&) = delete;
        Ownership& operator=(const Ownership&) = delete;

      private:
        std::atomic<std::thread::id>& owner_;
    };

    QString label_;
    std::mutex mutex_;
    std::atomic<std::thread::id> owner_;
};

} // namespace quorvane

#include "support/Fakes.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace quorvane::test {

void RecordingLog::log(const QString& message) {
    const std::lock_guard lock(mutex_);
    messages_.append(message);
}

QStringList RecordingLog::messages() const {
    const std::lock_guard lock(mutex_);
    return messages_;
}

bool RecordingLog::contains(const QString& part) const {
    const std::lock_guard lock(mutex_);
    return !messages_.filter(part).isEmpty();
}

FakeClock::FakeClock(Date start) : start_(start) {}

Date FakeClock::now() const {
    const std::lock_guard lock(mutex_);
    return followsSystem_ ? SystemClock().now() : start_ + elapsed_;
}

Clock::Monotonic FakeClock::monotonic() const {
    const std::lock_guard lock(mutex_);
    return Monotonic(elapsed_);
}

bool FakeClock::sleep(std::chrono::milliseconds duration, std::stop_token stop) {
    std::unique_lock lock(mutex_);
    sleeps_.push_back(duration);
    moved_.notify_all();
    const auto end = elapsed_ + duration;
    if (skipSleeps_) {
        elapsed_ = end;
        return !stop.stop_requested();
    }
    moved_.wait(lock, stop, [&] { return elapsed_ >= end; });
    return !stop.stop_requested();
}

void FakeClock::advance(std::chrono::milliseconds duration) {
    const std::lock_guard lock(mutex_);
    elapsed_ += duration;
    moved_.notify_all();
}

void FakeClock::skipSleeps(bool on) {
    const std::lock_guard lock(mutex_);
    skipSleeps_ = on;
}

void FakeClock::followSystem() {
    const std::lock_guard lock(mutex_);
    followsSystem_ = true;
}

std::vector<std::chrono::milliseconds> FakeClock::sleeps() const {
    const std::lock_guard lock(mutex_);
    return sleeps_;
}

bool waitOnMainThread(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 10'000)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
    }
    return true;
}

} // namespace quorvane::test

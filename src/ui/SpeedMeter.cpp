#include "ui/SpeedMeter.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr std::chrono::seconds window{3};
constexpr std::chrono::milliseconds shortest{200}; // else a moment would be taken for a pace

} // namespace

void SpeedMeter::sample(std::int64_t sentBytes, Clock::Monotonic now) {
    samples_.push_back({now, sentBytes});
    while (samples_.size() > 2 && now - samples_[1].time >= window)
        samples_.pop_front();
    const Sample& first = samples_.front();
    if (now - first.time < shortest)
        return;
    current_ = static_cast<double>(sentBytes - first.bytes) /
               std::chrono::duration<double>(now - first.time).count();
    peak_ = std::max(peak_, current_);
}

void SpeedMeter::rest() {
    samples_.clear();
    current_ = 0;
}

} // namespace quorvane

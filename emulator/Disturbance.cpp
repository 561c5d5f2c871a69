#include "emulator/Disturbance.h"

namespace quorvane::emulator {

void DisturbancePlan::add(const Disturbance& fault) {
    entries_.push_back({.fault = fault, .seen = 0});
}

void DisturbancePlan::clear() {
    entries_.clear();
}

std::optional<Disturbance> DisturbancePlan::next(RequestKind kind, int failingPercent) {
    std::optional<Disturbance> hit;
    for (Entry& entry : entries_) {
        const Disturbance& fault = entry.fault;
        if (fault.kind != kind)
            continue;
        ++entry.seen;
        const bool isOver = fault.times != 0 && entry.seen >= fault.nth + fault.times;
        if (!hit && entry.seen >= fault.nth && !isOver)
            hit = fault;
    }
    return hit ? hit : passing(kind, failingPercent);
}

std::optional<Disturbance> DisturbancePlan::passing(RequestKind kind, int percent) {
    if (!isLibraryRequest(kind) || static_cast<int>(random_() % 100) >= percent)
        return std::nullopt;
    constexpr std::array statuses{429, 500, 503};
    return Disturbance{.kind = kind, .status = statuses[random_() % statuses.size()]};
}

} // namespace quorvane::emulator

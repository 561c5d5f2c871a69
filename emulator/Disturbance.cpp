#include "emulator/Disturbance.h"

namespace quorvane::emulator {

void DisturbancePlan::add(const Disturbance& fault) {
    entries_.push_back({.fault = fault, .seen = 0});
}

void DisturbancePlan::clear() {
    entries_.clear();
}

std::optional<Disturbance> DisturbancePlan::next(RequestKind kind) {
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
    return hit;
}

} // namespace quorvane::emulator

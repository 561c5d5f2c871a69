#include "emulator/Fault.h"

namespace quorvane::emulator {

void FaultPlan::add(const Fault& fault) {
    entries_.push_back({.fault = fault, .seen = 0});
}

void FaultPlan::clear() {
    entries_.clear();
}

std::optional<Fault> FaultPlan::next(RequestKind kind) {
    std::optional<Fault> hit;
    for (Entry& entry : entries_) {
        const Fault& fault = entry.fault;
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

#include "google/UploadLimit.h"

#include <algorithm>

namespace quorvane {

namespace {

/// What nobody used of the last moment may be caught up on: whoever asks is never quite in time.
constexpr std::chrono::milliseconds slack{100};
constexpr std::int64_t grantsPerSecond = 50;
constexpr std::int64_t leastGrant = 256; // bytes

} // namespace

UploadLimit::Grant UploadLimit::take(std::size_t wanted, std::int64_t bytesPerSecond,
                                     Steady::time_point now) {
    if (bytesPerSecond <= 0 || wanted == 0)
        return {.bytes = wanted};
    const auto paidUntil = paidUntil_.lock();
    *paidUntil = std::max(*paidUntil, now - slack);
    if (*paidUntil > now)
        return {.wait = std::min<Steady::duration>(*paidUntil - now, std::chrono::seconds(1))};
    const std::int64_t share = std::max(leastGrant, bytesPerSecond / grantsPerSecond);
    const auto bytes = std::min(wanted, static_cast<std::size_t>(share));
    *paidUntil += std::chrono::duration_cast<Steady::duration>(std::chrono::duration<double>(
        static_cast<double>(bytes) / static_cast<double>(bytesPerSecond)));
    return {.bytes = bytes};
}

} // namespace quorvane

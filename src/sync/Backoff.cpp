#include "sync/Backoff.h"

#include <algorithm>

namespace quorvane {

std::chrono::seconds backoffAfter(int consecutiveErrors) {
    constexpr int largestExponent = 6; // 2^6 is past the cap already
    const int exponent = std::clamp(consecutiveErrors, 0, largestExponent);
    return std::min(std::chrono::seconds(1 << exponent), maxBackoff);
}

} // namespace quorvane

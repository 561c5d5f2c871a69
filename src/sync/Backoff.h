#pragma once

#include <chrono>

namespace quorvane {

inline constexpr std::chrono::seconds maxBackoff{60};

/// How long to wait after the n-th failure in a row: 2, 4, 8, 16, 32, then 60 seconds.
std::chrono::seconds backoffAfter(int consecutiveErrors);

} // namespace quorvane

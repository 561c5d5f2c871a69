#pragma once

#include "google/GoogleAlbum.h"

/// When an album of Google Photos is full, nearly full, or about to be. Counts are of media items.
namespace quorvane::albumLimit {

constexpr bool isFull(std::int64_t itemCount) {
    return itemCount > GoogleAlbum::capacity - 1;
}

/// True for a full album too.
constexpr bool isNear(std::int64_t itemCount) {
    return itemCount > GoogleAlbum::nearLimit - 1;
}

/// True when the album cannot take so many more; also when the sum is no number any more.
constexpr bool wouldOverflow(std::int64_t itemCount, std::int64_t pendingCount) {
    std::int64_t sum = 0;
    return __builtin_add_overflow(itemCount, pendingCount, &sum) || sum > GoogleAlbum::capacity;
}

} // namespace quorvane::albumLimit

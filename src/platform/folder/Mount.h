#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>

#include <sys/types.h>

namespace quorvane {

/// What one rename reaches: a mounted file system.
struct Mount {
    dev_t device = 0;
    std::uint64_t number = 0; ///< of the mount; 0 where the system has none

    /// Throws `FileError`.
    static Mount of(const std::filesystem::path& folder);
    // NOLINTNEXTLINE(modernize-use-nullptr): the 0 is the compiler's own
    auto operator<=>(const Mount&) const = default;
};

} // namespace quorvane

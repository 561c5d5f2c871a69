#pragma once

#include "foundation/Date.h"
#include "metadata/MovieBoxes.h"

#include <filesystem>
#include <optional>

/// The dates that a movie carries. A movie that cannot be read has none. Any thread.
namespace quorvane {

/// The creation time of the movie header (`moov/mvhd`).
std::optional<Date> readMP4CreationDate(const std::filesystem::path& file,
                                        const MovieLimits& limits = {}) noexcept;

/// The creation time of the movie header, else the first creation date among the movie's texts:
/// the QuickTime metadata key `com.apple.quicktime.creationdate`, then the user data `©day` and
/// `date`, then the iTunes item `©day`.
std::optional<Date> readExistingVideoDate(const std::filesystem::path& file,
                                          const MovieLimits& limits = {}) noexcept;

} // namespace quorvane

#pragma once

#include "foundation/Date.h"
#include "metadata/movie/MovieBoxes.h"

#include <filesystem>
#include <optional>

/// The dates that a movie carries. A damaged movie has none; `Cancelled` is thrown, and what is the
/// system's fault (`isSystems`). A date of 2026 counts only when the file's name, or `originalName`
/// where the file bears another, has "2026" in it. Any thread.
namespace quorvane {

/// The creation time of the movie header (`moov/mvhd`).
std::optional<Date> readMP4CreationDate(const std::filesystem::path& file,
                                        const MovieLimits& limits = {},
                                        const QString& originalName = {});

/// The creation time of the movie header, else the first creation date among the movie's texts:
/// the QuickTime metadata key `com.apple.quicktime.creationdate` (of the movie, or of its user
/// data), then the user data `©day` and `date`, then the iTunes item `©day`.
std::optional<Date> readExistingVideoDate(const std::filesystem::path& file,
                                          const MovieLimits& limits = {},
                                          const QString& originalName = {});

} // namespace quorvane

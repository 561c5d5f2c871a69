#pragma once

#include "foundation/Log.h"
#include "metadata/MetadataTypes.h"
#include "metadata/MovieDates.h"
#include "metadata/MoviePatch.h"

namespace quorvane {

/// Writes the date into a movie, whatever date it has. A failure is logged and reported.
MetadataResult enrichVideoMetadata(const std::filesystem::path& file, Date targetDate,
                                   Log& log) noexcept;

} // namespace quorvane

#pragma once

#include "foundation/Log.h"
#include "metadata/MetadataTypes.h"
#include "metadata/movie/MovieDates.h"
#include "metadata/movie/MoviePatch.h"

namespace quorvane {

/// Writes the date into a movie, whatever date it has. A failure is logged and reported. Throws
/// nothing but `Cancelled`.
MetadataResult enrichVideoMetadata(const std::filesystem::path& file, Date targetDate, Log& log,
                                   Effect effect = Effect::write, std::stop_token stop = {});

} // namespace quorvane

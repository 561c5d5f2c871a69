#pragma once

#include "foundation/Date.h"
#include "foundation/Error.h"
#include "metadata/MetadataTypes.h"
#include "metadata/movie/MovieBoxes.h"

#include <filesystem>

namespace quorvane {

/// Seconds from 1904-01-01 UTC, where the clock of a movie starts, to 1970-01-01 UTC.
inline constexpr std::int64_t movieEpochOffset = 2082844800;

/// Why a movie cannot be given a date: the cases of the error domain "MediaMetadataService".
class MovieDateError : public Error {
  public:
    enum class Code {
        invalidFileSize = 1,
        beforeMovieEpoch = 2,
        noTimeBox = 3,
        beyondTimeField = 4, ///< past 2040-02-06 06:28:15 UTC, and the box has 32 bits
    };

    MovieDateError(Code code, const QString& description) : Error(description), code_(code) {}
    Code code() const noexcept { return code_; }

  private:
    Code code_;
};

/// Writes the date into the `mvhd`, `tkhd` and `mdhd` boxes of the movie, in place, and sets the
/// file's own date. Only their two time fields change; a time box that is too short, or of an
/// unknown version, is left as it is. The movie header comes last, behind a flush: once it states
/// the date, all do, whatever ends the process; and patching again what was patched half makes it
/// whole. Returns whether the header states it. Throws `MovieDateError`, `ParseError` (beyond the
/// limits), `Cancelled` or `FileError`; nothing was written then, but where the disk itself
/// refused.
bool patchMP4CreationDate(const std::filesystem::path& file, Date target,
                          const MovieLimits& limits = {}, Effect effect = Effect::write);

} // namespace quorvane

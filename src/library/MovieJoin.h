#pragma once

#include "library/PhotoLibrary.h"
#include "store/RecordLife.h"

namespace quorvane {

/// Makes a Motion Photo of a staged still, in its place: exports the movie beside it, gives it the
/// still's date, and joins the two. Returns what the movie was made of. Throws what the library,
/// the movie's date and `motion::join` throw, and `Cancelled`; the still is as it was then. Whoever
/// calls holds the staging lock.
RecordSource::Movie joinMovie(PhotoLibrary& library, const PhotoAssetResource& movie,
                              const std::filesystem::path& still, Date date,
                              const std::stop_token& stop);

} // namespace quorvane

#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>

/// What the XMP packet of a Motion Photo says (Motion Photo format 1.0): that a movie is appended,
/// in `GCamera`, and in a `Container:Directory` of which kind and length the parts are. Any thread.
namespace quorvane::motion {

/// A movie that is appended to a still.
struct Announcement {
    QByteArray stillType; ///< MIME types
    QByteArray movieType;
    std::uint64_t movieLength = 0;  ///< bytes; the movie is the end of the file
    std::uint64_t stillPadding = 0; ///< bytes between the still and the movie
};

/// The packet with the announcement; a new one when it is empty. Everything it says already stays,
/// but for the white space in which programs leave room. Throws `ContainerError` for one that
/// cannot be read, or that announces a movie already.
QByteArray withMovie(const QByteArray& packet, const Announcement& movie);

/// The length in bytes of the movie that a packet announces as the last part of the file; none when
/// it announces none, or cannot be read.
std::optional<std::uint64_t> announcedMovieLength(const QByteArray& packet);

} // namespace quorvane::motion

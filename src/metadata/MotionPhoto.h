#pragma once

#include "metadata/Rewrite.h"
#include "metadata/heif/HeifBoxes.h"

#include <QString>

#include <filesystem>
#include <optional>
#include <stop_token>

/// Motion Photos (Motion Photo format 1.0): a still, JPEG or HEIF, with a movie behind it, which
/// its XMP announces. In a HEIF file the movie is in an `mpvd` box. Any thread.
namespace quorvane::motion {

/// Whether a movie can be joined to a still of this extension (lower case, without the dot).
bool takesMovie(const QString& extension);

/// Throws `ParseError` unless the bytes are a whole movie: boxes that fill the file, media data,
/// and a header with a track.
void requireMovie(ByteView movie, const std::stop_token& stop = {});

/// The still with its announcement, up to where the bytes of the movie have to follow. Throws as
/// `join`, but for files.
Rewrite announcing(ByteView still, ByteView movie, const std::stop_token& stop = {});

/// Writes the still with the movie to `destination`, which must not exist; flushed, and whole or
/// not at all. The still's coded data and the movie keep their bytes; the same two files always
/// give the same third. Throws `ContainerError` or `ParseError` when they cannot be joined with
/// certainty, above all when the still has a movie already; `FileError`, `Cancelled`.
void join(const std::filesystem::path& still, const std::filesystem::path& movie,
          const std::filesystem::path& destination, const std::stop_token& stop = {});

/// Where in a Motion Photo its movie is; none for any other file. Throws nothing but `Cancelled`.
std::optional<heif::Range> movieIn(ByteView file, const std::stop_token& stop = {});

} // namespace quorvane::motion

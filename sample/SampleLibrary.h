#pragma once

#include <filesystem>

namespace quorvane::sample {

/// Writes a small library with the traps of real life: dated and undated pictures of several
/// formats, messaging-app names, a screenshot, a movie whose header says 1904, duplicates, an
/// album, a hidden file, a file that is no picture. Returns the number of files. Throws
/// `FileError`.
int writeSampleLibrary(const std::filesystem::path& folder);

/// Writes `count` small dated JPEGs, a thousand to a folder. Returns the number of files.
int writeManyPictures(const std::filesystem::path& folder, int count);

} // namespace quorvane::sample

#pragma once

#include "foundation/File.h"

#include <stop_token>

/// Reading originals and copying them out of a library. An original is only ever opened for
/// reading. Any thread.
namespace quorvane {

/// Opens a regular file for reading; the name itself may not be a symbolic link. Throws
/// `FileError`.
FileDescriptor openOriginal(const std::filesystem::path& file);

/// The same for a file below `root`, given by its path inside it: no name on the way may be ".." or
/// a symbolic link, so the file opened really is in `root`.
FileDescriptor openOriginalBeneath(const std::filesystem::path& root,
                                   const std::filesystem::path& relative);

/// Copies the opened `original` to `destination`, which must not exist: through a hidden sibling
/// ".<name>.part" (one left by a dead run is replaced), flushed, with the original's modification
/// time and mode 0600. The destination appears whole or not at all. Throws `FileError` (ENOSPC
/// before the first byte when the disk has no room), `PhotoLibraryError` when the original changed
/// meanwhile, `Cancelled` within a chunk after `stop`: a large sibling is then left to whoever
/// removes leftovers. `originalPath` is for messages.
void exportFile(const FileDescriptor& original, const std::filesystem::path& originalPath,
                const std::filesystem::path& destination, std::stop_token stop);

/// Deletes a file of any size. Freeing gigabytes at once takes seconds that no stop can cut short,
/// so the file is shortened step by step first. False, with what is left of it, when stopped or
/// refused.
bool removeInSteps(const std::filesystem::path& file, const std::stop_token& stop) noexcept;

/// A file name as a resource shows it: never empty, without path separators and control characters,
/// and short enough (200 bytes of UTF-8, extension kept) to get a prefix in a folder of ours.
QString resourceFilename(const QString& name, const QString& fallback);

} // namespace quorvane

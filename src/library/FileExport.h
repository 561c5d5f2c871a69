#pragma once

#include "foundation/File.h"

#include <stop_token>

namespace quorvane {
struct SourceContent;
}

/// Reading originals and copying them out of a library. An original is only ever opened for
/// reading. Any thread.
namespace quorvane {

/// Opens a regular file for reading; the name itself may not be a symbolic link. Throws
/// `FileError`.
FileDescriptor openOriginal(const std::filesystem::path& file);

/// The folder in which a file below `root`, given by its path inside it, has its name: no name on
/// the way may be ".." or a symbolic link, so the folder really is in `root`. Throws `FileError`.
FileDescriptor openFolderOf(const std::filesystem::path& root,
                            const std::filesystem::path& relative);

/// Opens the file itself in the same manner.
FileDescriptor openOriginalBeneath(const std::filesystem::path& root,
                                   const std::filesystem::path& relative);

/// Reads the opened original from its beginning to its end. Throws `FileError`,
/// `PhotoLibraryError` when it changed meanwhile, `Cancelled` within a chunk after `stop`.
/// `originalPath` is for messages.
SourceContent readContent(const FileDescriptor& original, const std::filesystem::path& originalPath,
                          const std::stop_token& stop);

/// The same, and what was read goes to `destination`, which must not exist: through a hidden
/// sibling ".<16 digits>.part" that nobody else writes, flushed, with the original's modification
/// time and mode 0600. The destination appears whole or not at all. Throws also when the disk has
/// no room (ENOSPC, mostly before the first byte). When stopped, a large sibling is left to whoever
/// removes leftovers.
SourceContent exportFile(const FileDescriptor& original, const std::filesystem::path& originalPath,
                         const std::filesystem::path& destination, const std::stop_token& stop);

/// The sample of an opened original's content, for `SourceContent`. Throws `FileError`.
std::int64_t contentSample(const FileDescriptor& original,
                           const std::filesystem::path& originalPath);

/// The same of content that comes as a stream: of `size` bytes the first and the last
/// `sampledBytes`, or all of them twice where there are fewer.
std::int64_t contentSample(QByteArrayView beginning, QByteArrayView end, std::int64_t size);
inline constexpr std::int64_t sampledBytes = 4096;

/// Renames a file, each name in a folder (a descriptor, or AT_FDCWD), but never over something that
/// has the new name: EEXIST then. 0, or the system's error number.
int renameToNew(int fromFolder, const std::filesystem::path& from, int toFolder,
                const std::filesystem::path& to) noexcept;

/// Deletes a file of any size. Freeing gigabytes at once takes seconds that no stop can cut short,
/// so the file is shortened step by step first. False, with what is left of it, when stopped or
/// refused.
bool removeInSteps(const std::filesystem::path& file, const std::stop_token& stop) noexcept;

/// A file name as a resource shows it: never empty, without path separators and control characters,
/// and no longer than a file's name can be (255 bytes of UTF-8, extension kept): what its end tells
/// is not lost.
QString resourceFilename(const QString& name, const QString& fallback);

} // namespace quorvane

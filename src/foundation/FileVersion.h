#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

struct stat;

namespace quorvane {

/// What a file system says of a file's content without reading it. A file that changed has another
/// version, unless somebody forged its times; one whose version differs may still hold the same
/// bytes.
struct FileVersion {
    std::int64_t size = 0;     ///< bytes
    std::int64_t modified = 0; ///< content changed: nanoseconds since 1970
    std::int64_t changed = 0;  ///< content, name or permissions changed: the same
    std::uint64_t inode = 0;   ///< the file itself, within its file system

    static FileVersion of(const struct stat& status);
    bool operator==(const FileVersion&) const = default;
};

/// Of the regular file at `path`, links not followed; none when there is none.
std::optional<FileVersion> fileVersion(const std::filesystem::path& path) noexcept;

/// Of an open file. Throws `FileError` naming `path`.
FileVersion fileVersion(int descriptor, const std::filesystem::path& path);

} // namespace quorvane

#pragma once

#include "foundation/File.h"

#include <compare>

#include <sys/stat.h>

namespace quorvane {

/// What one rename reaches: a mounted file system.
struct Mount {
    dev_t device = 0;
    std::uint64_t number = 0; ///< of the mount; 0 where the system has none

    /// Throws `FileError`.
    static Mount of(const std::filesystem::path& folder);
    auto operator<=>(const Mount&) const = default;
};

/// A Trash of the user's desktop, after the freedesktop.org rules for Trash folders 1.0: the home
/// Trash for what is on the home's file system, one at the top of every other file system. Nothing
/// is ever copied into it or replaced in it. One thread at a time.
class Trash {
  public:
    /// The one for files in `folder`, a canonical path; made when there is none. Throws
    /// `FileError` when that cannot be done.
    static Trash forFilesIn(const std::filesystem::path& folder);

    const std::filesystem::path& place() const { return place_; }

    /// Moves the file `name` of the opened `folder` here, and returns its name in the Trash. `path`
    /// is the file's canonical path, to be restored to. Throws `FileError`; the file is where it
    /// was then.
    std::string take(const FileDescriptor& folder, const std::filesystem::path& path);

    /// Of a file that was taken, links not followed. Throws `FileError`.
    struct stat statusOf(const std::string& name) const;

    /// Undoes a `take`; false when its place has another file by now, or cannot be written.
    bool giveBack(const std::string& name, const FileDescriptor& folder,
                  const std::filesystem::path& path) noexcept;

  private:
    Trash(std::filesystem::path place, std::filesystem::path top, const Mount& mount);
    static Trash atTopOf(const std::filesystem::path& folder, const Mount& mount);

    /// Reserves a name: none when it is in use.
    bool writeInfo(const std::string& name, const QByteArray& text) const;

    std::filesystem::path place_;
    std::filesystem::path top_; ///< paths are written relative to it; empty in the home Trash
    FileDescriptor files_, info_;
};

} // namespace quorvane

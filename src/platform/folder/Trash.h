#pragma once

#include "foundation/File.h"

#include <memory>

#include <sys/stat.h>

namespace quorvane {

/// A Trash of the person's desktop. Nothing is replaced in it. One thread at a time.
class Trash {
  public:
    virtual ~Trash() = default;

    /// The desktop's own one for files in `folder`, a canonical path; made when there is none.
    /// Throws `FileError` when that cannot be done.
    static std::unique_ptr<Trash> forFilesIn(const std::filesystem::path& folder);

    virtual const std::filesystem::path& place() const = 0;

    /// Moves the file of the opened `folder` here, and returns its name in the Trash. `path` is the
    /// file's canonical path, to be restored to. Throws `Error`; the file is where it was then.
    virtual std::string take(const FileDescriptor& folder, const std::filesystem::path& path) = 0;

    /// Of a file that was taken, links not followed. Throws `FileError`.
    virtual struct stat statusOf(const std::string& name) const = 0;

    /// Undoes a `take`; false when its place has another file by now, or cannot be written.
    virtual bool giveBack(const std::string& name, const FileDescriptor& folder,
                          const std::filesystem::path& path) noexcept = 0;
};

} // namespace quorvane

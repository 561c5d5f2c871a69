#pragma once

#include "foundation/File.h"

#include <optional>
#include <stop_token>

namespace quorvane {

/// Keeps out whoever else locks the same file, in any thread or process, while it lives. The lock
/// belongs to the open file: it ends with the process, however that ends.
class FileLock {
  public:
    /// Creates the file when absent (mode 0600) and waits until it is free. Throws `FileError`, or
    /// `Cancelled` when `stop` was requested meanwhile.
    explicit FileLock(const std::filesystem::path& file, const std::stop_token& stop = {});

    /// Does not wait: none when somebody else holds it. Throws `FileError`.
    static std::optional<FileLock> tryLock(const std::filesystem::path& file);

    const FileDescriptor& descriptor() const { return file_; }

  private:
    explicit FileLock(FileDescriptor file) : file_(std::move(file)) {}

    FileDescriptor file_;
};

} // namespace quorvane

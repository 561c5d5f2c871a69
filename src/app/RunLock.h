#pragma once

#include "foundation/FileLock.h"

#include <filesystem>

namespace quorvane {

/// Another run of the same user is at work.
class RunLockHeld : public Error {
  public:
    using Error::Error;
};

/// One run at a time per user, across processes. The lock belongs to the open file, so it ends with
/// the process, however that ends; the file's content only says who holds it.
class RunLock {
  public:
    /// Throws `RunLockHeld`, naming the holder, or `FileError`.
    explicit RunLock(const std::filesystem::path& file);

  private:
    std::optional<FileLock> lock_;
};

/// Who else runs now: what the lock file says of them. Takes no lock that is free, makes no file.
std::optional<QString> otherRun(const std::filesystem::path& file);

} // namespace quorvane

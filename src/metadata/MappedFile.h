#pragma once

#include "foundation/ByteReader.h"
#include "foundation/File.h"

#include <filesystem>

#include <sys/stat.h>

namespace quorvane {

/// The bytes of a regular file, mapped for reading only. Owns the mapping; nobody may cut the file
/// short meanwhile.
class MappedFile {
  public:
    /// Throws `FileError`, also for what is no regular file.
    explicit MappedFile(const std::filesystem::path& path);
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile();

    ByteView bytes() const noexcept { return bytes_; }
    int descriptor() const noexcept { return file_.get(); }
    const struct stat& information() const noexcept { return information_; }

  private:
    FileDescriptor file_;
    struct stat information_ {};
    ByteView bytes_;
};

} // namespace quorvane

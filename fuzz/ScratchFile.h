#pragma once

#include "foundation/File.h"

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane::fuzz {

/// A file for parsers that read no bytes but files; in memory, in a folder of this process's own.
class ScratchFile {
  public:
    explicit ScratchFile(const char* name) {
        std::string folder = "/dev/shm/quorvane-fuzz-XXXXXX";
        if (::mkdtemp(folder.data()) == nullptr)
            std::abort();
        folder_ = folder;
        path_ = folder_ / name;
    }
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path& path() const { return path_; }
    void write(ByteView bytes) const {
        writeAll(openFile(path_, O_WRONLY | O_CREAT | O_TRUNC).get(), bytes, path_);
    }

  private:
    std::filesystem::path folder_, path_;
};

} // namespace quorvane::fuzz

#pragma once

#include "foundation/File.h"

namespace quorvane {

/// A folder of mode 0700 in `parent`, gone with its owner. It stays locked while its owner lives,
/// so a later run recognises and removes what a dead one left. Owned by one thread at a time.
class PrivateFolder {
  public:
    /// Creates `parent` when absent and removes left-overs there. Throws `FileError`.
    explicit PrivateFolder(const std::filesystem::path& parent);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
    FileDescriptor lock_;
};

} // namespace quorvane

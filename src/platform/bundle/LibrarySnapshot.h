#pragma once

#include "platform/bundle/PrivateFolder.h"

#include <cstdint>

namespace quorvane {

/// A private copy of a bundle's database as it stood at one moment: the file and its write-ahead
/// log, which may hold every row. SQLite would checkpoint the original if it opened it.
class LibrarySnapshot {
  public:
    /// Copies below `workFolder`. Throws `PhotoLibraryError` when the bundle has no such database
    /// or never stands still, `FileError` when the copy fails.
    LibrarySnapshot(const std::filesystem::path& bundle, const std::filesystem::path& workFolder);

    std::filesystem::path database() const { return folder_.path() / "Photos.sqlite"; }

    /// False when the bundle's database changed since the copy, or is gone.
    bool isCurrent() const;

  private:
    struct FileVersion {
        std::int64_t size = -1, modified = 0;
        std::uint64_t inode = 0;
        bool operator==(const FileVersion&) const = default;
    };
    struct Version {
        FileVersion database, log; ///< size -1: absent
        bool operator==(const Version&) const = default;
    };

    static FileVersion versionOf(const std::filesystem::path& file);
    Version currentVersion() const;
    void copy(const char* name) const;

    std::filesystem::path bundle_;
    PrivateFolder folder_;
    Version version_;
};

} // namespace quorvane

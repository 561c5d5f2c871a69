#pragma once

#include "foundation/File.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace quorvane {

/// Tells of many names in few folders, fast, which of them are not there: each folder is opened
/// once. No symbolic link below the root is followed. One thread.
class FoldersBeneath {
  public:
    explicit FoldersBeneath(std::filesystem::path root) : root_(std::move(root)) {}

    /// `relative` is below the root and goes nowhere up. False as well where nobody can tell.
    bool isMissing(const std::filesystem::path& relative);

  private:
    struct Folder {
        FileDescriptor file;
        bool isMissing = false; ///< else, when it is not open, nobody can tell
    };
    const Folder& folder(std::string_view relative);

    const std::filesystem::path root_;
    std::map<std::string, Folder, std::less<>> folders_;
};

} // namespace quorvane

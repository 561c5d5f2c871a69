#pragma once

#include "foundation/FileVersion.h"
#include "store/AssetIdentifier.h"
#include "store/DatabaseManager.h"

#include <string>

namespace quorvane {

/// A file of a folder library and the asset that its version is. The path is the bytes of the path
/// inside the library.
struct LibraryFile {
    std::string path;
    AssetIdentifier identifier;
    FileVersion version;
};

/// The table of a folder library's files. Any thread. Throws `DBError`.
class LibraryFiles {
  public:
    explicit LibraryFiles(DatabaseManager& database) : db_(database) {}

    std::vector<LibraryFile> all();
    /// All or nothing. A file takes the place of what was known of its path.
    void update(const std::vector<LibraryFile>& changed, const std::vector<std::string>& gone);

  private:
    DatabaseManager& db_;
};

} // namespace quorvane

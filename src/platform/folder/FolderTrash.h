#pragma once

#include <filesystem>
#include <vector>

namespace quorvane {

/// Moves files, given by their paths inside `root`, to the desktop's Trash: all of them, or none. A
/// move that fails takes the earlier ones back and throws `PhotoLibraryError` naming the file.
void moveToTrash(const std::filesystem::path& root,
                 const std::vector<std::filesystem::path>& files);

} // namespace quorvane

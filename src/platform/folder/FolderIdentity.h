#pragma once

#include "store/LibraryFiles.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace quorvane {

/// What the file system says a folder is: its volume, and the folder itself in it. The same text
/// after the folder was renamed or moved within its volume, or mounted elsewhere; another one for
/// every other folder, also for one that took its name. Empty when the file system says nothing
/// that lasts. Never throws.
QString folderLibraryIdentity(const std::filesystem::path& root);

/// True when at least half of the files, of which 64 are looked at, are in the folder as they were;
/// also when there are none. Never throws.
bool holdsFiles(const std::filesystem::path& root, const std::vector<LibraryFile>& files);

/// True for the names of the folders in which the product keeps staged copies.
bool isStagingFolderName(std::string_view name);

/// True for such a folder, by whatever links it is reached, and for what lies in one: never a
/// library.
bool isStagingFolder(const std::filesystem::path& path);

} // namespace quorvane

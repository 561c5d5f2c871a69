#pragma once

#include <QString>

#include <filesystem>
#include <string_view>

namespace quorvane {

/// What the file system says a folder is: its volume, and the folder itself in it. The same text
/// after the folder was renamed or moved within its volume, or mounted elsewhere; another one for
/// every other folder, also for one that took its name. Empty when the file system says nothing
/// that lasts. Never throws.
QString folderLibraryIdentity(const std::filesystem::path& root);

/// True for the names of the folders in which the product keeps staged copies.
bool isStagingFolderName(std::string_view name);

/// True for such a folder, by whatever links it is reached, and for what lies in one: never a
/// library.
bool isStagingFolder(const std::filesystem::path& path);

} // namespace quorvane

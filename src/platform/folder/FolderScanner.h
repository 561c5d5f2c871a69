#pragma once

#include "library/PhotoLibrary.h"
#include "platform/folder/FolderIndex.h"

#include <functional>
#include <stop_token>
#include <string_view>

namespace quorvane {

/// Told of each picture or folder that is left out, by its path inside the library, and why.
using SkipHandler = std::function<void(const std::string& path, const QString& reason)>;

/// True where an earlier scan found that very version of the file, readable and closed: nobody has
/// written to it since.
using KnownVersion = std::function<bool(const std::string& path, const FileVersion& version)>;

/// What the name of a file, or its path, makes of it; `unknown` when it is no picture or movie.
AssetMediaType mediaTypeOfName(std::string_view path);

/// Walks the tree below `root`. Left out: what is hidden, symbolic links (what they show inside the
/// library is found on its own), Photos bundles, what may not be read, what is being written, and
/// the product's own staging folders. Of a known version that is not asked again. The files found
/// have no identifiers yet. Throws `PhotoLibraryError` when `root` itself cannot be read, or
/// `Cancelled`.
FolderScan scanFolder(const std::filesystem::path& root, const KnownVersion& isKnown,
                      const SkipHandler& skipped, const std::stop_token& stop = {});

} // namespace quorvane

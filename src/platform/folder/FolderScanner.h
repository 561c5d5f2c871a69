#pragma once

#include "library/PhotoLibrary.h"
#include "platform/folder/FolderIndex.h"

#include <functional>
#include <stop_token>

namespace quorvane {

/// Told of each picture or folder that is left out, by its path inside the library, and why.
using SkipHandler = std::function<void(const std::string& path, const QString& reason)>;

/// What the name of a file makes of it; `unknown` when it is no picture or movie.
AssetMediaType mediaTypeOfName(const std::filesystem::path& name);

/// Walks the tree below `root`. Left out: what is hidden, symbolic links (what they show inside the
/// library is found on its own), Photos bundles, what may not be read, what is being written, and
/// the product's own staging folders. The files found have no identifiers yet. Throws
/// `PhotoLibraryError` when `root` itself cannot be read, or `Cancelled`.
FolderScan scanFolder(const std::filesystem::path& root, const SkipHandler& skipped,
                      const std::stop_token& stop = {});

} // namespace quorvane

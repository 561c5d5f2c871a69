#pragma once

#include "platform/bundle/PhotosDatabase.h"

namespace quorvane {

/// The resources of an asset of a bundle, the original first: what the file system has, and the
/// original (with the movie of a live photo) even when its bytes are not on this machine. A
/// resource's location is relative to the bundle, or absolute for a referenced original.
std::vector<PhotoAssetResource> resourcesIn(const std::filesystem::path& bundle,
                                            const PhotosAssetFiles& asset);

} // namespace quorvane

#pragma once

#include "metadata/heif/HeifItems.h"
#include "metadata/heif/HeifLayout.h"

#include <vector>

namespace quorvane::heif {

/// The chunk offsets of the movies in a HEIF file (image sequences, bursts) as they are in a new
/// layout. Throws `ContainerError` when the file has another structure that counts on where bytes
/// stand in it, `ParseError` when a movie is broken.
std::vector<Patch> movedChunkOffsets(const Picture& picture, const Layout& layout,
                                     const Limits& limits);

} // namespace quorvane::heif

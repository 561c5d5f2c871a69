#pragma once

#include "foundation/ByteReader.h"

#include <QByteArray>

#include <cstdint>

namespace quorvane {

/// The Exif block `exif`, which takes the place of one of `oldSize` bytes and is `growth` longer.
/// Some makers' notes point at a large preview that stands behind the block, in the rest of the
/// JPEG file: a LONG that counts from the TIFF header or from the note. Those that find a picture
/// there in `file`, which begins with the old block, are moved along. Throws nothing.
QByteArray withMovedPreviews(ByteView exif, ByteView file, std::uint64_t oldSize,
                             std::int64_t growth);

} // namespace quorvane

#pragma once

#include "foundation/ByteReader.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <string_view>

namespace quorvane::png {

/// The Exif block, from its TIFF header on, in a text chunk ("tEXt", "zTXt", "iTXt") of the keyword
/// "Raw profile type exif" or "... APP1": hexadecimal, the way programs kept Exif in PNG files
/// before there was a chunk for it. None for any other chunk, and for one that holds something else
/// or is broken. Throws `ParseError` when it unpacks to more than `limit` bytes.
std::optional<QByteArray> rawExifProfile(std::string_view chunkType, ByteView data,
                                         std::uint64_t limit);

} // namespace quorvane::png

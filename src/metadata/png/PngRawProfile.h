#pragma once

#include "foundation/ByteReader.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <string_view>

/// Text chunks ("tEXt", "zTXt", "iTXt") of the keyword "Raw profile type exif" or "... APP1": Exif
/// in hexadecimal, the way programs kept it in PNG files before there was a chunk for it.
namespace quorvane::png {

/// True when the chunk begins as such a profile; looks at no more than its beginning.
bool isRawExifProfile(std::string_view chunkType, ByteView data);

/// The Exif block in it, from its TIFF header on. None for any other chunk, for one that is broken,
/// and for one that unpacks to more than `budget` bytes; what it unpacks to is taken off the
/// budget.
std::optional<QByteArray> rawExifProfile(std::string_view chunkType, ByteView data,
                                         std::uint64_t& budget);

} // namespace quorvane::png

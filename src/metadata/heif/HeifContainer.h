#pragma once

#include "metadata/Rewrite.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <stop_token>

/// The Exif block and the XMP packet of a HEIF picture (ISO/IEC 23008-12 on the boxes of ISO/IEC
/// 14496-12).
namespace quorvane::heif {

/// What a file may ask of us; one that asks more is refused with `ParseError`.
struct Limits {
    std::uint32_t boxes = 65'536;            ///< boxes visited, at every level together
    std::uint32_t items = 65'536;            ///< items that are declared, or located
    std::uint32_t extents = 262'144;         ///< extents of all items together
    std::uint32_t references = 262'144;      ///< references between items
    std::uint32_t chunks = 4'194'304;        ///< chunk offsets of a movie in the same file
    std::uint32_t depth = 8;                 ///< boxes within boxes
    std::uint64_t metadataBytes = 64U << 20; ///< of an Exif block or an XMP packet
    std::stop_token stop = {};               ///< when requested, `Cancelled` is thrown
};

/// The Exif block of the primary image from its TIFF header on, without the 4-byte offset and any
/// "Exif\0\0" before it; none when the image has none that can be read. Throws `ParseError` for a
/// file that is broken, `ContainerError` for an item that is stored in a way we do not read. Any
/// thread.
std::optional<QByteArray> readExif(ByteView file, const Limits& limits = {});

/// The file with `exif` (from its TIFF header on) as the Exif of its primary image, whatever it had
/// before; every other item keeps its bytes. A block of the same length is written over the old
/// one; any other goes into a media data box of its own behind the metadata. The same input gives
/// the same bytes, and a second call with the same block changes nothing. Throws `ParseError` for a
/// broken file and `ContainerError` for a layout that cannot be rewritten with certainty. Any
/// thread.
Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits = {});

/// The XMP packet of the primary image; none when it has none that can be read. Throws as
/// `readExif`.
std::optional<QByteArray> readXmp(ByteView file, const Limits& limits = {});

/// The same as `replaceExif`, for its XMP packet.
Rewrite replaceXmp(ByteView file, ByteView xmp, const Limits& limits = {});

} // namespace quorvane::heif

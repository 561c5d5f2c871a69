#pragma once

#include "metadata/Rewrite.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <stop_token>

/// The Exif block of a PNG file (PNG, third edition: eXIf). Any thread.
namespace quorvane::png {

/// What a file may ask of us; one that asks more is refused with `ParseError`.
struct Limits {
    std::uint32_t chunks = 1U << 20;
    std::uint64_t profileBytes = 16U << 20; ///< of all raw profiles together, unpacked
    std::stop_token stop = {};              ///< when requested, `Cancelled` is thrown
};

/// The Exif block, from its TIFF header on: the first eXIf chunk that has one, else the raw profile
/// text that older programs write; none when there is neither. May refer to the bytes of `file`,
/// which may be cut off: decoders show what is there. Throws `ParseError` for any other file.
std::optional<QByteArray> readExif(ByteView file, const Limits& limits = {});

/// The file with `exif` as its only eXIf chunk, before the image data; a raw Exif profile, which
/// would contradict it, is left out. Every other chunk, a last one that is cut
/// off, and what follows IEND keep their bytes. Throws `ParseError` for a file without image data.
Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits = {});

} // namespace quorvane::png

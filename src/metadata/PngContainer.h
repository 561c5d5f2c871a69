#pragma once

#include "metadata/Rewrite.h"

#include <QByteArray>

#include <cstdint>
#include <optional>

/// The Exif block of a PNG file (PNG, third edition: eXIf). Any thread.
namespace quorvane::png {

/// What a file may ask of us; one that asks more is refused with `ParseError`.
struct Limits {
    std::uint32_t chunks = 1U << 20;
    std::uint64_t profileBytes = 16U << 20; ///< of a raw profile, unpacked
};

/// The Exif block, from its TIFF header on: the eXIf chunk, else the raw profile text that older
/// programs write; none when there is neither. May refer to the bytes of `file`. Throws
/// `ParseError` for a broken file.
std::optional<QByteArray> readExif(ByteView file, const Limits& limits = {});

/// The file with `exif` as its only eXIf chunk, before the image data; a raw Exif profile, which
/// would contradict it, is left out. Every other chunk and what follows IEND keep their bytes.
/// Throws `ParseError` for a broken file.
Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits = {});

} // namespace quorvane::png

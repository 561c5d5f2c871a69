#pragma once

#include "metadata/Rewrite.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <stop_token>

/// The Exif segment of a JPEG file (ITU-T T.81, Annex B; Exif 2.32, 4.7). Any thread.
namespace quorvane::jpeg {

/// What a file may ask of us; one that asks more is refused with `ParseError`.
struct Limits {
    std::uint32_t segments = 65'536; ///< before the first scan
    std::stop_token stop = {};       ///< when requested, `Cancelled` is thrown
};

/// The first Exif block, from its TIFF header on; none when there is none. Bytes between segments
/// are passed over, as decoders do. Refers to the bytes of `file`. Throws `ParseError` for a file
/// that is broken before its first scan.
std::optional<QByteArray> readExif(ByteView file, const Limits& limits = {});

/// The file with `exif` in place of its first Exif block, or right behind SOI and the JFIF
/// segments when it has none; further Exif segments, which would contradict it, are left out. From
/// the first scan on nothing changes; the index of a multi-picture file (CIPA DC-007) and the maker
/// note's pointers to pictures behind the block are moved along. Throws `ParseError` as above and
/// `ContainerError` when the block is too long for a segment, or Exif data of several segments
/// would have to grow.
Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits = {});

} // namespace quorvane::jpeg

#pragma once

#include "metadata/jpeg/JpegSegments.h"

#include <QByteArray>

#include <optional>

/// The Exif and XMP segments of a JPEG file (ITU-T T.81, Annex B; Exif 2.32, 4.7; ISO 16684-1). Any
/// thread.
namespace quorvane::jpeg {

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

/// The main XMP packet; none when there is none. Refers to the bytes of `file`. Throws `ParseError`
/// as above.
std::optional<QByteArray> readXmp(ByteView file, const Limits& limits = {});

/// The file with `xmp` as its main packet, in place of the old one, else behind the Exif data; an
/// extended packet stays as it is, and so does everything from the first scan on. Throws as
/// `replaceExif`.
Rewrite replaceXmp(ByteView file, ByteView xmp, const Limits& limits = {});

} // namespace quorvane::jpeg

#pragma once

#include "metadata/Rewrite.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <stop_token>

/// The Exif chunk of a WebP file (the RIFF container of WebP). Any thread.
namespace quorvane::webp {

/// What a file may ask of us; one that asks more is refused with `ParseError`.
struct Limits {
    std::uint32_t chunks = 1U << 20;
    std::stop_token stop = {}; ///< when requested, `Cancelled` is thrown
};

/// The first Exif block, from its TIFF header on; none when there is none. Refers to the bytes of
/// `file`. Throws `ParseError` for a broken file.
std::optional<QByteArray> readExif(ByteView file, const Limits& limits = {});

/// The file with `exif` as its Exif chunk: in place of the first one, else behind the image. A file
/// of the simple format becomes one of the extended format. Every other chunk, animation included,
/// and what follows the RIFF chunk keep their bytes. Throws `ParseError` for a broken file,
/// `ContainerError` when it would grow past what RIFF can say.
Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits = {});

} // namespace quorvane::webp

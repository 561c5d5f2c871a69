#pragma once

#include "foundation/Date.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>

/// Small, valid, viewable pictures and movies, made without any codec library: a mosaic whose
/// colours follow from `seed`. The same arguments give the same bytes.
namespace quorvane::sample {

/// Baseline JPEG (ITU-T T.81) whose blocks carry only their DC coefficient. `exifDate`
/// ("2021:03:05 18:22:10"), when given, becomes DateTimeOriginal, DateTimeDigitized and DateTime.
QByteArray jpeg(std::uint32_t seed, const std::optional<QByteArray>& exifDate);

/// RGB PNG (ISO/IEC 15948); the date goes into an eXIf chunk.
QByteArray png(std::uint32_t seed, const std::optional<QByteArray>& exifDate);

/// Uncompressed little-endian RGB TIFF 6.0; the date goes into its Exif directory.
QByteArray tiff(std::uint32_t seed, const std::optional<QByteArray>& exifDate);

/// Lossless one-colour WebP without any metadata.
QByteArray webp(std::uint32_t seed);

/// One-colour GIF89a.
QByteArray gif(std::uint32_t seed);

enum class MovieBrand { quickTime, mp4 };

/// A one-second movie of uncompressed RGB frames whose header times are `secondsSince1904`.
QByteArray movie(std::uint32_t seed, MovieBrand brand, std::uint32_t secondsSince1904);

} // namespace quorvane::sample

#pragma once

#include "foundation/ByteReader.h"

#include <optional>

namespace quorvane {

enum class ImageFormat { jpeg, png, webp, tiff, heif };

/// The container a file's first bytes show, whatever its name says; none for any other.
std::optional<ImageFormat> imageFormatOf(ByteView file);

} // namespace quorvane

#pragma once

#include "foundation/ByteReader.h"

#include <QByteArray>

#include <cstdint>

namespace quorvane::jpeg {

/// The index of a multi-picture file (CIPA DC-007, from its TIFF header on) after the first picture
/// grew by `growth` bytes, `growthBehind` of them behind the index: its size, and the places of the
/// others, which count from the index. The same length as before. Throws `ParseError` for a
/// broken index.
QByteArray movedMultiPictureIndex(ByteView index, std::int64_t growth, std::int64_t growthBehind);

} // namespace quorvane::jpeg

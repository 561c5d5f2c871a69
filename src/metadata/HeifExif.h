#pragma once

#include "metadata/HeifItems.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace quorvane::heif {

/// An Exif item and where its bytes are.
struct ExifItem {
    std::size_t location = 0; ///< index in the picture's locations
    std::vector<Range> ranges;
    /// None when it cannot be read: no Exif, or extents that cover one another.
    std::optional<QByteArray> payload;
    qsizetype headerLength = 0; ///< of the payload, before its TIFF header
};

bool isTiff(ByteView bytes);

/// The Exif items that describe the primary image, in the order of the file. An only Exif item that
/// describes nothing at all is taken for the primary image's: nothing else can be meant.
std::vector<Item> exifItemsOf(const Picture& picture);

/// Throws `ParseError` when it is not known where the item is, `ContainerError` when it is
/// protected or stored outside the file or within another item.
ExifItem readExifItem(const Picture& picture, const Item& item, const Limits& limits);

/// True when all bytes of the item are its own and in a box made for data, so that writing over
/// them changes nothing else.
bool canOverwrite(const Picture& picture, const ExifItem& exif);

} // namespace quorvane::heif

#pragma once

#include "metadata/heif/HeifItems.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace quorvane::heif {

/// An item of metadata and where its bytes are.
struct MetadataItem {
    std::size_t location = 0; ///< index in the picture's locations
    std::vector<Range> ranges;
    /// None when it cannot be read: extents that cover one another, or no Exif in an Exif item.
    std::optional<QByteArray> payload;
    qsizetype headerLength = 0; ///< of an Exif payload, before its TIFF header
};

bool isTiff(ByteView bytes);

/// The items of a kind that describe the primary image, in the order of the file. An only one that
/// describes nothing at all is taken for the primary image's: nothing else can be meant.
std::vector<Item> itemsOf(const Picture& picture, const ItemKind& kind);

/// Throws `ParseError` when it is not known where the item is, `ContainerError` when it is
/// protected or stored outside the file or within another item.
MetadataItem readItem(const Picture& picture, const Item& item, const Limits& limits);

/// True when all bytes of the item are its own and in a box made for data, so that writing over
/// them changes nothing else.
bool canOverwrite(const Picture& picture, const MetadataItem& item);

} // namespace quorvane::heif

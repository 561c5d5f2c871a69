#include "metadata/heif/HeifContainer.h"

#include "metadata/heif/HeifLayout.h"
#include "metadata/heif/HeifMetadata.h"
#include "metadata/heif/HeifRelocation.h"

#include <algorithm>

// How a block finds its place
//
// A block as long as the old one is written over it: no other byte of the file changes. Any other
// block goes into a media data box of its own right behind `meta`, and `meta` is written anew with
// what has to point at it. This is the one place that is right in every file: what follows moves as
// a whole, a last box of open length stays the last, and private boxes that programs look for at
// the end of a file stay there. What moved is corrected: the locations of items and the chunk
// offsets of a movie. The bytes of the old block stay where they were, unused, because taking them
// out of the middle of a media data box would move its content piecemeal; but a box that we put
// behind `meta` ourselves is replaced, so that further rewrites leave nothing behind.

namespace quorvane::heif {

namespace {

/// What stands before the TIFF header in a payload that we make: the count of bytes to skip.
const QByteArray newHeader("\0\0\0\6Exif\0\0", 10);

Rewrite overwrite(const Picture& picture, const MetadataItem& item, const QByteArray& payload) {
    std::vector<Patch> patches;
    qsizetype at = 0;
    for (const Range& range : item.ranges) {
        const auto length = static_cast<qsizetype>(range.length);
        patches.push_back({range.offset, payload.sliced(at, length)});
        at += length;
    }
    Layout layout;
    layout.keep({0, picture.file.size()});
    return layout.rewrite(std::move(patches));
}

/// What an item in this file has must be known, or it is not known what may be overwritten.
void requireWholeItems(const Picture& picture) {
    for (const Location& location : picture.locations.entries) {
        const bool isElsewhere = location.method == Location::inItem || location.dataReference != 0;
        if (!isElsewhere && !picture.rangesOf(location))
            throw ContainerError(QStringLiteral("Bir öğenin verisi dosyanın dışında"));
    }
}

/// An item that is made of parts of other items would change with them.
void requireNoCopies(const Picture& picture, std::uint32_t item) {
    for (const Reference& reference : picture.references)
        if (reference.type == fourCC("iloc") &&
            std::ranges::find(reference.to, item) != reference.to.end())
            throw ContainerError(QStringLiteral("Üst veri başka bir öğenin parçası"));
}

/// The item of this kind that describes the primary image; none when there is none. Throws
/// `ContainerError` where it is not certain what may be overwritten.
std::optional<MetadataItem> replaceable(const Picture& picture, const ItemKind& kind,
                                        const Limits& limits) {
    requireWholeItems(picture);
    const std::vector<Item> items = itemsOf(picture, kind);
    if (items.size() > 1)
        throw ContainerError(QStringLiteral("Birincil görselin aynı türden birden fazla üst veri "
                                            "öğesi var"));
    if (items.empty())
        return std::nullopt;
    requireNoCopies(picture, items.front().id);
    return readItem(picture, items.front(), limits);
}

Rewrite replaced(const Picture& picture, const ItemKind& kind,
                 const std::optional<MetadataItem>& old, QByteArray payload, const Limits& limits) {
    if (static_cast<std::uint64_t>(payload.size()) > limits.metadataBytes)
        throw ContainerError(QStringLiteral("Yeni üst veri çok büyük"));
    if (old && old->payload && old->payload->size() == payload.size() &&
        canOverwrite(picture, *old))
        return overwrite(picture, *old, payload);
    return relocate(picture, old, kind, std::move(payload), limits);
}

std::optional<MetadataItem> firstOf(const Picture& picture, const ItemKind& kind,
                                    const Limits& limits) {
    const std::vector<Item> items = itemsOf(picture, kind);
    return items.empty() ? std::nullopt : std::optional(readItem(picture, items.front(), limits));
}

} // namespace

std::optional<QByteArray> readExif(ByteView file, const Limits& limits) {
    const auto exif = firstOf(readPicture(file, limits), exifKind, limits);
    return exif && exif->payload ? std::optional(exif->payload->sliced(exif->headerLength))
                                 : std::nullopt;
}

Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits) {
    if (!isTiff(exif))
        throw ContainerError(QStringLiteral("Yeni Exif bloğu TIFF başlığıyla başlamıyor"));
    const Picture picture = readPicture(file, limits);
    const auto old = replaceable(picture, exifKind, limits);
    ByteWriter payload;
    payload.bytes(viewOf(old && old->payload ? old->payload->first(old->headerLength) : newHeader));
    payload.bytes(exif);
    return replaced(picture, exifKind, old, payload.take(), limits);
}

std::optional<QByteArray> readXmp(ByteView file, const Limits& limits) {
    const auto xmp = firstOf(readPicture(file, limits), xmpKind, limits);
    return xmp ? xmp->payload : std::nullopt;
}

Rewrite replaceXmp(ByteView file, ByteView xmp, const Limits& limits) {
    const Picture picture = readPicture(file, limits);
    ByteWriter payload;
    payload.bytes(xmp);
    return replaced(picture, xmpKind, replaceable(picture, xmpKind, limits), payload.take(),
                    limits);
}

} // namespace quorvane::heif

#include "metadata/HeifContainer.h"

#include "metadata/HeifExif.h"
#include "metadata/HeifLayout.h"
#include "metadata/HeifRelocation.h"

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

Rewrite overwrite(const Picture& picture, const ExifItem& exif, const QByteArray& payload) {
    std::vector<Patch> patches;
    qsizetype at = 0;
    for (const Range& range : exif.ranges) {
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
            throw ContainerError(QStringLiteral("Exif verisi başka bir öğenin parçası"));
}

} // namespace

std::optional<QByteArray> readExif(ByteView file, const Limits& limits) {
    const Picture picture = readPicture(file, limits);
    const std::vector<Item> items = exifItemsOf(picture);
    if (items.empty())
        return std::nullopt;
    const ExifItem exif = readExifItem(picture, items.front(), limits);
    return exif.payload ? std::optional(exif.payload->sliced(exif.headerLength)) : std::nullopt;
}

Rewrite replaceExif(ByteView file, ByteView exif, const Limits& limits) {
    if (!isTiff(exif))
        throw ContainerError(QStringLiteral("Yeni Exif bloğu TIFF başlığıyla başlamıyor"));
    const Picture picture = readPicture(file, limits);
    requireWholeItems(picture);
    const std::vector<Item> items = exifItemsOf(picture);
    if (items.size() > 1)
        throw ContainerError(QStringLiteral("Birincil görselin birden fazla Exif öğesi var"));

    std::optional<ExifItem> old;
    if (!items.empty()) {
        requireNoCopies(picture, items.front().id);
        old = readExifItem(picture, items.front(), limits);
    }
    ByteWriter payload;
    payload.bytes(viewOf(old && old->payload ? old->payload->first(old->headerLength) : newHeader));
    payload.bytes(exif);
    QByteArray bytes = payload.take();
    if (static_cast<std::uint64_t>(bytes.size()) > limits.exifBytes)
        throw ContainerError(QStringLiteral("Yeni Exif bloğu çok büyük"));
    if (old && old->payload && old->payload->size() == bytes.size() && canOverwrite(picture, *old))
        return overwrite(picture, *old, bytes);
    return relocate(picture, old, std::move(bytes), limits);
}

} // namespace quorvane::heif

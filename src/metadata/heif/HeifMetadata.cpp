#include "metadata/heif/HeifMetadata.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_set>

namespace quorvane::heif {

namespace {

constexpr std::array<std::uint8_t, 6> exifMarker{'E', 'x', 'i', 'f', 0, 0};

bool beginsWith(ByteView bytes, ByteView beginning) {
    return bytes.size() >= beginning.size() &&
           std::ranges::equal(bytes.first(beginning.size()), beginning);
}

/// What the payload has before its TIFF header: a 4-byte count of bytes to skip, and those. Some
/// writers do not count the "Exif\0\0" that follows. None when no such header is there.
std::optional<qsizetype> headerLengthOf(const QByteArray& payload) {
    constexpr std::uint64_t countLength = 4;
    ByteReader reader(viewOf(payload));
    if (reader.size() < countLength)
        return std::nullopt;
    const std::uint32_t count = reader.u32();
    if (count > reader.remaining())
        return std::nullopt;
    reader.skip(count);
    if (beginsWith(viewOf(payload).subspan(reader.offset()), exifMarker))
        reader.skip(exifMarker.size());
    const std::uint64_t length = reader.offset();
    if (!isTiff(viewOf(payload).subspan(length)))
        return std::nullopt;
    return static_cast<qsizetype>(length);
}

/// The item's bytes; none when its extents cover one another, or are more than metadata is.
std::optional<QByteArray> payloadOf(const Picture& picture, std::vector<Range> ranges,
                                    const Limits& limits) {
    const std::vector<Range> inOrder = ranges;
    std::ranges::sort(ranges, {}, &Range::offset);
    std::uint64_t length = 0;
    std::uint64_t end = 0;
    for (const Range& range : ranges) {
        length += range.length;
        if ((range.length > 0 && range.offset < end) || length > limits.metadataBytes)
            return std::nullopt;
        end = std::max(end, range.end());
    }
    ByteWriter payload;
    for (const Range& range : inOrder)
        payload.bytes(bytesOf(picture.file, range));
    return payload.take();
}

std::size_t locationOf(const Picture& picture, std::uint32_t item) {
    const std::vector<Location>& entries = picture.locations.entries;
    if (std::ranges::count(entries, item, &Location::item) != 1)
        throw ParseError(QStringLiteral("Üst veri öğesinin yeri belli değil"));
    return static_cast<std::size_t>(std::ranges::find(entries, item, &Location::item) -
                                    entries.begin());
}

/// True when a byte of the item belongs to two of its extents or to another item as well.
bool sharesBytes(const Picture& picture, const MetadataItem& item) {
    struct Span {
        Range range;
        bool isItem;
    };
    std::vector<Span> spans;
    for (std::size_t i = 0; i < picture.locations.entries.size(); ++i) {
        const Location& location = picture.locations.entries[i];
        const std::optional<std::vector<Range>> ranges = picture.rangesOf(location);
        for (const Range& range : ranges.value_or(std::vector<Range>()))
            spans.push_back({range, i == item.location});
    }
    std::ranges::sort(spans, {}, [](const Span& span) { return span.range.offset; });
    std::uint64_t itemEnd = 0;
    std::uint64_t otherEnd = 0;
    for (const Span& span : spans) {
        if (span.range.length == 0)
            continue;
        if (span.range.offset < itemEnd || (span.isItem && span.range.offset < otherEnd))
            return true;
        std::uint64_t& end = span.isItem ? itemEnd : otherEnd;
        end = std::max(end, span.range.end());
    }
    return false;
}

} // namespace

bool isTiff(ByteView bytes) {
    constexpr std::array<std::uint8_t, 4> little{'I', 'I', 42, 0};
    constexpr std::array<std::uint8_t, 4> big{'M', 'M', 0, 42};
    return beginsWith(bytes, little) || beginsWith(bytes, big);
}

std::vector<Item> itemsOf(const Picture& picture, const ItemKind& kind) {
    std::unordered_set<std::uint32_t> describing;
    std::unordered_set<std::uint32_t> describingPrimary;
    for (const Reference& reference : picture.references) {
        if (reference.type != fourCC("cdsc"))
            continue;
        describing.insert(reference.from);
        if (std::ranges::find(reference.to, picture.primary) != reference.to.end())
            describingPrimary.insert(reference.from);
    }
    std::vector<Item> all;
    std::ranges::copy_if(picture.items, std::back_inserter(all),
                         [&](const Item& item) { return kind.isOf(item); });
    if (all.size() == 1 && !describing.contains(all.front().id))
        return all;
    std::erase_if(all, [&](const Item& item) { return !describingPrimary.contains(item.id); });
    return all;
}

MetadataItem readItem(const Picture& picture, const Item& item, const Limits& limits) {
    if (item.isProtected)
        throw ContainerError(QStringLiteral("Üst veri öğesi korumalı"));
    MetadataItem found;
    found.location = locationOf(picture, item.id);
    const std::optional<std::vector<Range>> ranges =
        picture.rangesOf(picture.locations.entries[found.location]);
    if (!ranges)
        throw ContainerError(QStringLiteral("Üst veri öğesi bu dosyanın içinde değil"));
    found.ranges = *ranges;
    found.payload = payloadOf(picture, found.ranges, limits);
    if (!exifKind.isOf(item))
        return found;
    const auto headerLength = found.payload ? headerLengthOf(*found.payload) : std::nullopt;
    if (headerLength)
        found.headerLength = *headerLength;
    else
        found.payload.reset();
    return found;
}

bool canOverwrite(const Picture& picture, const MetadataItem& item) {
    std::vector<Range> rooms;
    for (const Box& box : picture.boxes)
        if (box.type == fourCC("mdat"))
            rooms.push_back(box.body);
    if (picture.itemData)
        rooms.push_back(picture.itemData->body);
    std::ranges::sort(rooms, {}, &Range::offset);
    const auto isInARoom = [&](const Range& range) {
        const auto after = std::ranges::upper_bound(rooms, range.offset, {}, &Range::offset);
        return after != rooms.begin() && std::prev(after)->contains(range);
    };
    return std::ranges::all_of(item.ranges, isInARoom) && !sharesBytes(picture, item);
}

} // namespace quorvane::heif

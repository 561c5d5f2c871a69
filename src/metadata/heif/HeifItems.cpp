#include "metadata/heif/HeifItems.h"

#include <algorithm>
#include <limits>

namespace quorvane::heif {

namespace {

constexpr std::uint32_t largestShortId = std::numeric_limits<std::uint16_t>::max();

unsigned idSize(bool isLong) {
    return isLong ? 4 : 2;
}

std::uint32_t readId(ByteReader& reader, bool isLong) {
    return static_cast<std::uint32_t>(reader.unsignedOf(idSize(isLong)));
}

void requireVersion(const FullBox& box, std::uint8_t newest) {
    if (box.version > newest)
        throw ParseError(QStringLiteral("Kutu sürümü bilinmiyor: %1").arg(box.version));
}

std::uint32_t readPrimary(ByteView file, const Box& box) {
    FullBox pitm(file, box);
    requireVersion(pitm, 1);
    return readId(pitm.reader, pitm.version == 1);
}

/// Text up to its NUL, or to the end of the box.
QByteArray readText(ByteReader& reader) {
    QByteArray text;
    while (reader.remaining() > 0)
        if (const auto character = static_cast<char>(reader.u8()); character != '\0')
            text.append(character);
        else
            break;
    return text;
}

Item readItem(ByteView file, const Box& box) {
    FullBox infe(file, box);
    requireVersion(infe, 3);
    Item item;
    item.id = readId(infe.reader, infe.version == 3);
    item.isProtected = infe.reader.u16() != 0;
    if (infe.version >= 2)
        item.type = infe.reader.u32();
    if (item.type == fourCC("mime")) {
        readText(infe.reader); // its name
        item.contentType = readText(infe.reader);
        if (const QByteArray encoding = readText(infe.reader); !encoding.isEmpty())
            item.contentType += ';' + encoding;
    }
    return item;
}

/// Where the entries of an `iinf` begin, and how many there are.
struct ItemInfoHeader {
    ItemInfoHeader(ByteView file, const Box& box) : full(file, box) {
        requireVersion(full, 1);
        countSize = idSize(full.version == 1);
        count = full.reader.unsignedOf(countSize);
        const std::uint64_t at = full.reader.offset();
        entries = {box.body.offset + at, box.body.length - at};
    }

    FullBox full;
    unsigned countSize = 0;
    std::uint64_t count = 0;
    Range entries;
};

std::vector<Item> readItems(ByteView file, const Box& box, const Limits& limits, Allowance& boxes) {
    const ItemInfoHeader header(file, box);
    Allowance(limits.items, limits.stop).spend(header.count);
    std::vector<Item> items;
    items.reserve(header.count);
    for (const Box& entry : boxesIn(file, header.entries, boxes))
        if (entry.type == fourCC("infe"))
            items.push_back(readItem(file, entry));
    if (items.size() != header.count)
        throw ParseError(QStringLiteral("Öğe sayısı tutmuyor"));
    return items;
}

std::vector<Reference> readReferences(ByteView file, const Box& box, const Limits& limits,
                                      Allowance& boxes) {
    const FullBox iref(file, box);
    requireVersion(iref, 1);
    const bool longIds = iref.version == 1;
    const Range entries{box.body.offset + 4, box.body.length - 4};
    Allowance allowance(limits.references, limits.stop);
    std::vector<Reference> references;
    for (const Box& entry : boxesIn(file, entries, boxes)) {
        ByteReader reader(bytesOf(file, entry.body));
        Reference reference{entry.type, readId(reader, longIds), {}};
        const std::uint16_t count = reader.u16();
        allowance.spend(count);
        for (std::uint16_t i = 0; i < count; ++i)
            reference.to.push_back(readId(reader, longIds));
        references.push_back(std::move(reference));
    }
    return references;
}

unsigned fieldSize(unsigned nibble) {
    if (nibble != 0 && nibble != 4 && nibble != 8)
        throw ParseError(QStringLiteral("“iloc” alan boyu geçersiz: %1").arg(nibble));
    return nibble;
}

Location readLocation(ByteReader& reader, const Locations& iloc, Allowance& extents) {
    Location location;
    location.item = readId(reader, iloc.version == 2);
    if (iloc.version > 0)
        location.method = reader.u16() & 0xF;
    location.dataReference = reader.u16();
    location.base = reader.unsignedOf(iloc.baseSize);
    const std::uint16_t count = reader.u16();
    extents.spend(count);
    for (std::uint16_t i = 0; i < count; ++i) {
        Extent extent;
        extent.index = reader.unsignedOf(iloc.indexSize);
        extent.offset = reader.unsignedOf(iloc.offsetSize);
        extent.length = reader.unsignedOf(iloc.lengthSize);
        location.extents.push_back(extent);
    }
    return location;
}

Locations readLocations(ByteView file, const Box& box, const Limits& limits) {
    FullBox full(file, box);
    requireVersion(full, 2);
    Locations iloc;
    iloc.version = full.version;
    iloc.flags = full.flags;
    const unsigned sizes = full.reader.u16();
    iloc.offsetSize = fieldSize(sizes >> 12);
    iloc.lengthSize = fieldSize((sizes >> 8) & 0xF);
    iloc.baseSize = fieldSize((sizes >> 4) & 0xF);
    iloc.indexSize = iloc.version > 0 ? fieldSize(sizes & 0xF) : 0;
    const std::uint32_t count = readId(full.reader, iloc.version == 2);
    Allowance(limits.items, limits.stop).spend(count);
    Allowance extents(limits.extents, limits.stop);
    iloc.entries.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        iloc.entries.push_back(readLocation(full.reader, iloc, extents));
    return iloc;
}

unsigned sizeFor(std::uint64_t value) {
    if (value == 0)
        return 0;
    return value <= std::numeric_limits<std::uint32_t>::max() ? 4 : 8;
}

} // namespace

bool Locations::widen() {
    const unsigned before = offsetSize + lengthSize + baseSize;
    for (const Location& location : entries) {
        baseSize = std::max(baseSize, sizeFor(location.base));
        for (const Extent& extent : location.extents) {
            offsetSize = std::max(offsetSize, sizeFor(extent.offset));
            lengthSize = std::max(lengthSize, sizeFor(extent.length));
        }
    }
    return offsetSize + lengthSize + baseSize != before;
}

QByteArray Locations::toBox() const {
    if (version < 2 && entries.size() > largestShortId)
        throw ContainerError(QStringLiteral("“iloc” kutusu dolu"));
    ByteWriter body;
    body.fullBoxHeader(version, flags);
    body.number(offsetSize << 12 | lengthSize << 8 | baseSize << 4 | indexSize, 2);
    body.number(entries.size(), idSize(version == 2));
    for (const Location& location : entries) {
        if (version < 2 && location.item > largestShortId)
            throw ContainerError(QStringLiteral("Öğe numarası “iloc” kutusuna sığmıyor"));
        body.number(location.item, idSize(version == 2));
        if (version > 0)
            body.number(location.method, 2);
        body.number(location.dataReference, 2);
        body.number(location.base, baseSize);
        body.number(location.extents.size(), 2);
        for (const Extent& extent : location.extents) {
            body.number(extent.index, indexSize);
            body.number(extent.offset, offsetSize);
            body.number(extent.length, lengthSize);
        }
    }
    return boxOf(fourCC("iloc"), body.take());
}

std::optional<std::vector<Range>> Picture::rangesOf(const Location& location) const {
    const bool isInItemData = location.method == Location::inItemData && itemData;
    if (!isInItemData && (location.method != Location::inFile || location.dataReference != 0))
        return std::nullopt;
    const Range room = isInItemData ? itemData->body : Range{0, file.size()};
    std::vector<Range> ranges;
    for (const Extent& extent : location.extents) {
        if (location.base > room.length || extent.offset > room.length - location.base)
            return std::nullopt;
        const std::uint64_t at = location.base + extent.offset;
        if (extent.length > room.length - at)
            return std::nullopt;
        const bool takesAll = extent.length == 0 && isInItemData;
        ranges.push_back({room.offset + at, takesAll ? room.length - at : extent.length});
    }
    return ranges;
}

Picture readPicture(ByteView file, const Limits& limits) {
    Allowance boxes(limits.boxes, limits.stop);
    Picture picture;
    picture.file = file;
    picture.boxes = boxesIn(file, {0, file.size()}, boxes);
    if (picture.boxes.empty() || picture.boxes.front().type != fourCC("ftyp"))
        throw ParseError(QStringLiteral("HEIF dosyası değil"));
    picture.meta = requiredBox(picture.boxes, fourCC("meta"));
    const FullBox meta(file, picture.meta);
    requireVersion(meta, 0);
    picture.children =
        boxesIn(file, {picture.meta.body.offset + 4, picture.meta.body.length - 4}, boxes);
    picture.primary = readPrimary(file, requiredBox(picture.children, fourCC("pitm")));
    picture.items = readItems(file, requiredBox(picture.children, fourCC("iinf")), limits, boxes);
    if (const std::optional<Box> iref = onlyBox(picture.children, fourCC("iref")))
        picture.references = readReferences(file, *iref, limits, boxes);
    picture.locations = readLocations(file, requiredBox(picture.children, fourCC("iloc")), limits);
    picture.itemData = onlyBox(picture.children, fourCC("idat"));
    return picture;
}

QByteArray withItem(ByteView file, const Box& itemInfo, std::uint32_t id, const ItemKind& kind) {
    const bool longId = id > largestShortId;
    ByteWriter entry;
    entry.fullBoxHeader(longId ? 3 : 2, 1); // flag 1: hidden
    entry.number(id, idSize(longId));
    entry.number(0, 2); // not protected
    entry.number(kind.type, 4);
    entry.number(0, 1); // no name
    if (!kind.contentType.isEmpty()) {
        entry.bytes(viewOf(kind.contentType));
        entry.number(0, 1);
    }

    const ItemInfoHeader header(file, itemInfo);
    if (header.countSize == 2 && header.count == largestShortId)
        throw ContainerError(QStringLiteral("“iinf” kutusu dolu"));
    ByteWriter body;
    body.fullBoxHeader(header.full.version, header.full.flags);
    body.number(header.count + 1, header.countSize);
    body.bytes(bytesOf(file, header.entries));
    return boxOf(fourCC("iinf"), body.take() + boxOf(fourCC("infe"), entry.take()));
}

QByteArray withReference(ByteView file, const std::optional<Box>& references, std::uint32_t type,
                         std::uint32_t from, std::uint32_t to) {
    const bool needsLongIds = std::max(from, to) > largestShortId;
    const bool longIds = references ? FullBox(file, *references).version == 1 : needsLongIds;
    if (needsLongIds && !longIds)
        throw ContainerError(QStringLiteral("Öğe numarası “iref” kutusuna sığmıyor"));
    ByteWriter entry;
    entry.number(from, idSize(longIds));
    entry.number(1, 2);
    entry.number(to, idSize(longIds));

    ByteWriter body;
    if (references)
        body.bytes(bytesOf(file, references->body));
    else
        body.fullBoxHeader(longIds ? 1 : 0, 0);
    return boxOf(fourCC("iref"), body.take() + boxOf(type, entry.take()));
}

std::uint32_t unusedId(const Picture& picture, const Limits& limits) {
    std::uint32_t largest = picture.primary;
    for (const Item& item : picture.items)
        largest = std::max(largest, item.id);
    for (const Location& location : picture.locations.entries)
        largest = std::max(largest, location.item);
    for (const Reference& reference : picture.references) {
        largest = std::max(largest, reference.from);
        for (const std::uint32_t id : reference.to)
            largest = std::max(largest, id);
    }
    if (const std::optional<Box> groups = onlyBox(picture.children, fourCC("grpl"))) {
        Allowance boxes(limits.boxes, limits.stop);
        for (const Box& group : boxesIn(picture.file, groups->body, boxes))
            largest = std::max(largest, FullBox(picture.file, group).reader.u32());
    }
    if (largest == std::numeric_limits<std::uint32_t>::max())
        throw ContainerError(QStringLiteral("Boş öğe numarası kalmadı"));
    return largest + 1;
}

} // namespace quorvane::heif

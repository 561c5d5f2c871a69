#include "metadata/exif/TiffDirectory.h"

#include <algorithm>

namespace quorvane::tiff {

namespace {

unsigned typeSize(std::uint16_t type) {
    switch (type) {
    case 1: // BYTE
    case 2: // ASCII
    case 6: // SBYTE
    case 7: // UNDEFINED
        return 1;
    case 3: // SHORT
    case 8: // SSHORT
        return 2;
    case 4:  // LONG
    case 9:  // SLONG
    case 11: // FLOAT
    case 13: // IFD
        return 4;
    case 5:  // RATIONAL
    case 10: // SRATIONAL
    case 12: // DOUBLE
    case 16: // LONG8
    case 17: // SLONG8
    case 18: // IFD8
        return 8;
    default:
        return 0;
    }
}

} // namespace

std::optional<Header> readHeader(ByteView block) {
    if (block.size() < 8 || block[0] != block[1] || (block[0] != 'I' && block[0] != 'M'))
        return std::nullopt;
    Header header;
    header.format.order = block[0] == 'I' ? ByteOrder::littleEndian : ByteOrder::bigEndian;
    ByteReader reader(block, header.format.order);
    reader.seek(2);
    const std::uint16_t magic = reader.u16();
    if (magic == 43) {
        if (block.size() < 16 || reader.u16() != 8 || reader.u16() != 0)
            return std::nullopt;
        header.format.big = true;
    } else if (magic != 42) {
        return std::nullopt;
    }
    header.firstDirectory = reader.unsignedOf(header.format.offsetWidth());
    return header;
}

QByteArray headerBytes(const Format& format) {
    QByteArray bytes = format.order == ByteOrder::littleEndian ? "II" : "MM";
    appendNumber(bytes, format.big ? 43 : 42, 2, format.order);
    if (format.big) {
        appendNumber(bytes, 8, 2, format.order);
        appendNumber(bytes, 0, 2, format.order);
    }
    appendNumber(bytes, format.headerSize(), format.offsetWidth(), format.order);
    return bytes;
}

void appendNumber(QByteArray& bytes, std::uint64_t value, unsigned width, ByteOrder order) {
    if (width < 8 && value >> (8 * width) != 0)
        throw ParseError(QStringLiteral("Sayı alanına sığmıyor: %1").arg(value));
    for (unsigned i = 0; i < width; ++i) {
        const unsigned shift = 8 * (order == ByteOrder::bigEndian ? width - 1 - i : i);
        bytes.append(static_cast<char>((value >> shift) & 0xff));
    }
}

Field asciiField(std::uint16_t tag, const QByteArray& text) {
    return {tag, asciiType, static_cast<std::uint64_t>(text.size()) + 1, text + '\0'};
}

Field pointerField(std::uint16_t tag, std::uint64_t offset, const Format& format) {
    Field field{tag, format.big ? long8Type : longType, 1, {}};
    appendNumber(field.bytes, offset, format.offsetWidth(), format.order);
    return field;
}

std::optional<std::uint64_t> Entry::length() const {
    const unsigned size = typeSize(type);
    if (size == 0 || count > UINT64_MAX / size)
        return std::nullopt;
    return count * size;
}

bool Entry::isInline() const {
    const auto bytes = length();
    return bytes && *bytes <= static_cast<std::uint64_t>(slot.size());
}

std::uint64_t Entry::slotNumber(const Format& format) const {
    // An inline value narrower than its slot stands at the slot's beginning.
    const auto width = isInline() ? static_cast<unsigned>(*length()) : format.offsetWidth();
    return ByteReader(viewOf(slot), format.order).unsignedOf(width);
}

const Entry* Directory::find(std::uint16_t tag) const {
    const auto found = std::ranges::find(entries, tag, &Entry::tag);
    return found == entries.end() ? nullptr : &*found;
}

Directory readDirectory(ByteView block, const Format& format, std::uint64_t offset,
                        std::uint32_t maxEntries) {
    ByteReader reader(block, format.order);
    reader.seek(offset);
    Directory directory;
    directory.offset = offset;
    const std::uint64_t count = reader.unsignedOf(format.countWidth());
    if (count > maxEntries)
        throw ParseError(QStringLiteral("Dizinde çok fazla alan var: %1").arg(count));
    if (count * format.entrySize() > reader.remaining())
        throw ParseError(QStringLiteral("Alan dizini verinin dışına taşıyor"));
    directory.entries.reserve(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        Entry entry;
        entry.tag = reader.u16();
        entry.type = reader.u16();
        entry.count = reader.unsignedOf(format.offsetWidth());
        const ByteView slot = reader.take(format.offsetWidth());
        entry.slot = QByteArray(reinterpret_cast<const char*>(slot.data()),
                                static_cast<qsizetype>(slot.size()));
        directory.entries.push_back(std::move(entry));
    }
    // Some writers end the block without the link of the last directory.
    if (reader.remaining() >= format.offsetWidth())
        directory.next = reader.unsignedOf(format.offsetWidth());
    return directory;
}

std::optional<ByteView> valueOf(const Entry& entry, const Format& format, ByteView block) {
    const auto length = entry.length();
    if (!length)
        return std::nullopt;
    if (entry.isInline())
        return viewOf(entry.slot).first(*length);
    const std::uint64_t offset = entry.slotNumber(format);
    if (offset > block.size() || *length > block.size() - offset)
        return std::nullopt;
    return block.subspan(offset, *length);
}

bool fitsInline(const Field& field, const Format& format) {
    return field.bytes.size() <= static_cast<qsizetype>(format.offsetWidth());
}

Entry entryOf(const Field& field, const Format& format, std::uint64_t valueOffset) {
    Entry entry{field.tag, field.type, field.count, {}};
    if (fitsInline(field, format))
        entry.slot = field.bytes.leftJustified(format.offsetWidth(), '\0');
    else
        appendNumber(entry.slot, valueOffset, format.offsetWidth(), format.order);
    return entry;
}

QByteArray entryBytes(const std::vector<Entry>& entries, const Format& format) {
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(entries.size()) * format.entrySize());
    for (const Entry& entry : entries) {
        appendNumber(bytes, entry.tag, 2, format.order);
        appendNumber(bytes, entry.type, 2, format.order);
        appendNumber(bytes, entry.count, format.offsetWidth(), format.order);
        bytes += entry.slot;
    }
    return bytes;
}

QByteArray directoryBytes(const Directory& directory, const Format& format) {
    QByteArray bytes;
    appendNumber(bytes, directory.entries.size(), format.countWidth(), format.order);
    bytes += entryBytes(directory.entries, format);
    appendNumber(bytes, directory.next, format.offsetWidth(), format.order);
    return bytes;
}

Layout layOut(const std::vector<Field>& fields, std::uint64_t offset, const Format& format) {
    const std::uint64_t valuesAt =
        offset + format.countWidth() + fields.size() * format.entrySize() + format.offsetWidth();
    Layout layout;
    for (const Field& field : fields) {
        layout.entries.push_back(
            entryOf(field, format, valuesAt + static_cast<std::uint64_t>(layout.values.size())));
        if (fitsInline(field, format))
            continue;
        layout.values += field.bytes;
        if (layout.values.size() % 2 != 0)
            layout.values += '\0'; // every value begins on a word
    }
    return layout;
}

QByteArray serialize(const std::vector<Field>& fields, std::uint64_t offset, const Format& format) {
    const Layout layout = layOut(fields, offset, format);
    return directoryBytes({offset, layout.entries, 0}, format) + layout.values;
}

} // namespace quorvane::tiff

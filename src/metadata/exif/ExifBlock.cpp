#include "metadata/exif/ExifBlock.h"

#include "metadata/LocalCalendar.h"
#include "metadata/exif/ExifEditor.h"
#include "metadata/exif/GpsFields.h"
#include "metadata/exif/TiffDirectory.h"

#include <algorithm>

namespace quorvane::exif {

namespace {

using tiff::Directory;
using tiff::Entry;
using tiff::Field;

constexpr std::uint16_t dateTimeTag = 0x0132;
constexpr std::uint16_t exifPointerTag = 0x8769;
constexpr std::uint16_t gpsPointerTag = 0x8825;
constexpr std::uint16_t exifVersionTag = 0x9000;
constexpr std::uint16_t originalTag = 0x9003;
constexpr std::uint16_t digitizedTag = 0x9004;
constexpr std::uint16_t orientationTag = 0x0112;

/// A date and the fields of the Exif directory that belong to it.
struct DateTags {
    std::uint16_t text;
    std::uint16_t offset;
    std::uint16_t fraction;
};
constexpr DateTags modifiedTags{dateTimeTag, 0x9010, 0x9290};
constexpr DateTags originalTags{originalTag, 0x9011, 0x9291};
constexpr DateTags digitizedTags{digitizedTag, 0x9012, 0x9292};

QByteArray copyOf(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

std::optional<QByteArray> textOf(const Directory& directory, std::uint16_t tag,
                                 const tiff::Format& format, ByteView block) {
    const Entry* entry = directory.find(tag);
    if (entry == nullptr)
        return std::nullopt;
    const auto value = valueOf(*entry, format, block);
    return value ? copyOf(value->first(std::min<size_t>(value->size(), 64))) : QByteArray();
}

/// True for a pointer as the standard has it, which every reader follows.
bool isPlainPointer(const Entry& entry, const tiff::Format& format) {
    const bool isLong = entry.type == tiff::longType || entry.type == tiff::directoryType;
    const bool isLong8 = entry.type == tiff::long8Type || entry.type == tiff::directory8Type;
    return entry.count == 1 && (isLong || (format.big && isLong8));
}

struct Subdirectory {
    Directory directory;
    bool isPlain = true; ///< its pointer is
};

/// The directory a field points at; none when there is no such field, or it points nowhere or at
/// what is no directory. A pointer of a wrong type is read as if it had the right one, too.
std::optional<Subdirectory> subdirectory(const Directory& parent, std::uint16_t tag,
                                         const tiff::Format& format, ByteView block,
                                         const Limits& limits) {
    const Entry* pointer = parent.find(tag);
    if (pointer == nullptr)
        return std::nullopt;
    const std::uint64_t whole =
        ByteReader(viewOf(pointer->slot), format.order).unsignedOf(format.offsetWidth());
    for (const std::uint64_t offset : {pointer->slotNumber(format), whole}) {
        if (offset < format.headerSize() || offset >= block.size())
            continue;
        try {
            return Subdirectory{readDirectory(block, format, offset, limits.entries),
                                isPlainPointer(*pointer, format)};
        } catch (const ParseError&) {
            continue;
        }
    }
    return std::nullopt;
}

tiff::Header headerOf(ByteView block) {
    const auto header = tiff::readHeader(block);
    if (!header)
        throw ParseError(QStringLiteral("Exif bloğunda TIFF başlığı yok"));
    return *header;
}

std::vector<Field> newExifFields(const QByteArray& text) {
    return {{exifVersionTag, tiff::undefinedType, 4, "0232"},
            tiff::asciiField(originalTag, text),
            tiff::asciiField(digitizedTag, text)};
}

QByteArray newBlockOf(const Stamp& stamp, const tiff::Format& format,
                      const std::optional<Field>& orientation) {
    std::vector<Field> fields = {tiff::asciiField(dateTimeTag, stamp.text),
                                 tiff::pointerField(exifPointerTag, 0, format)};
    if (orientation)
        fields.insert(fields.begin(), *orientation);
    const size_t exifPointerAt = fields.size() - 1;
    if (stamp.location)
        fields.push_back(tiff::pointerField(gpsPointerTag, 0, format));
    const std::uint64_t start = format.headerSize();
    const std::uint64_t exifAt =
        start + static_cast<std::uint64_t>(serialize(fields, start, format).size());
    const QByteArray exif = serialize(newExifFields(stamp.text), exifAt, format);
    const std::uint64_t gpsAt = exifAt + static_cast<std::uint64_t>(exif.size());
    fields[exifPointerAt] = tiff::pointerField(exifPointerTag, exifAt, format);
    QByteArray gps;
    if (stamp.location) {
        fields.back() = tiff::pointerField(gpsPointerTag, gpsAt, format);
        gps = serialize(gpsFields(*stamp.location, stamp.date, format.order), gpsAt, format);
    }
    return headerBytes(format) + serialize(fields, start, format) + exif + gps;
}

/// The orientation of a block whose first directory may be cut off behind it.
std::optional<Field> orientationOf(ByteView block, const tiff::Header& header) {
    const tiff::Format& format = header.format;
    ByteReader reader(block, format.order);
    reader.seek(header.firstDirectory);
    std::uint64_t count = reader.unsignedOf(format.countWidth());
    for (; count > 0 && reader.remaining() >= format.entrySize(); --count) {
        const bool isOrientation = reader.u16() == orientationTag;
        const bool isShort = reader.u16() == tiff::shortType;
        const bool isOne = reader.unsignedOf(format.offsetWidth()) == 1;
        const ByteView slot = reader.take(format.offsetWidth());
        if (isOrientation && isShort && isOne)
            return Field{orientationTag, tiff::shortType, 1, copyOf(slot.first(2))};
    }
    return std::nullopt;
}

/// The fraction of the stamp's second. A stamp of a whole second that the field's date already
/// names knows nothing of its fraction, and what it says is kept.
std::optional<Field> fractionField(const QByteArray& old, const std::optional<Date>& oldSecond,
                                   const Stamp& stamp) {
    const auto second = std::chrono::floor<std::chrono::seconds>(stamp.date);
    const auto fraction = QByteArray::number((stamp.date - second).count()).rightJustified(3, '0');
    const QByteArray shown = QByteArray(old.constData()).trimmed(); // up to its NUL
    const bool agrees = fraction == "000" || shown.leftJustified(3, '0', true) == fraction;
    if (oldSecond == Date(second) && agrees)
        return std::nullopt;
    return tiff::asciiField(0, fraction);
}

DateField dateField(const Directory& directory, const std::optional<Directory>& exif,
                    const DateTags& tags, const tiff::Format& format, ByteView block) {
    DateField field;
    field.text = textOf(directory, tags.text, format, block);
    if (exif)
        field.offset = textOf(*exif, tags.offset, format, block);
    return field;
}

std::optional<Date> instantOf(const DateField& field) {
    if (!field.text)
        return std::nullopt;
    const auto text = QString::fromLatin1(*field.text);
    const auto offset = parseExifOffset(QString::fromLatin1(field.offset.value_or(QByteArray())));
    return offset ? parseExifDate(text, *offset) : parseExifDate(text);
}

/// Keeps true what the Exif directory says of a date beside its text. `holder` has the text.
void stampBeside(Editor& editor, Directory& exif, const Directory& holder, const DateTags& tags,
                 const Stamp& stamp, const tiff::Format& format, ByteView block) {
    if (const auto old = textOf(exif, tags.fraction, format, block)) {
        const auto before = instantOf(dateField(holder, exif, tags, format, block));
        if (auto field = fractionField(*old, before, stamp)) {
            field->tag = tags.fraction;
            editor.set(exif, *field);
        }
    }
    if (exif.find(tags.offset) != nullptr)
        editor.set(exif, tiff::asciiField(tags.offset, exifOffsetText(stamp.date).toLatin1()));
}

/// Writes the dates of the Exif directory and returns its place, 0 for none.
std::uint64_t stampExif(Editor& editor, std::optional<Directory> exif, const Directory& first,
                        const Stamp& stamp, const tiff::Format& format, ByteView block) {
    if (!exif)
        return stamp.addsFields
                   ? editor.append(serialize(newExifFields(stamp.text), editor.end(), format))
                   : 0;
    const size_t before = exif->entries.size();
    const Directory old = *exif;
    stampBeside(editor, *exif, first, modifiedTags, stamp, format, block);
    stampBeside(editor, *exif, old, originalTags, stamp, format, block);
    stampBeside(editor, *exif, old, digitizedTags, stamp, format, block);
    for (const std::uint16_t tag : {originalTag, digitizedTag})
        if (stamp.addsFields || exif->find(tag) != nullptr)
            editor.set(*exif, tiff::asciiField(tag, stamp.text));
    return editor.place(*exif, before);
}

/// Writes the GPS directory and returns its place: over the old one when that is laid out as ours
/// are, so that a place that changes again and again does not make the block grow.
std::uint64_t stampGps(Editor& editor, ByteView block, const std::optional<Directory>& gps,
                       const Stamp& stamp, const tiff::Format& format) {
    const auto fields = gpsFields(*stamp.location, stamp.date, format.order);
    const auto sameShape = [](const Entry& a, const Entry& b) {
        return a.tag == b.tag && a.type == b.type && a.count == b.count &&
               (a.isInline() || a.slot == b.slot);
    };
    if (gps && gps->next == 0 &&
        std::ranges::equal(layOut(fields, gps->offset, format).entries, gps->entries, sameShape)) {
        const QByteArray bytes = serialize(fields, gps->offset, format);
        if (static_cast<std::uint64_t>(bytes.size()) <= block.size() - gps->offset) {
            editor.overwrite(gps->offset, bytes);
            return gps->offset;
        }
    }
    return editor.append(serialize(fields, editor.end(), format));
}

} // namespace

DateField Dates::first() const {
    const DateField* const fields[] = {&original, &digitized, &modified};
    const auto found = std::ranges::find_if(
        fields, [](const DateField* field) { return field->text.has_value(); });
    DateField result = found == std::end(fields) ? DateField() : **found;
    for (const DateField* other : fields)
        if (!result.offset && other->text == result.text)
            result.offset = other->offset;
    return result;
}

std::optional<Date> instantOf(const Dates& dates) {
    return instantOf(dates.first());
}

Dates readDates(ByteView block, const Limits& limits) {
    const tiff::Header header = headerOf(block);
    if (header.firstDirectory == 0)
        return {};
    const tiff::Format& format = header.format;
    const Directory first = readDirectory(block, format, header.firstDirectory, limits.entries);
    const auto found = subdirectory(first, exifPointerTag, format, block, limits);
    const auto exif = found ? std::optional(found->directory) : std::nullopt;
    Dates dates;
    dates.modified = dateField(first, exif, modifiedTags, format, block);
    if (exif) {
        dates.original = dateField(*exif, exif, originalTags, format, block);
        dates.digitized = dateField(*exif, exif, digitizedTags, format, block);
    }
    return dates;
}

Rewrite stamp(ByteView block, const Stamp& stamp, const Limits& limits) {
    if (block.empty()) {
        Rewrite rewrite;
        rewrite.insert(newBlockOf(stamp, {}, std::nullopt));
        return rewrite;
    }
    const tiff::Header header = headerOf(block);
    const tiff::Format& format = header.format;
    Directory first = readDirectory(block, format, header.firstDirectory, limits.entries);
    const size_t before = first.entries.size();
    Editor editor(block, format);
    const auto point = [&](std::uint16_t tag, const std::optional<Subdirectory>& old,
                           std::uint64_t at) {
        if (at != 0 && (!old || !old->isPlain || at != old->directory.offset))
            editor.set(first, tiff::pointerField(tag, at, format));
    };

    const auto exif = subdirectory(first, exifPointerTag, format, block, limits);
    const auto exifDirectory = exif ? std::optional(exif->directory) : std::nullopt;
    point(exifPointerTag, exif, stampExif(editor, exifDirectory, first, stamp, format, block));
    if (stamp.location) {
        const auto gps = subdirectory(first, gpsPointerTag, format, block, limits);
        const auto gpsDirectory = gps ? std::optional(gps->directory) : std::nullopt;
        point(gpsPointerTag, gps, stampGps(editor, block, gpsDirectory, stamp, format));
    }
    if (stamp.addsFields || first.find(dateTimeTag) != nullptr)
        editor.set(first, tiff::asciiField(dateTimeTag, stamp.text));
    else if (!exifDirectory || (exifDirectory->find(originalTag) == nullptr &&
                                exifDirectory->find(digitizedTag) == nullptr))
        throw ContainerError(QStringLiteral("Exif bloğunda tarih için yer yok"));

    const std::uint64_t firstAt = editor.place(first, before);
    if (firstAt != header.firstDirectory) {
        QByteArray link;
        tiff::appendNumber(link, firstAt, format.offsetWidth(), format.order);
        editor.overwrite(format.headerSize() - format.offsetWidth(), link);
    }
    return editor.finish();
}

QByteArray newBlock(ByteView broken, const Stamp& stamp) {
    const auto header = tiff::readHeader(broken);
    if (!header)
        return newBlockOf(stamp, {}, std::nullopt);
    const tiff::Format format{header->format.order, false};
    try {
        return newBlockOf(stamp, format, orientationOf(broken, *header));
    } catch (const ParseError&) {
        return newBlockOf(stamp, format, std::nullopt);
    }
}

} // namespace quorvane::exif

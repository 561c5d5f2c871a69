#include "metadata/ExifBlock.h"

#include "metadata/GpsFields.h"
#include "metadata/TiffDirectory.h"

#include <algorithm>
#include <map>

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

/// The length of a date with its NUL.
constexpr std::uint64_t dateLength = 20;

QByteArray copyOf(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

bool startsWith(ByteView bytes, const QByteArray& beginning) {
    return bytes.size() >= static_cast<size_t>(beginning.size()) &&
           std::equal(beginning.begin(), beginning.end(), bytes.begin(),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

std::optional<QByteArray> textOf(const Directory& directory, std::uint16_t tag,
                                 const tiff::Format& format, ByteView block) {
    const Entry* entry = directory.find(tag);
    if (entry == nullptr)
        return std::nullopt;
    const auto value = valueOf(*entry, format, block);
    return value ? copyOf(value->first(std::min<size_t>(value->size(), 64))) : QByteArray();
}

/// The directory a field points at; none when there is no such field or it points nowhere.
std::optional<Directory> subdirectory(const Directory& parent, std::uint16_t tag,
                                      const tiff::Format& format, ByteView block,
                                      const Limits& limits) {
    const Entry* pointer = parent.find(tag);
    if (pointer == nullptr)
        return std::nullopt;
    const std::uint64_t offset = pointer->slotNumber(format);
    if (offset < format.headerSize() || offset >= block.size())
        return std::nullopt;
    return readDirectory(block, format, offset, limits.entries);
}

tiff::Header headerOf(ByteView block) {
    const auto header = tiff::readHeader(block);
    if (!header)
        throw ParseError(QStringLiteral("Exif bloğunda TIFF başlığı yok"));
    return *header;
}

/// Changes a block by patches of equal length and by additions behind it.
class Editor {
  public:
    Editor(ByteView block, const tiff::Format& format) : block_(block), format_(format) {}

    /// Overwrites bytes of the block. Throws `ContainerError` when they overlap an earlier patch.
    void overwrite(std::uint64_t offset, const QByteArray& bytes);

    /// Where the next addition will stand.
    std::uint64_t end() const { return tailAt() + static_cast<std::uint64_t>(tail_.size()); }
    std::uint64_t append(const QByteArray& bytes);

    /// Gives a directory a field, in place of the one it has of that tag.
    void set(Directory& directory, const Field& field);

    /// Writes a changed directory: where it stands when it has as many fields as before, else
    /// behind the block. Returns its place.
    std::uint64_t place(const Directory& directory, size_t entriesBefore);

    Rewrite finish() const;

  private:
    /// Zeros stand between the block and the additions: a directory that ends the block without
    /// its link goes on reading as the last one.
    std::uint64_t tailAt() const {
        return block_.size() + format_.offsetWidth() + block_.size() % 2;
    }
    bool overwriteDate(Entry& entry, const Field& field);

    ByteView block_;
    tiff::Format format_;
    std::map<std::uint64_t, QByteArray> patches_;
    QByteArray tail_;
};

void Editor::overwrite(std::uint64_t offset, const QByteArray& bytes) {
    const auto length = static_cast<std::uint64_t>(bytes.size());
    if (startsWith(block_.subspan(offset, length), bytes))
        return;
    const auto [place, isNew] = patches_.try_emplace(offset, bytes);
    const auto behind = std::next(place);
    bool clash = !isNew && place->second != bytes;
    clash |= behind != patches_.end() && behind->first < offset + length;
    if (place != patches_.begin()) {
        const auto before = std::prev(place);
        clash |= before->first + static_cast<std::uint64_t>(before->second.size()) > offset;
    }
    if (clash)
        throw ContainerError(QStringLiteral("Exif alanları birbiriyle çakışıyor"));
}

std::uint64_t Editor::append(const QByteArray& bytes) {
    const std::uint64_t offset = end();
    tail_ += bytes;
    if (tail_.size() % 2 != 0)
        tail_ += '\0'; // everything begins on a word
    return offset;
}

/// A date field of the usual length keeps its place. What does not look like a date is never
/// overwritten there: a broken file may point anywhere.
bool Editor::overwriteDate(Entry& entry, const Field& field) {
    const auto isOfDates = [](std::uint8_t c) {
        return c == 0 || c == ' ' || (c >= '-' && c <= ':');
    };
    if (entry.type != tiff::asciiType || entry.isInline() || entry.count < dateLength)
        return false;
    const auto value = valueOf(entry, format_, block_);
    if (!value || !std::ranges::all_of(value->first(dateLength), isOfDates))
        return false;
    overwrite(entry.slotNumber(format_), field.bytes);
    entry.count = dateLength;
    return true;
}

void Editor::set(Directory& directory, const Field& field) {
    bool found = false;
    for (Entry& entry : directory.entries) {
        if (entry.tag != field.tag)
            continue;
        found = true;
        if (field.type == tiff::asciiType && overwriteDate(entry, field))
            continue;
        entry = entryOf(field, format_, fitsInline(field, format_) ? 0 : append(field.bytes));
    }
    if (found)
        return;
    const auto behind = std::ranges::find_if(
        directory.entries, [&](const Entry& entry) { return entry.tag > field.tag; });
    directory.entries.insert(
        behind, entryOf(field, format_, fitsInline(field, format_) ? 0 : append(field.bytes)));
}

std::uint64_t Editor::place(const Directory& directory, size_t entriesBefore) {
    if (directory.entries.size() != entriesBefore)
        return append(directoryBytes(directory, format_));
    overwrite(directory.offset + format_.countWidth(), entryBytes(directory.entries, format_));
    return directory.offset;
}

Rewrite Editor::finish() const {
    Rewrite rewrite;
    std::uint64_t at = 0;
    for (const auto& [offset, bytes] : patches_) {
        rewrite.keep(at, offset - at);
        rewrite.insert(bytes);
        at = offset + static_cast<std::uint64_t>(bytes.size());
    }
    rewrite.keep(at, block_.size() - at);
    if (!tail_.isEmpty())
        rewrite.insert(QByteArray(static_cast<qsizetype>(tailAt() - block_.size()), '\0') + tail_);
    return rewrite;
}

std::vector<Field> newExifFields(const QByteArray& text) {
    return {{exifVersionTag, tiff::undefinedType, 4, "0232"},
            tiff::asciiField(originalTag, text),
            tiff::asciiField(digitizedTag, text)};
}

QByteArray newBlock(const Stamp& stamp) {
    const tiff::Format format;
    std::vector<Field> fields = {tiff::asciiField(dateTimeTag, stamp.text),
                                 tiff::pointerField(exifPointerTag, 0, format)};
    if (stamp.location)
        fields.push_back(tiff::pointerField(gpsPointerTag, 0, format));
    const std::uint64_t start = format.headerSize();
    const std::uint64_t exifAt =
        start + static_cast<std::uint64_t>(serialize(fields, start, format).size());
    const QByteArray exif = serialize(newExifFields(stamp.text), exifAt, format);
    const std::uint64_t gpsAt = exifAt + static_cast<std::uint64_t>(exif.size());
    fields[1] = tiff::pointerField(exifPointerTag, exifAt, format);
    QByteArray gps;
    if (stamp.location) {
        fields[2] = tiff::pointerField(gpsPointerTag, gpsAt, format);
        gps = serialize(gpsFields(*stamp.location, stamp.date, format.order), gpsAt, format);
    }
    return headerBytes(format) + serialize(fields, start, format) + exif + gps;
}

/// Writes the dates of the Exif directory and returns its place.
std::uint64_t stampExif(Editor& editor, std::optional<Directory> exif, const QByteArray& text,
                        const tiff::Format& format) {
    if (!exif)
        return editor.append(serialize(newExifFields(text), editor.end(), format));
    const size_t before = exif->entries.size();
    editor.set(*exif, tiff::asciiField(originalTag, text));
    editor.set(*exif, tiff::asciiField(digitizedTag, text));
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

std::optional<QByteArray> Dates::first() const {
    return original ? original : digitized ? digitized : modified;
}

Dates readDates(ByteView block, const Limits& limits) {
    const tiff::Header header = headerOf(block);
    if (header.firstDirectory == 0)
        return {};
    const Directory first =
        readDirectory(block, header.format, header.firstDirectory, limits.entries);
    Dates dates;
    dates.modified = textOf(first, dateTimeTag, header.format, block);
    if (const auto exif = subdirectory(first, exifPointerTag, header.format, block, limits)) {
        dates.original = textOf(*exif, originalTag, header.format, block);
        dates.digitized = textOf(*exif, digitizedTag, header.format, block);
    }
    return dates;
}

Rewrite stamp(ByteView block, const Stamp& stamp, const Limits& limits) {
    if (block.empty()) {
        Rewrite rewrite;
        rewrite.insert(newBlock(stamp));
        return rewrite;
    }
    const tiff::Header header = headerOf(block);
    const tiff::Format& format = header.format;
    Directory first = readDirectory(block, format, header.firstDirectory, limits.entries);
    const size_t before = first.entries.size();
    Editor editor(block, format);

    const auto exif = subdirectory(first, exifPointerTag, format, block, limits);
    const std::uint64_t exifAt = stampExif(editor, exif, stamp.text, format);
    if (!exif || exifAt != exif->offset)
        editor.set(first, tiff::pointerField(exifPointerTag, exifAt, format));
    if (stamp.location) {
        const auto gps = subdirectory(first, gpsPointerTag, format, block, limits);
        const std::uint64_t gpsAt = stampGps(editor, block, gps, stamp, format);
        if (!gps || gpsAt != gps->offset)
            editor.set(first, tiff::pointerField(gpsPointerTag, gpsAt, format));
    }
    editor.set(first, tiff::asciiField(dateTimeTag, stamp.text));

    const std::uint64_t firstAt = editor.place(first, before);
    if (firstAt != header.firstDirectory) {
        QByteArray link;
        tiff::appendNumber(link, firstAt, format.offsetWidth(), format.order);
        editor.overwrite(format.headerSize() - format.offsetWidth(), link);
    }
    return editor.finish();
}

} // namespace quorvane::exif

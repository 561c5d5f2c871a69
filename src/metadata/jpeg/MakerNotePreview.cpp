#include "metadata/jpeg/MakerNotePreview.h"

#include "metadata/exif/TiffDirectory.h"

#include <optional>

namespace quorvane {

namespace {

constexpr std::uint16_t exifPointerTag = 0x8769;
constexpr std::uint16_t makerNoteTag = 0x927c;
constexpr std::uint32_t maxEntries = 4096;

struct Note {
    std::uint64_t offset = 0;
    ByteView bytes;
};

std::optional<Note> makerNoteOf(ByteView exif) {
    const auto header = tiff::readHeader(exif);
    if (!header || header->format.big)
        return std::nullopt;
    const auto first =
        tiff::readDirectory(exif, header->format, header->firstDirectory, maxEntries);
    const tiff::Entry* pointer = first.find(exifPointerTag);
    if (pointer == nullptr)
        return std::nullopt;
    const auto directory =
        tiff::readDirectory(exif, header->format, pointer->slotNumber(header->format), maxEntries);
    const tiff::Entry* note = directory.find(makerNoteTag);
    if (note == nullptr || note->isInline())
        return std::nullopt;
    const auto bytes = tiff::valueOf(*note, header->format, exif);
    return bytes ? std::optional(Note{note->slotNumber(header->format), *bytes}) : std::nullopt;
}

bool isPictureAt(ByteView file, std::uint64_t offset) {
    return offset < file.size() && file.size() - offset >= 3 && file[offset] == 0xff &&
           file[offset + 1] == 0xd8 && file[offset + 2] == 0xff;
}

/// Of the field that begins here, when it is one LONG: the number.
std::optional<std::uint32_t> longFieldAt(ByteView note, std::uint64_t at, ByteOrder order) {
    ByteReader reader(note, order);
    reader.seek(at + 2); // behind the tag
    const bool isLong = reader.u16() == tiff::longType;
    const bool isOne = reader.u32() == 1;
    return isLong && isOne ? std::optional(reader.u32()) : std::nullopt;
}

} // namespace

QByteArray withMovedPreviews(ByteView exif, ByteView file, std::uint64_t oldSize,
                             std::int64_t growth) {
    QByteArray moved(reinterpret_cast<const char*>(exif.data()),
                     static_cast<qsizetype>(exif.size()));
    std::optional<Note> note;
    try {
        note = makerNoteOf(exif);
    } catch (const ParseError&) {
        return moved;
    }
    constexpr std::uint64_t fieldSize = 12;
    for (std::uint64_t at = 0; note && at + fieldSize <= note->bytes.size(); ++at) {
        for (const ByteOrder order : {ByteOrder::bigEndian, ByteOrder::littleEndian}) {
            const auto number = longFieldAt(note->bytes, at, order);
            if (!number)
                continue;
            const auto isPreview = [&](std::uint64_t offset) {
                return offset >= oldSize && isPictureAt(file, offset);
            };
            const std::int64_t corrected = std::int64_t{*number} + growth;
            if ((!isPreview(*number) && !isPreview(note->offset + *number)) || corrected < 0 ||
                corrected > UINT32_MAX)
                continue;
            const std::uint64_t numberAt = note->offset + at + 8;
            const auto place = static_cast<qsizetype>(numberAt);
            QByteArray bytes;
            tiff::appendNumber(bytes, static_cast<std::uint64_t>(corrected), 4, order);
            moved.replace(place, bytes.size(), bytes);
        }
    }
    return moved;
}

} // namespace quorvane

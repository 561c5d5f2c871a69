#pragma once

#include "foundation/ByteReader.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <vector>

/// Directories of tagged fields as TIFF 6.0 and BigTIFF lay them out; an Exif block is one TIFF.
namespace quorvane::tiff {

enum Type : std::uint16_t {
    byteType = 1,
    asciiType = 2,
    shortType = 3,
    longType = 4,
    rationalType = 5,
    undefinedType = 7,
    directoryType = 13, ///< the place of a directory
    long8Type = 16,
    directory8Type = 18,
};

/// How a TIFF writes its numbers. The widths are in bytes.
struct Format {
    ByteOrder order = ByteOrder::bigEndian;
    bool big = false; ///< BigTIFF: 64-bit offsets

    unsigned countWidth() const { return big ? 8 : 2; }
    unsigned offsetWidth() const { return big ? 8 : 4; }
    unsigned entrySize() const { return big ? 20 : 12; }
    unsigned headerSize() const { return big ? 16 : 8; }

    bool operator==(const Format&) const = default;
};

struct Header {
    Format format;
    std::uint64_t firstDirectory = 0; ///< 0: none
};

/// None when the bytes do not begin with a TIFF header.
std::optional<Header> readHeader(ByteView block);

/// A header that is followed at once by the first directory.
QByteArray headerBytes(const Format& format);

/// `value` in `width` bytes.
void appendNumber(QByteArray& bytes, std::uint64_t value, unsigned width, ByteOrder order);

/// A field with its value, in the byte order of the TIFF it is meant for.
struct Field {
    std::uint16_t tag = 0;
    Type type = asciiType;
    std::uint64_t count = 0;
    QByteArray bytes;
};

/// NUL-terminated text.
Field asciiField(std::uint16_t tag, const QByteArray& text);

/// The place of another directory.
Field pointerField(std::uint16_t tag, std::uint64_t offset, const Format& format);

/// One field of a directory that was read. `slot` holds the value itself or the place of it.
struct Entry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    QByteArray slot;

    bool operator==(const Entry&) const = default;

    /// The value's length in bytes; none for a type that TIFF does not define.
    std::optional<std::uint64_t> length() const;
    bool isInline() const;

    /// The slot read as a number: the place of the value, or an inline pointer.
    std::uint64_t slotNumber(const Format& format) const;
};

struct Directory {
    std::uint64_t offset = 0;
    std::vector<Entry> entries;
    std::uint64_t next = 0;

    const Entry* find(std::uint16_t tag) const;
};

/// Throws `ParseError` when the directory does not lie whole in the block or has more entries.
Directory readDirectory(ByteView block, const Format& format, std::uint64_t offset,
                        std::uint32_t maxEntries);

/// The value's bytes, in the block or in `entry`; none when they lie outside the block.
std::optional<ByteView> valueOf(const Entry& entry, const Format& format, ByteView block);

/// The entry that holds `field`, its value inline or at `valueOffset`.
Entry entryOf(const Field& field, const Format& format, std::uint64_t valueOffset);
bool fitsInline(const Field& field, const Format& format);

/// Entries as they stand in the file, without the count before and the link behind them.
QByteArray entryBytes(const std::vector<Entry>& entries, const Format& format);

/// A whole directory with its count and link.
QByteArray directoryBytes(const Directory& directory, const Format& format);

/// A directory of `fields` (ascending tags) at the place `offset`, its values right behind it.
struct Layout {
    std::vector<Entry> entries;
    QByteArray values;
};
Layout layOut(const std::vector<Field>& fields, std::uint64_t offset, const Format& format);

/// The bytes of that directory, with its values.
QByteArray serialize(const std::vector<Field>& fields, std::uint64_t offset, const Format& format);

} // namespace quorvane::tiff

#pragma once

#include "foundation/ByteReader.h"
#include "foundation/Date.h"
#include "metadata/MetadataTypes.h"
#include "metadata/Rewrite.h"

#include <QByteArray>

#include <cstdint>
#include <optional>

/// The dates and the place in an Exif block (Exif 2.32, CIPA DC-008) or a TIFF file, which is laid
/// out the same way. A block is never taken apart and built anew: fields that exist are overwritten
/// where they stand, everything else is added behind the block. So every other field, the maker
/// note, the thumbnail and what no one can interpret keep their bytes and their places.
/// Zone and fraction fields of the dates are never added, but those that are there are kept true.
/// Any thread.
namespace quorvane::exif {

/// What a block may ask of us; one that asks more is refused with `ParseError`.
struct Limits {
    std::uint32_t entries = 4096; ///< fields of one directory
};

/// A date as it stands in the block; none for a field that is absent.
struct DateField {
    std::optional<QByteArray> text;   ///< "yyyy:MM:dd HH:mm:ss"
    std::optional<QByteArray> offset; ///< "+03:00": the zone it is meant in
};

struct Dates {
    DateField original;  ///< DateTimeOriginal
    DateField digitized; ///< DateTimeDigitized
    DateField modified;  ///< TIFF DateTime

    /// The first whose text is present, in this order. Without an offset of its own it has that of
    /// another date of the same text.
    DateField first() const;
};

/// The instant of the first date: in the zone it states, else in local time. None when there is
/// none or it does not parse.
std::optional<Date> instantOf(const Dates& dates);

/// Throws `ParseError` when there is no TIFF header or a directory is broken.
Dates readDates(ByteView block, const Limits& limits = {});

/// What is to be written.
struct Stamp {
    QByteArray text; ///< "yyyy:MM:dd HH:mm:ss", local time, for all three date fields
    Date date;       ///< the same instant, for zone and fraction fields and the GPS block
    std::optional<GeoLocation> location; ///< none: the GPS block stays as it is
    bool addsFields = true; ///< false: only the date fields that are there, for want of room
};

/// The block with the stamp; a new block when it is empty. A sub-directory that cannot be read
/// gives way to a new one, and a pointer of a wrong type to one that every reader follows. Writing
/// the same stamp again changes nothing. Throws `ParseError` for a broken block, `ContainerError`
/// for one whose fields overlap.
Rewrite stamp(ByteView block, const Stamp& stamp, const Limits& limits = {});

/// A new block with the stamp, in place of one that `stamp` refuses. Of the old one only the
/// orientation is taken over, as far as it can be read: without it the picture would turn over.
QByteArray newBlock(ByteView broken, const Stamp& stamp);

} // namespace quorvane::exif

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
/// Fractions of a second and time zone fields stay as they were, too. Any thread.
namespace quorvane::exif {

/// What a block may ask of us; one that asks more is refused with `ParseError`.
struct Limits {
    std::uint32_t entries = 4096; ///< fields of one directory
};

/// The texts of the date fields, as they stand in the block; none when a field is absent.
struct Dates {
    std::optional<QByteArray> original;  ///< DateTimeOriginal
    std::optional<QByteArray> digitized; ///< DateTimeDigitized
    std::optional<QByteArray> modified;  ///< TIFF DateTime

    /// The first that is present, in this order.
    std::optional<QByteArray> first() const;
};

/// Throws `ParseError` when there is no TIFF header or a directory is broken.
Dates readDates(ByteView block, const Limits& limits = {});

/// What is to be written.
struct Stamp {
    QByteArray text; ///< "yyyy:MM:dd HH:mm:ss", local time, for all three date fields
    Date date;       ///< the same instant, for the GPS block
    std::optional<GeoLocation> location; ///< none: the GPS block stays as it is
};

/// The block with the stamp; a new block when it is empty. Writing the same stamp again changes
/// nothing. Throws `ParseError` for a broken block, `ContainerError` for one whose fields overlap.
Rewrite stamp(ByteView block, const Stamp& stamp, const Limits& limits = {});

} // namespace quorvane::exif

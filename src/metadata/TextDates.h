#pragma once

#include "foundation/ByteReader.h"
#include "foundation/Date.h"

#include <QString>

#include <filesystem>
#include <vector>

namespace quorvane {

/// A date that stands in a file as text, beside or instead of Exif.
struct TextDate {
    Date date;
    QString form; ///< "XMP", "IPTC" or "PNG"

    bool operator==(const TextDate&) const = default;
};

/// The creation dates of an XMP packet, an IPTC record and a PNG text chunk among the bytes, the
/// most telling form first, each form once. They are searched for as such, whatever the container,
/// so that what no decoder opens may still tell. Any thread; never throws for foreign bytes.
std::vector<TextDate> textDatesIn(ByteView bytes);

/// The same of a file, in its beginning and its end, where programs put them. Empty when the file
/// cannot be read. Any thread.
std::vector<TextDate> readTextDates(const std::filesystem::path& file) noexcept;

} // namespace quorvane

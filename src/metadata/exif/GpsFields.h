#pragma once

#include "foundation/Date.h"
#include "metadata/MetadataTypes.h"
#include "metadata/exif/TiffDirectory.h"

#include <vector>

namespace quorvane {

/// True when the values are a place on earth; libraries mark "no place" by values that are none.
bool isValid(const GeoLocation& location);

/// The GPS directory (Exif 2.32, 4.6.6) of a place and an instant, for a valid location: degrees,
/// minutes and seconds exact to a millionth of a second of arc, altitude to a millimetre, date and
/// time in UTC. An altitude that is no number is left out.
std::vector<tiff::Field> gpsFields(const GeoLocation& location, Date date, ByteOrder order);

} // namespace quorvane

#pragma once

#include "foundation/Date.h"

#include <QString>

namespace quorvane {

/// What a time of day is followed by in Turkish.
enum class TimeCase {
    at,    ///< 14:36'da
    from,  ///< 14:20'den
    until, ///< 14:30'a
    plain, ///< 14:32
};

/// The local time with its ending, which follows from how the number is spoken; another day than
/// today's (by `now`) is named: "Dün 21:40'tan", "Yarın 10:00'da", "3 Mayıs 10:00'da".
QString spokenTime(Date time, TimeCase ending, Date now);

} // namespace quorvane

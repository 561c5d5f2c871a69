#pragma once

#include "foundation/Date.h"

#include <QString>

#include <optional>

namespace quorvane {

/// A stretch of time, both ends included; a day without a time is its noon.
struct DateSpan {
    Date from;
    Date to;

    bool operator==(const DateSpan&) const = default;
};

/// The day, month or year, in local time, that the names of the folders on a path tell, the
/// innermost first: "2019/05/03", "Tatil/2019-05-03 Bodrum", "Mayıs 2019", "2019". None when there
/// is none, or when it has not begun by `now`. Any thread.
std::optional<DateSpan> dateOfFolder(const QString& path, Date now);

} // namespace quorvane

#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace quorvane {

/// An instant: milliseconds since 1970-01-01 00:00:00 UTC.
using Date = std::chrono::sys_time<std::chrono::milliseconds>;

/// Seconds between 1970-01-01 and 2001-01-01 UTC, the epoch of Apple's Core Data time stamps.
inline constexpr double referenceDateOffset = 978307200.0;

/// The instant `seconds` after 1970-01-01 UTC; none when it is not finite or out of range.
std::optional<Date> dateFromUnixSeconds(double seconds);

/// Seconds since 1970-01-01 UTC.
double unixSeconds(Date date);
/// The same in whole seconds, rounded down.
std::int64_t wholeUnixSeconds(Date date);

/// "2021-03-05 23:30:00 +0000": UTC, for log lines.
QString describe(Date date);

} // namespace quorvane

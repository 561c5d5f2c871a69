#pragma once

#include "foundation/Date.h"

#include <QString>

#include <optional>

/// Calendar dates and times of day in text that people and programs write. Any thread.
namespace quorvane {

/// 1 to 12 for a month's name, whole or short, in one of the languages of the names we meet; else
/// 0.
int monthNamed(const QString& name);

/// Earlier numbers in names are taken for something else than years.
inline constexpr int firstNamedYear = 1970;

struct TimeOfDay {
    int hour = 12;
    int minute = 0;
    int second = 0;
};

/// The time of day, to the second, that follows a date which ends at `at`: "-18-22-10",
/// " 18.22.10", "T182210", " at 6.22.10 PM", " um 18.22.10", "下午6.22.10". None for anything else,
/// an impossible time included.
std::optional<TimeOfDay> timeOfDayAt(const QString& name, qsizetype at);

/// Whether a time of twelve hours that ends at `at` is followed by "AM" or "PM"; the hour with it.
int hourWithMeridiem(const QString& name, qsizetype at, int hour);

/// The first calendar date that is written out, with the time of day behind it, else noon, as this
/// computer's local time: "20190412182210", "IMG20190412", "12.04.2019", "2019年4月12日",
/// "12 Nisan 2019", "April 12, 2019". A date of which it is not certain which number is the day is
/// none, and so are one after `latest` and digits within a longer number.
std::optional<Date> writtenDate(const QString& name, Date latest);

} // namespace quorvane

#pragma once

#include "foundation/Date.h"

#include <QString>
#include <QStringView>

#include <optional>

/// The Gregorian calendar on the process's own time zone, and its text forms. Any thread.
namespace quorvane {

/// The instant of a local wall-clock time; none when the calendar has no such day or time of day,
/// or the year is not 1 to 9999. A time that the clocks skip moves forward by what they skip; of a
/// time that comes twice the first is meant.
std::optional<Date> localDate(int year, int month, int day, int hour, int minute, int second);

/// The instant of a wall-clock time in UTC; none as above.
std::optional<Date> utcDate(int year, int month, int day, int hour, int minute, int second);

/// "yyyy:MM:dd HH:mm:ss" in local time (Exif 2.32, DateTime). None for any other text, "unknown"
/// forms of zeros or blanks included; trailing blanks and NULs do not count.
std::optional<Date> parseExifDate(QStringView text);

/// The same text as the wall-clock time of a zone that is `offset` from UTC.
std::optional<Date> parseExifDate(QStringView text, std::chrono::minutes offset);

/// "+03:00", "-09:30" or "Z" (Exif 2.32, OffsetTime). None for any other text, blanks included.
std::optional<std::chrono::minutes> parseExifOffset(QStringView text);

/// The offset of local time at that instant as "+03:00"; blanks around the colon, which stand for
/// "unknown", where it is no whole number of minutes.
QString exifOffsetText(Date date);

/// The local wall-clock time as "yyyy:MM:dd HH:mm:ss"; for dates of a four-digit year.
QString exifDateText(Date date);

/// An ISO 8601 date and time with its offset ("Z", "+03:00", "+0300"), local time without one, or a
/// date alone, which means noon of that local day. A blank may stand for the "T" and before the
/// offset. None for any other text; blanks around it do not count.
std::optional<Date> parseIsoDate(QStringView text);

/// The same where the seconds may be missing, as people and XMP write it: "2019-05-03 14:30".
std::optional<Date> parseTypedDate(const QString& text);

/// The UTC time in a `QDateTime` format, such as "yyyy:MM:dd".
QString utcText(Date date, QStringView format);

/// The year on the local calendar; 0 when it is not 1 to 9999.
int localYear(Date date);

/// The date itself when its year has four digits locally and in UTC: what a file can say.
std::optional<Date> writableDate(std::optional<Date> date);

} // namespace quorvane

#include "metadata/LocalCalendar.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTimeZone>

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace quorvane {

namespace {

using std::chrono::seconds;
using SecondDate = std::chrono::sys_time<seconds>;

// What four digits can say in UTC. Within it the C library's calendar cannot overflow.
constexpr Date firstDate = std::chrono::sys_days(std::chrono::year(1) / 1 / 1);
constexpr Date endDate = std::chrono::sys_days(std::chrono::year(10000) / 1 / 1);

std::tm localTime(SecondDate date) {
    const std::time_t time = date.time_since_epoch().count();
    std::tm result{};
    ::localtime_r(&time, &result);
    return result;
}

seconds offsetAt(SecondDate date) {
    return seconds(localTime(date).tm_gmtoff);
}

SecondDate instantOf(SecondDate wallClock) {
    constexpr std::chrono::hours day(24); // farther than any zone is from UTC
    const seconds before = offsetAt(wallClock - day);
    const seconds after = offsetAt(wallClock + day);
    const SecondDate first = wallClock - before;
    const SecondDate second = wallClock - after;
    // Neither fits in the hour that the clocks skip: the old offset then lands behind the gap.
    return offsetAt(first) != before && offsetAt(second) == after ? second : first;
}

std::optional<SecondDate> wallClock(int year, int month, int day, int hour, int minute,
                                    int second) {
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > 31)
        return std::nullopt;
    const std::chrono::year_month_day date = std::chrono::year(year) / month / day;
    if (!date.ok() || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 ||
        second > 59)
        return std::nullopt;
    return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
           seconds(second);
}

/// Without blanks and NULs at its end.
QStringView withoutTail(QStringView text) {
    while (!text.isEmpty() && (text.back().isSpace() || text.back().isNull()))
        text.chop(1);
    return text;
}

/// True for a text of this form, in which "d" is a digit.
bool hasForm(QStringView text, QStringView form) {
    return std::ranges::equal(text, form, [](QChar c, QChar of) {
        return of == u'd' ? c >= u'0' && c <= u'9' : c == of;
    });
}

std::optional<SecondDate> exifWallClock(QStringView text) {
    text = withoutTail(text);
    if (!hasForm(text, u"dddd:dd:dd dd:dd:dd"))
        return std::nullopt;
    const auto number = [&](qsizetype at, qsizetype length) {
        return text.sliced(at, length).toInt();
    };
    return wallClock(number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(14, 2),
                     number(17, 2));
}

} // namespace

std::optional<Date> localDate(int year, int month, int day, int hour, int minute, int second) {
    const auto time = wallClock(year, month, day, hour, minute, second);
    return time ? std::optional<Date>(instantOf(*time)) : std::nullopt;
}

std::optional<Date> utcDate(int year, int month, int day, int hour, int minute, int second) {
    return wallClock(year, month, day, hour, minute, second);
}

std::optional<Date> parseExifDate(QStringView text) {
    const auto time = exifWallClock(text);
    return time ? std::optional<Date>(instantOf(*time)) : std::nullopt;
}

std::optional<Date> parseExifDate(QStringView text, std::chrono::minutes offset) {
    const auto time = exifWallClock(text);
    return time ? std::optional<Date>(*time - offset) : std::nullopt;
}

std::optional<std::chrono::minutes> parseExifOffset(QStringView text) {
    text = withoutTail(text);
    if (text == u"Z")
        return std::chrono::minutes(0);
    const bool west = text.startsWith(u'-');
    if (!(west || text.startsWith(u'+')) || !hasForm(text.sliced(1), u"dd:dd"))
        return std::nullopt;
    const auto offset = std::chrono::hours(text.sliced(1, 2).toInt()) +
                        std::chrono::minutes(text.sliced(4, 2).toInt());
    constexpr std::chrono::hours farthest(15);
    if (offset > farthest || text.sliced(4, 2).toInt() > 59)
        return std::nullopt;
    return west ? -offset : offset;
}

std::optional<Date> parseIsoDate(QStringView text) {
    static const QRegularExpression form(
        QStringLiteral("^([0-9]{4})-([0-9]{2})-([0-9]{2})"
                       "(?:[T ]([0-9]{2}):([0-9]{2}):([0-9]{2})(?:\\.[0-9]+)?"
                       " ?(Z|([+-])([0-9]{2}):?([0-9]{2}))?)?$"));
    const QRegularExpressionMatch match = form.match(text.trimmed().toString());
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&](int group) { return match.capturedView(group).toInt(); };
    if (match.capturedView(4).isEmpty())
        return localDate(number(1), number(2), number(3), 12, 0, 0);
    const auto time = wallClock(number(1), number(2), number(3), number(4), number(5), number(6));
    if (!time)
        return std::nullopt;
    if (match.capturedView(7).isEmpty())
        return instantOf(*time);
    const auto offset = std::chrono::hours(number(9)) + std::chrono::minutes(number(10));
    return match.capturedView(8) == u"-" ? *time + offset : *time - offset;
}

std::optional<Date> parseTypedDate(const QString& text) {
    static const QRegularExpression minute(
        QStringLiteral("^(\\s*[0-9-]{10}[T ][0-9]{2}:[0-9]{2})(?!:)"));
    return parseIsoDate(QString(text).replace(minute, QStringLiteral("\\1:00")));
}

QString exifDateText(Date date) {
    const std::tm local = localTime(std::chrono::floor<seconds>(date));
    return QString::asprintf("%04d:%02d:%02d %02d:%02d:%02d", local.tm_year + 1900,
                             local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                             local.tm_sec);
}

QString exifOffsetText(Date date) {
    const long offset = offsetAt(std::chrono::floor<seconds>(date)).count();
    if (offset % 60 != 0)
        return QStringLiteral("   :  ");
    const long minutes = std::abs(offset) / 60;
    return QString::asprintf("%c%02ld:%02ld", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

QString utcText(Date date, QStringView format) {
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count(), QTimeZone::utc())
        .toString(format);
}

int localYear(Date date) {
    if (date < firstDate - std::chrono::days(1) || date >= endDate + std::chrono::days(1))
        return 0;
    const int year = localTime(std::chrono::floor<seconds>(date)).tm_year + 1900;
    return year >= 1 && year <= 9999 ? year : 0;
}

std::optional<Date> writableDate(std::optional<Date> date) {
    const bool writable = date && *date >= firstDate && *date < endDate && localYear(*date) != 0;
    return writable ? date : std::nullopt;
}

} // namespace quorvane

#include "metadata/LocalCalendar.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTimeZone>

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
    const std::chrono::year_month_day date =
        std::chrono::year(year) / static_cast<unsigned>(month) / static_cast<unsigned>(day);
    if (!date.ok() || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 ||
        second > 59)
        return std::nullopt;
    return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
           seconds(second);
}

} // namespace

std::optional<Date> localDate(int year, int month, int day, int hour, int minute, int second) {
    const auto time = wallClock(year, month, day, hour, minute, second);
    return time ? std::optional<Date>(instantOf(*time)) : std::nullopt;
}

std::optional<Date> parseExifDate(QStringView text) {
    while (!text.isEmpty() && (text.back().isSpace() || text.back().isNull()))
        text.chop(1);
    constexpr QStringView pattern = u"dddd:dd:dd dd:dd:dd";
    if (text.size() != pattern.size())
        return std::nullopt;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= u'0' && text[i] <= u'9';
        if (pattern[i] == u'd' ? !digit : text[i] != pattern[i])
            return std::nullopt;
    }
    const auto number = [&](qsizetype at, qsizetype length) {
        return text.sliced(at, length).toInt();
    };
    return localDate(number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(14, 2),
                     number(17, 2));
}

std::optional<Date> parseIsoDate(QStringView text) {
    static const QRegularExpression form(QStringLiteral(
        "^([0-9]{4})-([0-9]{2})-([0-9]{2})"
        "(?:T([0-9]{2}):([0-9]{2}):([0-9]{2})(?:\\.[0-9]+)?(?:Z|([+-])([0-9]{2}):?([0-9]{2})))?$"));
    const QRegularExpressionMatch match = form.match(text.trimmed().toString());
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&](int group) { return match.capturedView(group).toInt(); };
    if (match.capturedView(4).isEmpty())
        return localDate(number(1), number(2), number(3), 12, 0, 0);
    const auto time = wallClock(number(1), number(2), number(3), number(4), number(5), number(6));
    if (!time)
        return std::nullopt;
    const auto offset = std::chrono::hours(number(8)) + std::chrono::minutes(number(9));
    return match.capturedView(7) == u"-" ? *time + offset : *time - offset;
}

QString exifDateText(Date date) {
    const std::tm local = localTime(std::chrono::floor<seconds>(date));
    return QString::asprintf("%04d:%02d:%02d %02d:%02d:%02d", local.tm_year + 1900,
                             local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                             local.tm_sec);
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

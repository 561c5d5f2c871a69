#include "metadata/FolderNameDates.h"

#include "metadata/FilenameDates.h"
#include "metadata/LocalCalendar.h"
#include "metadata/NameCalendar.h"

#include <QRegularExpression>
#include <QStringList>

namespace quorvane {

namespace {

constexpr int firstFolderYear = 1900;

std::optional<DateSpan> spanOf(const std::optional<Date>& from, const std::optional<Date>& end) {
    if (!from || !end)
        return std::nullopt;
    return DateSpan{*from, *end - std::chrono::seconds(1)};
}

std::optional<DateSpan> yearSpan(int year) {
    if (year < firstFolderYear)
        return std::nullopt;
    return spanOf(localDate(year, 1, 1, 0, 0, 0), localDate(year + 1, 1, 1, 0, 0, 0));
}

std::optional<DateSpan> monthSpan(int year, int month) {
    if (year < firstFolderYear || month < 1 || month > 12)
        return std::nullopt;
    return spanOf(localDate(year, month, 1, 0, 0, 0),
                  localDate(year + month / 12, month % 12 + 1, 1, 0, 0, 0));
}

std::optional<DateSpan> daySpan(int year, int month, int day) {
    const auto noon = localDate(year, month, day, 12, 0, 0);
    if (year < firstFolderYear || !noon)
        return std::nullopt;
    return DateSpan{*noon, *noon};
}

/// "2019/05/03" and "2019/05": each part may go on with words.
std::optional<DateSpan> nestedSpan(const QString& path) {
    static const QRegularExpression pattern(
        QStringLiteral("(?:^|/)([0-9]{4})/([0-9]{1,2})(?:[^0-9/][^/]*)?"
                       "(?:/([0-9]{1,2})(?:[^0-9/][^/]*)?)?$"));
    const auto match = pattern.match(path);
    if (!match.hasMatch())
        return std::nullopt;
    const int year = match.capturedView(1).toInt();
    const int month = match.capturedView(2).toInt();
    return match.capturedView(3).isEmpty() ? monthSpan(year, month)
                                           : daySpan(year, month, match.capturedView(3).toInt());
}

/// "2019-05 Bodrum", "Mayıs 2019", "2019 May".
std::optional<DateSpan> monthIn(const QString& name) {
    static const QRegularExpression numbers(
        QStringLiteral("(?<![0-9])([0-9]{4})[-_. ]([0-9]{2})(?![0-9])"));
    if (const auto match = numbers.match(name); match.hasMatch())
        if (const auto span =
                monthSpan(match.capturedView(1).toInt(), match.capturedView(2).toInt()))
            return span;
    static const QRegularExpression words(
        QStringLiteral("(?:(?<!\\p{L})(\\p{L}{3,})[-_. ]*)?(?<![0-9])([0-9]{4})(?![0-9])"
                       "(?:[-_. ]*(\\p{L}{3,})(?!\\p{L}))?"));
    const auto match = words.match(name);
    for (const int group : {1, 3})
        if (const int month = monthNamed(match.captured(group)))
            return monthSpan(match.capturedView(2).toInt(), month);
    return std::nullopt;
}

std::optional<DateSpan> yearIn(const QString& name) {
    static const QRegularExpression pattern(
        QStringLiteral("(?<![0-9])((?:19|20)[0-9]{2})(?![0-9])"));
    const auto match = pattern.match(name);
    return match.hasMatch() ? yearSpan(match.capturedView(1).toInt()) : std::nullopt;
}

std::optional<DateSpan> spanIn(const QString& path, Date now) {
    const QString name = path.section(u'/', -1);
    const auto written = parseDateFromFilename(name, now);
    if (written && written->source == DateSource::fileName)
        return DateSpan{written->date, written->date};
    if (const auto span = nestedSpan(path))
        return span;
    if (const auto span = monthIn(name))
        return span;
    return yearIn(name);
}

} // namespace

std::optional<DateSpan> dateOfFolder(const QString& path, Date now) {
    for (QString part = path; !part.isEmpty(); part = part.left(part.lastIndexOf(u'/')))
        if (const auto span = spanIn(part, now); span && span->from <= now)
            return DateSpan{span->from, std::max(span->from, std::min(span->to, now))};
        else if (!part.contains(u'/'))
            break;
    return std::nullopt;
}

} // namespace quorvane

#include "metadata/FilenameDates.h"

#include "metadata/LocalCalendar.h"
#include "metadata/NameCalendar.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace quorvane {

namespace {

constexpr int lastYear = 2050;

// The instants that a bare number may stand for begin with 1995, and end now.
constexpr qint64 firstEpoch = 788918400;

/// A staged name: the identifier, whole or bare, and the file's own name.
struct StagedName {
    QString identifier;
    QString fileName;
};

bool isOfUuid(QChar c) {
    return c == u'-' || (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') ||
           (c >= u'a' && c <= u'f');
}

bool isOfTail(QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

/// Where the "_" is that follows a word of the tail; 0 for none.
qsizetype endOfTailWord(const QString& name, qsizetype begin) {
    const auto end = std::find_if_not(name.begin() + begin, name.end(), isOfTail);
    const qsizetype at = end - name.begin();
    return at > begin && end != name.end() && *end == u'_' ? at : 0;
}

/// "<UUID>_<word>_<word>_<file name>" or "<UUID>_<file name>". A staging folder may have very many.
std::optional<StagedName> splitStagedName(const QString& name) {
    constexpr qsizetype uuid = 36;
    if (name.size() < uuid + 2 || name[uuid] != u'_' ||
        !std::all_of(name.begin(), name.begin() + uuid, isOfUuid))
        return std::nullopt;
    const qsizetype first = endOfTailWord(name, uuid + 1);
    const qsizetype second = first > 0 ? endOfTailWord(name, first + 1) : 0;
    if (second > 0 && second + 1 < name.size())
        return StagedName{name.left(second).replace(u'_', u'/'), name.mid(second + 1)};
    return StagedName{name.left(uuid), name.mid(uuid + 1)};
}

const std::array<QRegularExpression, 8>& datePatterns() {
    static const std::array<QRegularExpression, 8> patterns = {
        QRegularExpression(QStringLiteral("(?:IMG|VID)-(\\d{4})(\\d{2})(\\d{2})-WA")),
        QRegularExpression(QStringLiteral("WhatsApp (?:Image|Video) (\\d{4})-(\\d{2})-(\\d{2}) at "
                                          "(\\d{2})\\.(\\d{2})\\.(\\d{2})")),
        QRegularExpression(QStringLiteral("(?:photo|video)_(\\d{4})-(\\d{2})-(\\d{2})_"
                                          "(\\d{2})-(\\d{2})-(\\d{2})")),
        QRegularExpression(QStringLiteral("Screen ?Shot (\\d{4})-(\\d{2})-(\\d{2}) at "
                                          "(\\d{2})\\.(\\d{2})\\.(\\d{2})")),
        QRegularExpression(QStringLiteral("Ekran Resmi (\\d{4})-(\\d{2})-(\\d{2}) "
                                          "(\\d{2})\\.(\\d{2})\\.(\\d{2})")),
        QRegularExpression(QStringLiteral("Screenshot_(\\d{4})(\\d{2})(\\d{2})-"
                                          "(\\d{2})(\\d{2})(\\d{2})")),
        QRegularExpression(QStringLiteral("(\\d{4})(\\d{2})(\\d{2})_(\\d{2})(\\d{2})(\\d{2})")),
        QRegularExpression(QStringLiteral("(\\d{4})[-_](\\d{2})[-_](\\d{2})")),
    };
    return patterns;
}

/// The bounds of a plausible date; the calendar refuses impossible days and times of day.
std::optional<Date> makeDate(QStringView year, QStringView month, QStringView day,
                             const TimeOfDay& time) {
    if (year.toInt() < firstNamedYear || year.toInt() > lastYear)
        return std::nullopt;
    return localDate(year.toInt(), month.toInt(), day.toInt(), time.hour, time.minute, time.second);
}

/// The whole number of fourteen digits, day and time, of which the match took the last ones.
std::optional<Date> dateCutInto(const QString& name, const QRegularExpressionMatch& match) {
    constexpr qsizetype digits = 14;
    const auto isDigit = [&](qsizetype at) { return name[at] >= u'0' && name[at] <= u'9'; };
    qsizetype begin = match.capturedStart(1);
    qsizetype end = begin;
    while (begin > 0 && isDigit(begin - 1))
        --begin;
    while (end < name.size() && isDigit(end))
        ++end;
    if (begin == match.capturedStart(1) || end - begin != digits)
        return std::nullopt;
    const auto latest = localDate(lastYear, 12, 31, 23, 59, 59);
    return latest ? writtenDate(name.sliced(begin, digits), *latest) : std::nullopt;
}

/// True when the match took the year of a date that is written the other way round, and what
/// follows it: "05-01-2024_06-07-08".
bool endsAnotherDate(const QString& name, const QRegularExpressionMatch& match) {
    static const QRegularExpression dayAndMonth(
        QStringLiteral("(?<![0-9])[0-9]{1,2}([-._])[0-9]{1,2}\\1$"));
    return dayAndMonth.match(name.left(match.capturedStart(1))).hasMatch();
}

/// Where the name also tells the time of day, it is that time, and with "PM" it is in the
/// afternoon.
std::optional<Date> makeDate(const QString& name, const QRegularExpressionMatch& match) {
    if (const auto whole = dateCutInto(name, match))
        return whole;
    if (endsAnotherDate(name, match))
        return std::nullopt;
    const auto group = [&](int index) { return match.capturedView(index); };
    TimeOfDay time;
    if (match.lastCapturedIndex() < 6)
        time = timeOfDayAt(name, match.capturedEnd()).value_or(time);
    else
        time = {hourWithMeridiem(name, match.capturedEnd(), group(4).toInt()), group(5).toInt(),
                group(6).toInt()};
    return makeDate(group(1), group(2), group(3), time);
}

/// A Pixel phone names its pictures in UTC.
std::optional<Date> pixelDate(const QString& name) {
    static const QRegularExpression pattern(
        QStringLiteral("(?<![A-Za-z])PXL_(\\d{4})(\\d{2})(\\d{2})_(\\d{2})(\\d{2})(\\d{2})"));
    const auto match = pattern.match(name);
    const auto number = [&](int group) { return match.capturedView(group).toInt(); };
    if (!match.hasMatch() || number(1) < firstNamedYear || number(1) > lastYear)
        return std::nullopt;
    return utcDate(number(1), number(2), number(3), number(4), number(5), number(6));
}

/// The name with other characters in place of identifiers: UUIDs and long hexadecimal numbers,
/// whose digits are chance. Long numbers without a letter are kept when `keepsNumbers`.
QString withoutIdentifiers(QString name, bool keepsNumbers) {
    static const QRegularExpression pattern(
        QStringLiteral("[0-9A-Fa-f]{8}-(?:[0-9A-Fa-f]{4}-){3}[0-9A-Fa-f]{12}|[0-9A-Fa-f]{16,}"));
    static const QRegularExpression letters(QStringLiteral("[^0-9]"));
    auto matches = pattern.globalMatch(name);
    while (matches.hasNext()) {
        const auto match = matches.next();
        const qsizetype length = match.capturedLength();
        if (!keepsNumbers || match.captured().contains(letters))
            name.replace(match.capturedStart(), length, QString(length, u'x'));
    }
    return name;
}

/// The first number that is a plausible Unix time: ten digits of seconds or thirteen of
/// milliseconds.
std::optional<Date> epochDate(const QString& name, Date now) {
    static const QRegularExpression pattern(
        QStringLiteral("(?:^|[^0-9])(\\d{13}|\\d{10})(?:[^0-9]|$)"));
    auto matches = pattern.globalMatch(name);
    while (matches.hasNext()) {
        const QString digits = matches.next().captured(1);
        const qint64 number = digits.toLongLong();
        const Date date{std::chrono::milliseconds(digits.size() == 13 ? number : number * 1000)};
        if (date >= Date(std::chrono::seconds(firstEpoch)) && date <= now)
            return date;
    }
    return std::nullopt;
}

} // namespace

QString stripSafeIDPrefix(const QString& name) {
    const auto staged = splitStagedName(name);
    return staged ? staged->fileName : name;
}

std::optional<QString> identifierOfStagedName(const QString& name) {
    const auto staged = splitStagedName(name);
    return staged ? std::optional(staged->identifier) : std::nullopt;
}

std::optional<ResolvedDate> parseDateFromFilename(const QString& name, Date now) {
    const auto written = [](Date date) { return ResolvedDate{date, DateSource::fileName}; };
    if (const auto date = pixelDate(name))
        return written(*date);
    for (const QRegularExpression& pattern : datePatterns())
        if (const auto match = pattern.match(name); match.hasMatch())
            if (const auto date = makeDate(name, match))
                return written(*date);
    if (const auto date = epochDate(withoutIdentifiers(name, false), now))
        return ResolvedDate{*date, DateSource::numberInName};
    constexpr std::chrono::days farthestZone(1); // a name may come from where it is tomorrow
    if (const auto date = writtenDate(withoutIdentifiers(name, true), now + farthestZone))
        return written(*date);
    return std::nullopt;
}

} // namespace quorvane

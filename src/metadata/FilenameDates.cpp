#include "metadata/FilenameDates.h"

#include "metadata/LocalCalendar.h"

#include <QRegularExpression>

#include <array>

namespace quorvane {

namespace {

constexpr int firstYear = 1970;
constexpr int lastYear = 2050;

// The instants that a bare number may stand for: from 1995 to the end of the last year.
constexpr qint64 firstEpoch = 788918400;
constexpr qint64 endEpoch =
    std::chrono::sys_seconds(std::chrono::sys_days(std::chrono::year(lastYear + 1) / 1 / 1))
        .time_since_epoch()
        .count();

/// A staged name: the identifier, whole or bare, and the file's own name.
struct StagedName {
    QString identifier;
    QString fileName;
};

std::optional<StagedName> splitStagedName(const QString& name) {
    static const QRegularExpression whole(
        QStringLiteral("^([0-9A-Fa-f\\-]{36}_[A-Za-z0-9]+_[A-Za-z0-9]+)_(.+)$"));
    static const QRegularExpression bare(QStringLiteral("^([0-9A-Fa-f\\-]{36})_(.+)$"));
    if (const auto match = whole.match(name); match.hasMatch())
        return StagedName{match.captured(1).replace(u'_', u'/'), match.captured(2)};
    if (const auto match = bare.match(name); match.hasMatch())
        return StagedName{match.captured(1), match.captured(2)};
    return std::nullopt;
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
std::optional<Date> makeDate(QStringView year, QStringView month, QStringView day, QStringView hour,
                             QStringView minute, QStringView second) {
    if (year.toInt() < firstYear || year.toInt() > lastYear)
        return std::nullopt;
    return localDate(year.toInt(), month.toInt(), day.toInt(), hour.toInt(), minute.toInt(),
                     second.toInt());
}

std::optional<Date> makeDate(const QRegularExpressionMatch& match) {
    const auto group = [&](int index) { return match.capturedView(index); };
    if (match.lastCapturedIndex() < 6)
        return makeDate(group(1), group(2), group(3), u"12", u"00", u"00");
    return makeDate(group(1), group(2), group(3), group(4), group(5), group(6));
}

/// The first number that is a plausible Unix time: ten digits of seconds or thirteen of
/// milliseconds.
std::optional<Date> epochDate(const QString& name) {
    static const QRegularExpression pattern(
        QStringLiteral("(?:^|[^0-9])(\\d{13}|\\d{10})(?:[^0-9]|$)"));
    auto matches = pattern.globalMatch(name);
    while (matches.hasNext()) {
        const QString digits = matches.next().captured(1);
        const qint64 number = digits.toLongLong();
        const qint64 milliseconds = digits.size() == 13 ? number : number * 1000;
        if (milliseconds >= firstEpoch * 1000 && milliseconds < endEpoch * 1000)
            return Date(std::chrono::milliseconds(milliseconds));
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

std::optional<Date> parseDateFromFilename(const QString& name) {
    for (const QRegularExpression& pattern : datePatterns())
        if (const auto match = pattern.match(name); match.hasMatch())
            if (const auto date = makeDate(match))
                return date;
    return epochDate(name);
}

} // namespace quorvane

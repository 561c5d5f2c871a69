#include "metadata/NameCalendar.h"

#include "metadata/LocalCalendar.h"

#include <QRegularExpression>

#include <array>
#include <vector>

namespace quorvane {

namespace {

using Match = QRegularExpressionMatch;

bool isPossible(const TimeOfDay& time) {
    return time.hour <= 23 && time.minute <= 59 && time.second <= 59;
}

/// The hour of the day that an hour of twelve with "AM" or "PM" is.
int hourOfDay(int hour, bool isAfternoon) {
    if (hour < 1 || hour > 12)
        return hour;
    return hour % 12 + (isAfternoon ? 12 : 0);
}

/// The months' names, whole and short, in the languages of the names we meet.
const std::array<QStringList, 12>& monthNames() {
    static const std::array<QStringList, 12> names = [] {
        constexpr std::array<QStringView, 12> rows = {
            u"jan january ocak oca januar janvier janv enero ene janeiro gennaio gen januari",
            u"feb february şubat subat şub februar février févr febrero fevereiro fev febbraio "
            u"februari",
            u"mar march mart märz mär mars marzo março maart mrt",
            u"apr april nisan nis avril avr abril abr aprile",
            u"may mayıs mayis mai mayo maio maggio mag mei",
            u"jun june haziran haz juni juin junio junho giugno giu",
            u"jul july temmuz tem juli juillet juil julio julho luglio lug",
            u"aug august ağustos agustos ağu août agosto ago augustus",
            u"sep sept september eylül eylul eyl septembre septiembre setembro settembre",
            u"oct october ekim eki oktober okt octobre octubre outubro ottobre ott",
            u"nov november kasım kasim kas novembre noviembre novembro",
            u"dec december aralık aralik ara dezember dez décembre déc diciembre dic dezembro "
            u"dicembre"};
        std::array<QStringList, 12> split;
        for (size_t month = 0; month < rows.size(); ++month)
            split[month] = rows[month].toString().split(u' ');
        return split;
    }();
    return names;
}

} // namespace

int monthNamed(const QString& name) {
    const auto& names = monthNames();
    for (size_t month = 0; month < names.size(); ++month)
        if (names[month].contains(name, Qt::CaseInsensitive))
            return static_cast<int>(month) + 1;
    return 0;
}

namespace {

QRegularExpression formOf(const QString& pattern) {
    return QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption |
                                           QRegularExpression::UseUnicodePropertiesOption);
}

/// How names write their dates. Groups: year, month, day, name (of a month), first and second
/// (numbers of which one is the day).
const std::vector<QRegularExpression>& forms() {
    static const std::vector<QRegularExpression> compiled = [] {
        const QString begin = QStringLiteral("(?<![0-9])");
        const QString end = QStringLiteral("(?![0-9])");
        const QString year = QStringLiteral("(?<year>(?:19|20)[0-9]{2})");
        QString months;
        for (const QStringList& names : monthNames())
            months += names.join(u'|') + u'|';
        months = QStringLiteral("(?<name>") + months.chopped(1) + QStringLiteral(")(?!\\p{L})\\.?");
        const QString english =
            QStringLiteral("(?<name>jan(?:uary)?|feb(?:ruary)?|mar(?:ch)?|apr(?:il)?|may|june?|"
                           "july?|aug(?:ust)?|sept?(?:ember)?|oct(?:ober)?|nov(?:ember)?|"
                           "dec(?:ember)?)\\.?");
        return std::vector{
            formOf(begin + year +
                   QStringLiteral("(?<month>[0-9]{2})(?<day>[0-9]{2})"
                                  "(?![0-9]{1,5}(?![0-9])|[0-9]{7,8}(?![0-9])|"
                                  "[0-9]{10})")),
            formOf(begin + year +
                   QStringLiteral("(?<between>[-_])(?<month>[0-9]{1,2})\\k<between>"
                                  "(?<day>[0-9]{1,2})") +
                   end),
            formOf(begin + year +
                   QStringLiteral("(?<between>[. ])(?<month>[0-9]{2})\\k<between>"
                                  "(?<day>[0-9]{2})") +
                   end),
            formOf(begin + year +
                   QStringLiteral("[年년] ?(?<month>[0-9]{1,2})[月월] ?(?<day>[0-9]{1,2})[日일]")),
            // No version and no address: "v1.2.2019", "10.11.2012.1".
            formOf(QStringLiteral("(?:(?<export>@)|(?<![0-9]|[0-9]\\.|v))") +
                   QStringLiteral("(?<first>[0-9]{1,2})(?<between>[-._ ])(?<second>[0-9]{1,2})"
                                  "\\k<between>") +
                   year + end + QStringLiteral("(?!\\.[0-9](?![0-9]))")),
            formOf(begin + QStringLiteral("(?<day>[0-9]{1,2})[-_. ]{0,2}(?:de )?") + months +
                   QStringLiteral("[-_. ]{0,2}(?:de )?") + year + end),
            formOf(QStringLiteral("(?<!\\p{L})") + english +
                   QStringLiteral("[-_ ](?<day>[0-9]{1,2}),?[-_ ]") + year + end),
        };
    }();
    return compiled;
}

struct Day {
    int year = 0;
    int month = 0;
    int day = 0;
};

/// Day and month of "12.04.2019", which is written day first, and so is a messenger's export
/// ("photo_1@12-04-2019"); of "12-04-2019" only where one of the numbers can be no month, or both
/// are the same.
Day dayOf(const Match& match) {
    const auto number = [&](const char* group) {
        return match.captured(QString::fromLatin1(group)).toInt();
    };
    Day day{number("year"), number("month"), number("day")};
    if (const QString name = match.captured(QStringLiteral("name")); !name.isEmpty())
        day.month = monthNamed(name);
    const int first = number("first");
    const int second = number("second");
    if (first == 0)
        return day;
    if (second > 12)
        return {day.year, first, second};
    const bool dayFirst = first > 12 || match.captured(QStringLiteral("between")) == u"." ||
                          !match.captured(QStringLiteral("export")).isEmpty();
    return dayFirst || first == second ? Day{day.year, second, first} : Day{};
}

/// None for no date, and for a number that would go on as a time of day but is none.
std::optional<Date> dateOf(const QString& name, const Match& match) {
    const Day day = dayOf(match);
    const auto time = timeOfDayAt(name, match.capturedEnd());
    const bool goesOn = match.capturedEnd() < name.size() && name[match.capturedEnd()].isDigit();
    if (day.year < firstNamedYear || (goesOn && !time))
        return std::nullopt;
    const TimeOfDay at = time.value_or(TimeOfDay());
    return localDate(day.year, day.month, day.day, at.hour, at.minute, at.second);
}

} // namespace

std::optional<TimeOfDay> timeOfDayAt(const QString& name, qsizetype at) {
    static const QRegularExpression pattern(
        QStringLiteral("(?:T|[-_ .,\\x{a0}\\x{202f}]{0,3})"
                       "(?:(?!ö[sö] |[ap]m )[^0-9 _.-]{1,4}\\.? ){0,2}"
                       "(?<before>ö[sö]|[ap]m|上午|下午|午前|午後|오전|오후)? ?"
                       "(?:(?<hour>[0-9]{2})(?<minute>[0-9]{2})(?<second>[0-9]{2})(?:[0-9]{3})?|"
                       "(?<hour2>[0-9]{1,2})(?<between>[-._: h])(?<minute2>[0-9]{2})"
                       "(?:\\k<between>|m)(?<second2>[0-9]{2})s?)(?![0-9])"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    const Match match = pattern.match(name, at, QRegularExpression::NormalMatch,
                                      QRegularExpression::AnchorAtOffsetMatchOption);
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&](const char* group) {
        const auto whole = match.captured(QString::fromLatin1(group));
        return (whole.isEmpty() ? match.captured(QLatin1String(group) + u'2') : whole).toInt();
    };
    TimeOfDay time{number("hour"), number("minute"), number("second")};
    const QString before = match.captured(QStringLiteral("before")).toLower();
    if (before.isEmpty())
        time.hour = hourWithMeridiem(name, match.capturedEnd(), time.hour);
    else
        time.hour = hourOfDay(time.hour, before == u"ös" || before == u"pm" || before == u"下午" ||
                                             before == u"午後" || before == u"오후");
    return isPossible(time) ? std::optional(time) : std::nullopt;
}

int hourWithMeridiem(const QString& name, qsizetype at, int hour) {
    static const QRegularExpression pattern(
        QStringLiteral("[ _\\x{a0}\\x{202f}]?([AaPp])\\.?[Mm](?![A-Za-z])"));
    const Match match = pattern.match(name, at, QRegularExpression::NormalMatch,
                                      QRegularExpression::AnchorAtOffsetMatchOption);
    return match.hasMatch() ? hourOfDay(hour, match.captured(1).toLower() == u"p") : hour;
}

std::optional<Date> writtenDate(const QString& name, Date latest) {
    // One way to write a letter: the İ of capitals has no small letter that compares equal.
    const QString text = name.normalized(QString::NormalizationForm_C).replace(u'İ', u'I');
    for (const QRegularExpression& pattern : forms()) {
        auto matches = pattern.globalMatch(text);
        while (matches.hasNext())
            if (const auto date = dateOf(text, matches.next()); date && *date <= latest)
                return date;
    }
    return std::nullopt;
}

} // namespace quorvane

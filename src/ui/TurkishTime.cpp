#include "ui/TurkishTime.h"

#include <QDateTime>
#include <QLocale>

#include <array>

namespace quorvane {

namespace {

using Endings = std::array<const char16_t*, 3>; // as in `TimeCase`

constexpr std::array<Endings, 10> ones{{{u"da", u"dan", u"a"},
                                        {u"de", u"den", u"e"},
                                        {u"de", u"den", u"ye"},
                                        {u"te", u"ten", u"e"},
                                        {u"te", u"ten", u"e"},
                                        {u"te", u"ten", u"e"},
                                        {u"da", u"dan", u"ya"},
                                        {u"de", u"den", u"ye"},
                                        {u"de", u"den", u"e"},
                                        {u"da", u"dan", u"a"}}};
constexpr std::array<Endings, 6> tens{{{u"da", u"dan", u"a"},
                                       {u"da", u"dan", u"a"},
                                       {u"de", u"den", u"ye"},
                                       {u"da", u"dan", u"a"},
                                       {u"ta", u"tan", u"a"},
                                       {u"de", u"den", u"ye"}}};

QString dayOf(const QDate& day, const QDate& today) {
    const qint64 ahead = today.daysTo(day);
    if (ahead == 0)
        return {};
    if (ahead == -1)
        return QStringLiteral("Dün ");
    if (ahead == 1)
        return QStringLiteral("Yarın ");
    return QLocale(QLocale::Turkish, QLocale::Turkey).toString(day, QStringLiteral("d MMMM "));
}

} // namespace

QString spokenTime(Date time, TimeCase ending, Date now) {
    const auto then = QDateTime::fromMSecsSinceEpoch(time.time_since_epoch().count());
    const auto today = QDateTime::fromMSecsSinceEpoch(now.time_since_epoch().count()).date();
    QString clock = dayOf(then.date(), today) + then.toString(QStringLiteral("HH:mm"));
    if (ending == TimeCase::plain)
        return clock;
    // On the hour, the hour is the last that is spoken.
    const int minute = then.time().minute();
    const auto spoken = static_cast<std::size_t>(minute == 0 ? then.time().hour() : minute);
    const Endings& endings = spoken % 10 == 0 ? tens.at(spoken / 10) : ones.at(spoken % 10);
    return clock + u'\'' + QString::fromUtf16(endings.at(static_cast<std::size_t>(ending)));
}

} // namespace quorvane

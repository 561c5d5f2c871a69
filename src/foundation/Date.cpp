#include "foundation/Date.h"

#include <QDateTime>
#include <QTimeZone>

#include <cmath>

namespace quorvane {

std::optional<Date> dateFromUnixSeconds(double seconds) {
    // A millisecond count below 2^62 leaves room for every later addition.
    constexpr double limit = 4.6e15;
    if (!std::isfinite(seconds) || std::abs(seconds) > limit)
        return std::nullopt;
    return Date(std::chrono::milliseconds(std::llround(seconds * 1000.0)));
}

double unixSeconds(Date date) {
    return static_cast<double>(date.time_since_epoch().count()) / 1000.0;
}

std::int64_t wholeUnixSeconds(Date date) {
    return std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
}

QString describe(Date date) {
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count(), QTimeZone::utc())
        .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss '+0000'"));
}

} // namespace quorvane

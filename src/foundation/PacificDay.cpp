#include "foundation/PacificDay.h"

#include <QDateTime>
#include <QTimeZone>

namespace quorvane {

Date nextPacificMidnight(Date now) {
    QTimeZone zone("America/Los_Angeles");
    if (!zone.isValid()) // a system without time zone data: standard time, at most an hour late
        zone = QTimeZone(-8 * 60 * 60);
    const auto local =
        QDateTime::fromMSecsSinceEpoch(now.time_since_epoch().count(), zone).date().addDays(1);
    return Date(std::chrono::milliseconds(local.startOfDay(zone).toMSecsSinceEpoch()));
}

} // namespace quorvane

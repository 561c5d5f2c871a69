#include "foundation/PacificDay.h"

#include <QDateTime>
#include <QTimeZone>

namespace quorvane {

namespace {

QTimeZone pacificZone() {
    const QTimeZone zone("America/Los_Angeles");
    // A system without time zone data: standard time, at most an hour late.
    return zone.isValid() ? zone : QTimeZone(-8 * 60 * 60);
}

/// Asked for every request.
const QTimeZone& pacificTime() {
    static const QTimeZone zone = pacificZone();
    return zone;
}

} // namespace

QDate pacificDate(Date instant) {
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), pacificTime()).date();
}

Date nextPacificMidnight(Date instant) {
    const QDateTime midnight = pacificDate(instant).addDays(1).startOfDay(pacificTime());
    return Date(std::chrono::milliseconds(midnight.toMSecsSinceEpoch()));
}

} // namespace quorvane

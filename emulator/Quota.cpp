#include "emulator/Quota.h"

#include "emulator/JsonBody.h"

#include <QDateTime>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace quorvane::emulator {

void Quota::spend(const Behaviour& behaviour, Date now) {
    static const QTimeZone pacific("America/Los_Angeles");
    const Date time = now + behaviour.clockAhead;
    const std::int64_t day =
        QDateTime::fromMSecsSinceEpoch(time.time_since_epoch().count(), pacific)
            .date()
            .toJulianDay();
    if (day != day_)
        spent_ = 0;
    day_ = day;
    if (behaviour.dailyRequests > 0 && ++spent_ > behaviour.dailyRequests)
        throw Refusal(apiError(429,
                               u"Quota exceeded for quota metric 'All requests' and limit 'All "
                               "requests per day' of service 'photoslibrary.googleapis.com' for "
                               "consumer 'project_number:1234'."_s,
                               u"RATE_LIMIT_EXCEEDED"_s));
}

} // namespace quorvane::emulator

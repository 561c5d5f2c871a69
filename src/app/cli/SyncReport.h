#pragma once

#include "app/RunReport.h"

#include <QJsonObject>

namespace quorvane::cli {

/// The end of a run, in words and as one JSON object.
QString tableOf(const RunReport& report);
QJsonObject jsonOf(const RunReport& report);
int exitCodeOf(const RunReport& report);

/// How what takes no date gets out.
QString undatableAdvice();

/// How many days Google's daily limit of requests spreads the upload of `items` over, today among
/// them: one request an item, and one a batch.
int daysUnderQuota(int items, const DailyRequests& requests);

/// "1 gün"
QString daysText(int days);

/// "1,2 MB"
QString byteText(std::int64_t bytes);

} // namespace quorvane::cli

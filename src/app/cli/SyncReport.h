#pragma once

#include "store/RecordRemainders.h"
#include "store/StoreCounts.h"
#include "sync/SyncRun.h"

#include <QJsonObject>

namespace quorvane::cli {

/// One record that needs a look.
struct UnfinishedItem {
    QString name; ///< of its staged file, else its identifier
    SyncStatus status = SyncStatus::failed;
    QString reason;
};

/// The end of a run.
struct SyncReport {
    StoreCounts after;
    int pending = 0;        ///< of this run's source
    RemainderCounts behind; ///< of all that was ever sent
    std::vector<FailedCategorySummary> failures;
    std::vector<UnfinishedItem> unfinished; ///< at most `shownItems`
    SyncRunOutcome run;
    double seconds = 0;

    static constexpr int shownItems = 20;

    QString table() const;
    QJsonObject json() const;
    int exitCode() const;
};

/// The pictures and movies that the library left out, by reason: of the table and of the JSON.
QString leftOutRows(const LeftOut& leftOut);
QJsonObject leftOutJson(const LeftOut& leftOut);

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

#pragma once

#include "store/StoreCounts.h"
#include "sync/SyncCoordinator.h"

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
    StoreCounts before;
    StoreCounts after;
    std::vector<FailedCategorySummary> failures;
    std::vector<UnfinishedItem> unfinished; ///< at most `shownItems`
    SyncCoordinator::Summary run;
    double seconds = 0;
    bool albumFull = false;

    static constexpr int shownItems = 20;

    QString table() const;
    QJsonObject json() const;
    int exitCode() const;
};

/// "1,2 MB"
QString byteText(std::int64_t bytes);

} // namespace quorvane::cli

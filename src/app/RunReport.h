#pragma once

#include "store/RecordFaults.h"
#include "store/RecordRemainders.h"
#include "store/StoreCounts.h"
#include "sync/SyncRun.h"

#include <map>

namespace quorvane {

/// What a page about a run tells, for a person to keep.
struct RunReport {
    struct Item {
        QString name;
        QString reason; ///< with Google's own, where it gave one
    };
    /// What is at the destination, of one month.
    struct Month {
        int pictures = 0;
        int movies = 0;
    };
    static constexpr int mostItems = 10'000; ///< in each list

    QString library; ///< its path
    QString account; ///< e-mail; empty when unknown
    Date end;
    double seconds = 0;
    SyncRunOutcome run;
    StoreCounts now;
    int pending = 0;
    RemainderCounts behind;
    std::map<QString, Month> months;    ///< by capture date, UTC: "2019-05"
    std::map<QString, int> dateSources; ///< of the same items, by the raw value of `DateSource`
    std::vector<Item> failed;
    std::vector<Item> heldBack;
    std::vector<Item> misdated; ///< the reason holds both dates

    /// What the store and the library of `services` say after the run. Throws `Error`, or
    /// `Cancelled`.
    static RunReport of(const SyncRunServices& services, const SyncRunOutcome& run,
                        const std::stop_token& stop);

    /// One HTML page, UTF-8, that needs no script, no network and no other file.
    QString html() const;
};

/// The record's own text, and what Google said about it.
QString reasonOf(const SyncRecord& record, RecordFaults& faults);

} // namespace quorvane

#pragma once

#include "app/Figures.h"
#include "store/RecordDates.h"
#include "store/StoreCounts.h"
#include "sync/SyncRun.h"

namespace quorvane {

/// What there is to tell about a run that ended: the table and the JSON of `sync`, and a page for a
/// person to keep.
struct RunReport {
    /// An item that needs a look.
    struct Item {
        QString name; ///< a person knows it by; else its identifier
        SyncStatus status = SyncStatus::failed;
        QString reason; ///< with Google's own, where it gave one
    };
    enum class Extent {
        summary, ///< the first `shownItems` that need a look
        page,    ///< as many as `pageItems` in each list, and what the page alone tells
    };
    static constexpr int shownItems = 20;
    static constexpr int pageItems = 10'000;

    QString library; ///< its path
    QString account; ///< e-mail; empty when unknown
    Date end;
    double seconds = 0;
    SyncRunOutcome run;
    StoreCounts now;
    int pending = 0; ///< of this run's source
    RemainderCounts behind;
    std::vector<FailedCategorySummary> failures;
    std::vector<Item> unfinished;  ///< failed and held back, most recently changed first
    std::vector<Item> misdated;    ///< the reason holds both dates; of the page
    std::vector<DatedItems> dated; ///< what is at the destination; of the page

    /// What the store says after the run, with the library's names. What it cannot tell is left
    /// empty, and is the run's error unless that has one.
    static RunReport of(const SyncRunServices& services, const SyncRunOutcome& run, Extent extent);

    /// What became of the records, and how many there are of each kind now.
    std::vector<Figure> figures() const;

    /// One HTML page, UTF-8, that needs no script, no network and no other file.
    QString html() const;
};

} // namespace quorvane

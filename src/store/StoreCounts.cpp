#include "store/StoreCounts.h"

#include "store/RecordAbsences.h"
#include "store/Statements.h"

namespace quorvane {

namespace {

int count(DatabaseManager& db, const char* sql) {
    return db.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, sql);
        return row.step() ? static_cast<int>(row.integer(0)) : 0;
    });
}

} // namespace

StoreCounts StoreCounts::of(DatabaseManager& db) {
    StoreCounts counts;
    counts.undatable = count(db, statements::countHeldUndatable);
    counts.misdated = count(db, statements::countMisdated);
    counts.datedByNumber = count(db, statements::countDatedByNumber);
    for (const auto& [status, count] : db.countByStatus()) {
        switch (status) {
        case SyncStatus::verified:
        case SyncStatus::deletedLocally:
            counts.verified += count;
            break;
        case SyncStatus::failed:
            counts.failed += count;
            break;
        case SyncStatus::dateUnresolved:
            counts.undated += count;
            break;
        case SyncStatus::discovered:
        case SyncStatus::staged:
            counts.pending += count;
            break;
        case SyncStatus::uploading:
        case SyncStatus::excluded:
            break;
        }
    }
    for (const auto& [code, count] : RecordAbsences(db).counts())
        (code == RecordAbsences::onlyInCloud ? counts.onlyInCloud : counts.elsewhere) += count;
    return counts;
}

} // namespace quorvane

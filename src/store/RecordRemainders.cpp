#include "store/RecordRemainders.h"

namespace quorvane {

namespace {

constexpr const char* remaindersSent =
    R"sql(SELECT behind FROM record_remainders CROSS JOIN sync_records USING (asset_local_identifier)
WHERE sync_status IN ('VERIFIED', 'DELETED_LOCALLY'))sql";

/// Only what shares its bytes is looked at: the index tells, in its own order.
constexpr const char* duplicatesSent =
    R"sql(WITH shared AS
    (SELECT sample, sha256 FROM record_sources GROUP BY sample, sha256 HAVING COUNT(*) > 1)
SELECT COUNT(*) - COUNT(DISTINCT sha256)
FROM shared
CROSS JOIN record_sources USING (sample, sha256)
CROSS JOIN sync_records USING (asset_local_identifier)
WHERE sync_status IN ('VERIFIED', 'DELETED_LOCALLY'))sql";

} // namespace

void RemainderCounts::add(int behind) {
    edits += (behind & RecordRemainders::edit) != 0 ? 1 : 0;
    movies += (behind & RecordRemainders::movie) != 0 ? 1 : 0;
    raws += (behind & RecordRemainders::raw) != 0 ? 1 : 0;
    originals += (behind & RecordRemainders::original) != 0 ? 1 : 0;
}

RemainderCounts RecordRemainders::counts() const {
    return db_.onConnection([](sqlite::Connection& database) {
        RemainderCounts counts;
        sqlite::Statement row(database, remaindersSent);
        while (row.step())
            counts.add(static_cast<int>(row.integer(0)));
        sqlite::Statement copies(database, duplicatesSent);
        if (copies.step())
            counts.duplicates = static_cast<int>(copies.integer(0));
        return counts;
    });
}

void RecordRemainders::set(const QString& identifier, int behind) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(
            database, behind == 0 ? "DELETE FROM record_remainders WHERE asset_local_identifier = ?"
                                  : "INSERT OR REPLACE INTO record_remainders VALUES (?, ?)");
        row.bind(1, identifier);
        if (behind != 0)
            row.bind(2, behind);
        row.step();
    });
}

} // namespace quorvane

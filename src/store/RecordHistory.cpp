#include "store/RecordHistory.h"

#include "store/RecordFaults.h"

namespace quorvane {

namespace {

std::optional<Date> secondsAt(const sqlite::Statement& row, int column) {
    return row.isNull(column) ? std::nullopt
                              : std::optional(Date(std::chrono::seconds(row.integer(column))));
}

} // namespace

std::optional<RecordHistory> RecordHistory::of(DatabaseManager& db, const QString& identifier) {
    return db.onConnection([&](sqlite::Connection& database) -> std::optional<RecordHistory> {
        auto known = db.fetchRecord(identifier);
        if (!known)
            return std::nullopt;
        RecordHistory history{std::move(*known), {}, {}, {}, {}};
        if (history.record.syncStatus == SyncStatus::failed)
            history.fault = RecordFaults(db).of(history.record);
        history.date = RecordDates(db).dateFor(identifier);
        sqlite::Statement times(database,
                                "SELECT staged, COALESCE(uploaded, made) FROM record_times "
                                "LEFT JOIN upload_tokens USING (asset_local_identifier) "
                                "WHERE asset_local_identifier = ?");
        times.bind(1, identifier);
        if (times.step()) {
            history.staged = secondsAt(times, 0);
            history.uploaded = secondsAt(times, 1);
        }
        return history;
    });
}

void RecordTimes::setStaged(const QString& identifier) {
    run("INSERT OR REPLACE INTO record_times VALUES (?, strftime('%s', 'now'), NULL)", identifier);
}

void RecordTimes::setUploaded(const QString& identifier) {
    run("UPDATE record_times SET uploaded = (SELECT made FROM upload_tokens "
        "WHERE upload_tokens.asset_local_identifier = record_times.asset_local_identifier) "
        "WHERE asset_local_identifier = ?",
        identifier);
}

void RecordTimes::run(const char* sql, const QString& identifier) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, sql);
        row.bind(1, identifier);
        row.step();
    });
}

} // namespace quorvane

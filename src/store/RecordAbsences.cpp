#include "store/RecordAbsences.h"

namespace quorvane {

std::map<QString, QString> RecordAbsences::all() const {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT asset_local_identifier, code FROM record_absences");
        std::map<QString, QString> all;
        while (row.step())
            all.emplace(row.text(0), row.text(1));
        return all;
    });
}

std::map<QString, int> RecordAbsences::counts() const {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT code, COUNT(*) FROM record_absences GROUP BY code");
        std::map<QString, int> counts;
        while (row.step())
            counts.emplace(row.text(0), static_cast<int>(row.integer(1)));
        return counts;
    });
}

QStringList RecordAbsences::reasons(int limit) const {
    return db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT last_error FROM record_absences "
                                        "CROSS JOIN sync_records USING (asset_local_identifier) "
                                        "ORDER BY code, last_error LIMIT ?");
        row.bind(1, limit);
        QStringList reasons;
        while (row.step())
            reasons += row.text(0);
        return reasons;
    });
}

void RecordAbsences::set(const QString& identifier, const QString& code) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR REPLACE INTO record_absences VALUES (?, ?)");
        row.bind(1, identifier);
        row.bind(2, code);
        row.step();
    });
}

void RecordAbsences::remove(const QString& identifier) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              "DELETE FROM record_absences WHERE asset_local_identifier = ?");
        row.bind(1, identifier);
        row.step();
    });
}

} // namespace quorvane

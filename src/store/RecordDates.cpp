#include "store/RecordDates.h"

#include "store/Statements.h"

namespace quorvane {

namespace {

std::int64_t milliseconds(Date date) {
    return date.time_since_epoch().count();
}

Date dateOf(std::int64_t milliseconds) {
    return Date(std::chrono::milliseconds(milliseconds));
}

} // namespace

void RecordDates::setDate(const QString& identifier, const RecordDate& date) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR REPLACE INTO record_dates VALUES (?, ?, ?)");
        row.bind(1, identifier);
        row.bind(2, milliseconds(date.date));
        row.bind(3, date.source);
        row.step();
    });
}

std::vector<std::pair<QString, RecordDate>> RecordDates::all() {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              "SELECT asset_local_identifier, date, source FROM record_dates");
        std::vector<std::pair<QString, RecordDate>> dates;
        while (row.step())
            dates.emplace_back(row.text(0), RecordDate{dateOf(row.integer(1)), row.text(2)});
        return dates;
    });
}

void RecordDates::setChoice(const QString& identifier, const DateChoice& choice) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR REPLACE INTO record_choices VALUES (?, ?)");
        row.bind(1, identifier);
        row.bind(2, choice.date ? std::optional(milliseconds(*choice.date)) : std::nullopt);
        row.step();
    });
}

std::optional<DateChoice> RecordDates::choiceOf(const QString& identifier) {
    return db_.onConnection([&](sqlite::Connection& database) -> std::optional<DateChoice> {
        sqlite::Statement row(database, "SELECT date FROM record_choices "
                                        "WHERE asset_local_identifier = ?");
        row.bind(1, identifier);
        if (!row.step())
            return std::nullopt;
        return DateChoice{row.isNull(0) ? std::nullopt : std::optional(dateOf(row.integer(0)))};
    });
}

void RecordDates::setUndatable(const QString& identifier, bool isUndatable) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(
            database, isUndatable
                          ? "INSERT OR IGNORE INTO record_undatable VALUES (?)"
                          : "DELETE FROM record_undatable WHERE asset_local_identifier = ?");
        row.bind(1, identifier);
        row.step();
    });
}

std::set<QString> RecordDates::heldUndatable() {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database, statements::heldUndatable);
        std::set<QString> identifiers;
        while (row.step())
            identifiers.insert(row.text(0));
        return identifiers;
    });
}

} // namespace quorvane

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

bool isMisdated(Date ours, Date theirs) {
    using namespace std::chrono_literals;
    const auto apart = std::chrono::abs(theirs - ours);
    const auto beyondZones = apart % 15min;
    const bool isZone = apart <= 26h + 1min && std::min(beyondZones, 15min - beyondZones) <= 1min;
    return apart > 1min && !isZone;
}

void RecordDates::setDate(const QString& identifier, const RecordDate& date) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR REPLACE INTO record_dates VALUES (?, ?, ?)");
        row.bind(1, identifier);
        row.bind(2, milliseconds(date.date));
        row.bind(3, date.source);
        row.step();
    });
}

std::optional<RecordDate> RecordDates::dateFor(const QString& identifier) {
    return db_.onConnection([&](sqlite::Connection& database) -> std::optional<RecordDate> {
        sqlite::Statement row(
            database, "SELECT date, source FROM record_dates WHERE asset_local_identifier = ?");
        row.bind(1, identifier);
        return row.step() ? std::optional(RecordDate{dateOf(row.integer(0)), row.text(1)})
                          : std::nullopt;
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

std::vector<DatedItems> RecordDates::sent() {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database, statements::datesSent);
        std::vector<DatedItems> items;
        while (row.step())
            items.push_back(
                {row.text(0), row.text(1), row.integer(2) != 0, static_cast<int>(row.integer(3))});
        return items;
    });
}

void RecordDates::compare(const QString& identifier, Date theirs) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement ours(database,
                               "SELECT date FROM record_dates WHERE asset_local_identifier = ?");
        ours.bind(1, identifier);
        const bool isWrong = ours.step() && isMisdated(dateOf(ours.integer(0)), theirs);
        sqlite::Statement row(
            database, isWrong ? "INSERT OR REPLACE INTO record_misdatings VALUES (?, ?)"
                              : "DELETE FROM record_misdatings WHERE asset_local_identifier = ?");
        row.bind(1, identifier);
        if (isWrong)
            row.bind(2, milliseconds(theirs));
        row.step();
    });
}

std::vector<Misdating> RecordDates::misdated() {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database, statements::misdated);
        std::vector<Misdating> found;
        while (row.step())
            found.push_back({row.text(0), dateOf(row.integer(1)), dateOf(row.integer(2))});
        return found;
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

#pragma once

#include "store/DatabaseManager.h"

#include <set>

namespace quorvane {

/// The capture date that a record's staged copy was given.
struct RecordDate {
    Date date;
    QString source; ///< where it comes from; the metadata's own word

    bool operator==(const RecordDate&) const = default;
};

/// How many items there are at the destination of one month, source and kind.
struct DatedItems {
    QString month;  ///< of the capture date, UTC: "2019-05"
    QString source; ///< of `RecordDate`
    bool areMovies = false;
    int count = 0;
};

/// An item that the destination files under another time than its copy was given.
struct Misdating {
    QString identifier;
    Date ours;
    Date theirs;
};

/// Whether these are further apart than a minute, time zones aside: a difference of whole quarters
/// of an hour, up to 26 hours, may be the zone that a reader took a date without one in.
bool isMisdated(Date ours, Date theirs);

/// What a person decided about an item that was held back for want of a date.
struct DateChoice {
    std::optional<Date> date; ///< its capture date; none: it goes up as it is, without one

    bool operator==(const DateChoice&) const = default;
};

/// What is remembered of dates, beside the records. Read by anybody; written by `RecordLife`
/// together with the status that it means. Any thread. Throws `DBError`.
class RecordDates {
  public:
    explicit RecordDates(DatabaseManager& database) : db_(database) {}

    void setDate(const QString& identifier, const RecordDate& date);
    /// None where the asset was never staged with a date.
    std::optional<RecordDate> dateFor(const QString& identifier);
    /// By identifier, in no order: of every asset that was staged with a date.
    std::vector<std::pair<QString, RecordDate>> all();

    /// What is at the destination with a date, by month.
    std::vector<DatedItems> sent();

    /// The destination filed the asset's item under this time. Kept while it is not ours.
    void compare(const QString& identifier, Date theirs);
    /// Of items at the destination, by identifier.
    std::vector<Misdating> misdated();

    void setChoice(const QString& identifier, const DateChoice& choice);
    std::optional<DateChoice> choiceOf(const QString& identifier);

    /// Whether the asset's file was found to be of a kind that takes no date.
    void setUndatable(const QString& identifier, bool isUndatable);
    /// The held back assets among them.
    std::set<QString> heldUndatable();

  private:
    DatabaseManager& db_;
};

} // namespace quorvane

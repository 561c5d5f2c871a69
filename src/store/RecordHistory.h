#pragma once

#include "store/RecordDates.h"

namespace quorvane {

/// The life of one record, as far as the store remembers it.
struct RecordHistory {
    SyncRecord record;
    std::optional<Fault> fault;     ///< that it failed by, where that is known
    std::optional<RecordDate> date; ///< that its copy was given
    std::optional<Date> staged;     ///< when its copy was made; whole seconds, as the next
    std::optional<Date> uploaded;   ///< when the bytes of that copy were at the destination

    /// None for an unknown asset. Any thread. Throws `DBError`.
    static std::optional<RecordHistory> of(DatabaseManager& db, const QString& identifier);
};

/// When what happened to a record. Written by `RecordLife` together with the status that it means.
/// Any thread. Throws `DBError`.
class RecordTimes {
  public:
    explicit RecordTimes(DatabaseManager& database) : db_(database) {}

    /// Now; the upload of an earlier copy is forgotten.
    void setStaged(const QString& identifier);
    /// When its upload token was made; to be told before that is forgotten.
    void setUploaded(const QString& identifier);

  private:
    void run(const char* sql, const QString& identifier);

    DatabaseManager& db_;
};

} // namespace quorvane

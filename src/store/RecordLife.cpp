#include "store/RecordLife.h"

#include "store/RecordAbsences.h"
#include "store/RecordFaults.h"
#include "store/RecordHistory.h"
#include "store/RecordRemainders.h"
#include "store/StateFacts.h"

#include <algorithm>
#include <array>

namespace quorvane {

namespace {

using enum SyncStatus;

const std::array lifeOfARecord{
    RecordLife::Arrow{"staged", {discovered}, SyncStatus::staged},
    RecordLife::Arrow{"stageFailed", {discovered}, failed},
    RecordLife::Arrow{"redated", {SyncStatus::staged}, SyncStatus::staged},
    RecordLife::Arrow{"requeued", {discovered, SyncStatus::staged}, discovered},
    RecordLife::Arrow{"heldBack", {SyncStatus::staged}, dateUnresolved},
    RecordLife::Arrow{"refused", {SyncStatus::staged}, failed},
    RecordLife::Arrow{"relieved", {failed}, discovered},
    RecordLife::Arrow{"created", {SyncStatus::staged}, verified},
    RecordLife::Arrow{"recognised", {discovered, SyncStatus::staged}, verified},
    RecordLife::Arrow{
        "superseded", {discovered, SyncStatus::staged, failed, dateUnresolved}, excluded},
    RecordLife::Arrow{"absent", {discovered}, excluded},
    RecordLife::Arrow{"returned", {excluded}, discovered},
    RecordLife::Arrow{"deleting", {verified}, verified},
    RecordLife::Arrow{"deleted", {verified}, deletedLocally},
    RecordLife::Arrow{"retried", {failed}, discovered},
    RecordLife::Arrow{"retriedFailed", {failed}, discovered},
    RecordLife::Arrow{"retriedUndated", {dateUnresolved}, discovered},
    RecordLife::Arrow{"dateChosen", {dateUnresolved}, discovered},
    RecordLife::Arrow{"undatableReleased", {dateUnresolved}, discovered},
};

// What tells one version of a file from another, as both tables of sources keep it.
FileVersion versionIn(const sqlite::Statement& row) {
    return {row.integer(1), row.integer(2), row.integer(3),
            static_cast<std::uint64_t>(row.integer(4))};
}

void bindVersion(sqlite::Statement& row, const SyncRecord& record, const QString& sha256,
                 const FileVersion& version) {
    row.bind(1, record.assetLocalIdentifier);
    row.bind(2, sha256);
    row.bind(3, version.size);
    row.bind(4, version.modified);
    row.bind(5, version.changed);
    row.bind(6, static_cast<std::int64_t>(version.inode));
}

const RecordLife::Arrow& arrowNamed(std::string_view name) {
    return *std::ranges::find(lifeOfARecord, name, &RecordLife::Arrow::name);
}

} // namespace

bool AccountIdentity::isSameAs(const AccountIdentity& other) const {
    if (!userID.isEmpty() && !other.userID.isEmpty())
        return userID == other.userID;
    return !email.isEmpty() && email == other.email;
}

std::span<const RecordLife::Arrow> RecordLife::arrows() {
    return lifeOfARecord;
}

bool RecordLife::follow(std::string_view name, const SyncRecord& record,
                        const std::function<void(SyncStatus to)>& write) {
    const Arrow& arrow = arrowNamed(name);
    return db_.transaction([&](sqlite::Connection&) {
        const auto now = db_.fetchStatus(record);
        if (!now || std::ranges::find(arrow.from, *now) == arrow.from.end())
            return false;
        write(arrow.to);
        return true;
    });
}

void RecordLife::together(const std::function<void()>& work) {
    db_.transaction([&](sqlite::Connection&) { work(); });
}

bool RecordLife::setStatus(std::string_view arrow, const SyncRecord& record,
                           const std::optional<QString>& error) {
    return follow(arrow, record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to, {},
                         {}, error);
    });
}

void RecordLife::exporting(const SyncRecord& record, const RecordSource& source) {
    db_.transaction([&](sqlite::Connection&) { setSource(record, source); });
}

bool RecordLife::staged(const SyncRecord& record, const std::optional<RecordSource>& source,
                        const std::optional<RecordDate>& date) {
    return follow("staged", record, [&](SyncStatus to) {
        SyncRecord changed = record;
        changed.uploadToken.reset();
        changed.syncStatus = to;
        db_.upsertRecord(changed);
        RecordTimes(db_).setStaged(record.assetLocalIdentifier);
        if (source)
            setSource(record, *source);
        if (date)
            dates_.setDate(record.assetLocalIdentifier, *date);
    });
}

bool RecordLife::stageFailed(const SyncRecord& record, const QString& reason,
                             const std::optional<Fault>& fault) {
    return follow("stageFailed", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to, {},
                         {}, reason);
        RecordFaults(db_).keep(record, fault);
    });
}

bool RecordLife::redated(const SyncRecord& record, const std::optional<RecordDate>& date) {
    return follow("redated", record, [&](SyncStatus to) {
        SyncRecord changed = record;
        changed.uploadToken.reset();
        changed.syncStatus = to;
        db_.upsertRecord(changed);
        if (date)
            dates_.setDate(record.assetLocalIdentifier, *date);
    });
}

bool RecordLife::requeued(const SyncRecord& record) {
    return setStatus("requeued", record);
}

bool RecordLife::heldBack(const SyncRecord& record, const QString& reason, Want want) {
    return follow("heldBack", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to, {},
                         {}, reason);
        dates_.setUndatable(record.assetLocalIdentifier, want == Want::undatable);
    });
}

bool RecordLife::refused(const SyncRecord& record, const QString& reason,
                         const std::optional<Fault>& fault) {
    return follow("refused", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to, {},
                         {}, reason);
        RecordFaults(db_).keep(record, fault);
    });
}

bool RecordLife::relieved(const SyncRecord& record) {
    return setStatus("relieved", record);
}

bool RecordLife::created(const SyncRecord& record, const QString& uploadToken,
                         const QString& remoteID, std::optional<Date> filedUnder) {
    return follow("created", record, [&](SyncStatus to) {
        if (filedUnder)
            dates_.compare(record.assetLocalIdentifier, *filedUnder);
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to,
                         uploadToken, remoteID);
        RecordTimes(db_).setUploaded(record.assetLocalIdentifier);
        runFor(record.assetLocalIdentifier,
               "DELETE FROM upload_tokens WHERE asset_local_identifier = ?");
        bindAccount();
    });
}

bool RecordLife::recognised(const SyncRecord& record, const RecordSource& source,
                            const QString& remoteID) {
    return follow("recognised", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to, {},
                         remoteID);
        setSource(record, source);
        bindAccount();
    });
}

bool RecordLife::superseded(const SyncRecord& record, const QString& reason) {
    return follow("superseded", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to, {},
                         {}, reason);
        runFor(record.assetLocalIdentifier, "INSERT OR IGNORE INTO record_leavings VALUES (?)");
    });
}

void RecordLife::leavesBehind(const SyncRecord& record, int behind) {
    RecordRemainders(db_).set(record.assetLocalIdentifier, behind);
}

bool RecordLife::absent(const SyncRecord& record, const QString& code, const QString& reason) {
    return follow("absent", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to, {},
                         {}, reason);
        RecordAbsences(db_).set(record.assetLocalIdentifier, code);
    });
}

/// Also an asset whose staging was cut short may have a file: its source is known by then.
void RecordLife::cleared() {
    db_.transaction([&](sqlite::Connection& database) {
        database.execute("INSERT OR IGNORE INTO record_leavings "
                         "SELECT asset_local_identifier FROM sync_records "
                         "WHERE sync_status = 'STAGED' OR (sync_status = 'DISCOVERED' "
                         "AND (sha256_hash NOT NULL OR asset_local_identifier IN "
                         "(SELECT asset_local_identifier FROM record_sources)))");
        db_.clearPendingRecords();
    });
}

QStringList RecordLife::left() {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT asset_local_identifier FROM record_leavings");
        QStringList identifiers;
        while (row.step())
            identifiers += row.text(0);
        return identifiers;
    });
}

void RecordLife::discarded(const QString& identifier) {
    runFor(identifier, "DELETE FROM record_leavings WHERE asset_local_identifier = ?");
}

bool RecordLife::returned(const SyncRecord& record) {
    return follow("returned", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to);
        RecordAbsences(db_).remove(record.assetLocalIdentifier);
    });
}

bool RecordLife::deleting(const SyncRecord& record) {
    return follow("deleting", record, [&](SyncStatus) { setDeleting(record, true); });
}

bool RecordLife::deleted(const SyncRecord& record) {
    return follow("deleted", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to);
        setDeleting(record, false);
    });
}

void RecordLife::kept(const SyncRecord& record) {
    setDeleting(record, false);
}

bool RecordLife::retried(const SyncRecord& record) {
    return follow("retried", record, [&](SyncStatus to) {
        SyncRecord changed =
            *db_.fetchRecord(record.assetLocalIdentifier, record.providerID, record.accountID);
        changed.syncStatus = to;
        changed.retryCount = 0;
        changed.lastError.reset();
        db_.upsertRecord(changed);
    });
}

void RecordLife::retriedFailed(bool resetRetryCount) {
    db_.retryFailedRecords(resetRetryCount);
}

void RecordLife::retriedUndated() {
    db_.retryDateUnresolvedRecords();
}

bool RecordLife::dateChosen(const SyncRecord& record, Date date) {
    return follow("dateChosen", record, [&](SyncStatus to) {
        db_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID, to);
        dates_.setChoice(record.assetLocalIdentifier, {date});
    });
}

int RecordLife::undatableReleased() {
    return db_.transaction([&](sqlite::Connection&) {
        int released = 0;
        for (const QString& identifier : dates_.heldUndatable())
            for (const SyncRecord& record : db_.fetchRecordsOfAsset(identifier))
                released += follow("undatableReleased", record, [&](SyncStatus to) {
                    db_.updateStatus(identifier, record.providerID, record.accountID, to);
                    dates_.setChoice(identifier, {});
                });
        return released;
    });
}

std::optional<RecordSource> RecordLife::sourceOf(const QString& identifier) {
    return db_.onConnection([&](sqlite::Connection& database) -> std::optional<RecordSource> {
        sqlite::Statement row(database, "SELECT sha256, size, modified, changed, inode, sample "
                                        "FROM record_sources WHERE asset_local_identifier = ?");
        row.bind(1, identifier);
        if (!row.step())
            return std::nullopt;
        RecordSource source{row.text(0), versionIn(row), row.integer(5)};
        sqlite::Statement movie(database, "SELECT sha256, size, modified, changed, inode "
                                          "FROM record_movies WHERE asset_local_identifier = ?");
        movie.bind(1, identifier);
        if (movie.step())
            source.movie = {movie.text(0), versionIn(movie)};
        return source;
    });
}

std::vector<SyncRecord> RecordLife::unfinishedDeletions() {
    return db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT asset_local_identifier FROM record_deletions");
        std::vector<SyncRecord> records;
        while (row.step())
            for (SyncRecord& record : db_.fetchRecordsOfAsset(row.text(0)))
                records.push_back(std::move(record));
        return records;
    });
}

void RecordLife::setSource(const SyncRecord& record, const RecordSource& source) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR REPLACE INTO record_sources VALUES "
                                        "(?, ?, ?, ?, ?, ?, ?)");
        bindVersion(row, record, source.sha256, source.version);
        row.bind(7, source.sample);
        row.step();
        if (!source.movie)
            return runFor(record.assetLocalIdentifier,
                          "DELETE FROM record_movies WHERE asset_local_identifier = ?");
        sqlite::Statement movie(database,
                                "INSERT OR REPLACE INTO record_movies VALUES (?, ?, ?, ?, ?, ?)");
        bindVersion(movie, record, source.movie->sha256, source.movie->version);
        movie.step();
    });
}

void RecordLife::setDeleting(const SyncRecord& record, bool isDeleting) {
    runFor(record.assetLocalIdentifier,
           isDeleting ? "INSERT OR IGNORE INTO record_deletions VALUES (?)"
                      : "DELETE FROM record_deletions WHERE asset_local_identifier = ?");
}

void RecordLife::runFor(const QString& identifier, const char* sql) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, sql);
        row.bind(1, identifier);
        row.step();
    });
}

void RecordLife::bindAccount() {
    if (!isAccountBound_.exchange(true))
        StateFacts(db_).bindAccount(account_);
}

} // namespace quorvane

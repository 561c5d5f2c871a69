#include "store/DatabaseManager.h"

#include "foundation/File.h"
#include "store/Statements.h"

#include <QDateTime>
#include <QTimeZone>
#include <map>

namespace quorvane {

namespace {

constexpr int busyTimeoutMilliseconds = 5000;

QString descriptionOf(DBError::Case which, const QString& message) {
    switch (which) {
    case DBError::Case::prepareFailed:
        return QStringLiteral("[DB] Prepare failed: ") + message;
    case DBError::Case::stepFailed:
        return QStringLiteral("[DB] Step failed: ") + message;
    case DBError::Case::openFailed:
        break;
    }
    return QStringLiteral("[DB] Open failed: ") + message;
}

sqlite::Statement prepare(sqlite::Connection& connection, const char* sql) {
    try {
        return {connection, sql};
    } catch (const sqlite::SqliteError& error) {
        throw DBError(DBError::Case::prepareFailed, error.localizedDescription());
    }
}

bool step(sqlite::Statement& statement) {
    try {
        return statement.step();
    } catch (const sqlite::SqliteError& error) {
        throw DBError(DBError::Case::stepFailed, error.localizedDescription());
    }
}

/// Time stamps are UTC text as SQLite's datetime('now') writes it; an unreadable one reads as now.
Date timestamp(const sqlite::Statement& row, int column) {
    const QString text = row.text(column);
    // Not one QDateTime from the whole text: that would be local time first, a costly one.
    const QDateTime parsed(QDate::fromString(text.left(10), Qt::ISODate),
                           QTime::fromString(text.mid(11), Qt::ISODate), QTimeZone::utc());
    return parsed.isValid() ? Date(std::chrono::milliseconds(parsed.toMSecsSinceEpoch()))
                            : std::chrono::time_point_cast<std::chrono::milliseconds>(
                                  std::chrono::system_clock::now());
}

SyncRecord readRecord(const sqlite::Statement& row) {
    SyncRecord record;
    record.assetLocalIdentifier = row.text(0);
    record.providerID = row.text(1);
    record.accountID = row.text(2);
    record.mediaType = mediaTypeFrom(row.text(3)).value_or(MediaType::photo);
    record.sha256Hash = row.optionalText(4);
    if (!row.isNull(5))
        record.fileSizeBytes = row.integer(5);
    record.uploadToken = row.optionalText(6);
    record.remoteMediaID = row.optionalText(7);
    record.syncStatus = syncStatusFrom(row.text(8)).value_or(SyncStatus::discovered);
    record.retryCount = static_cast<int>(row.integer(9));
    record.lastError = row.optionalText(10);
    record.createdAt = timestamp(row, 11);
    record.updatedAt = timestamp(row, 12);
    return record;
}

void bindKeyAndType(sqlite::Statement& statement, const SyncRecord& record) {
    statement.bind(1, record.assetLocalIdentifier);
    statement.bind(2, record.providerID);
    statement.bind(3, record.accountID);
    statement.bind(4, rawValue(record.mediaType));
}

} // namespace

DBError::DBError(Case which, const QString& message)
    : Error(descriptionOf(which, message), Fault{.code = FaultCode::storeUnavailable}),
      case_(which) {}

DatabaseManager::DatabaseManager(const std::filesystem::path& file, Console& console)
    : file_(file) {
    executeOnQueue([&] { open(console); });
}

void DatabaseManager::open(Console& console) {
    std::error_code ignored; // a missing folder shows as a failed open
    std::filesystem::create_directories(file_.parent_path(), ignored);
    try {
        connection_ =
            std::make_unique<sqlite::Connection>(file_, sqlite::Connection::Mode::readWriteCreate);
    } catch (const sqlite::SqliteError& error) {
        openError_ = error.localizedDescription();
        console.notice(QStringLiteral("[DB] Veritabanı açılamadı: ") + openError_);
        return;
    }
    connection_->setBusyTimeout(busyTimeoutMilliseconds);
    for (const char* sql : {"PRAGMA journal_mode=WAL;", "PRAGMA foreign_keys=ON;",
                            statements::synchronous, statements::cacheSize, statements::schema,
                            statements::partialIndexes, statements::besides})
        tryToExecute(sql);
    if (!hasPlanStatistics() && !tryToExecute(statements::planStatistics))
        tryToExecute("ROLLBACK;"); // they are a matter of speed only
}

/// A file that is no database fails again, with its reason, at the first real statement.
bool DatabaseManager::tryToExecute(const char* sql) {
    try {
        connection_->execute(sql);
        return true;
    } catch (const sqlite::SqliteError&) {
        return false;
    }
}

/// They are part of the file: its first program writes them, the others read them on opening.
bool DatabaseManager::hasPlanStatistics() {
    try {
        return sqlite::Statement(*connection_, statements::hasPlanStatistics).step();
    } catch (const sqlite::SqliteError&) { // the table of statistics is not there yet
        return false;
    }
}

void DatabaseManager::requireUsable() {
    try {
        countPendingRecords();
    } catch (const DBError& error) {
        throw Error(QStringLiteral("Durum veritabanı kullanılamıyor, dosyaya dokunulmadı: %1 (%2)")
                        .arg(pathText(file_), error.localizedDescription()),
                    error.fault());
    }
}

sqlite::Connection& DatabaseManager::connection() {
    if (!connection_)
        throw DBError(DBError::Case::openFailed, openError_);
    return *connection_;
}

void DatabaseManager::insertIfNotExists(const SyncRecord& record) {
    write(statements::insertDiscovered,
          [&](sqlite::Statement& statement) { bindKeyAndType(statement, record); });
}

void DatabaseManager::insertDiscoveredBatch(const RecordSource& next) {
    insertBatch(statements::insertDiscovered, next, bindKeyAndType);
}

void DatabaseManager::insertStagedBatch(const RecordSource& next) {
    insertBatch(statements::insertStaged, next,
                [](sqlite::Statement& statement, const SyncRecord& record) {
                    bindKeyAndType(statement, record);
                    statement.bind(5, record.fileSizeBytes);
                });
}

void DatabaseManager::upsertRecord(const SyncRecord& record) {
    write(statements::upsert, [&](sqlite::Statement& statement) {
        bindKeyAndType(statement, record);
        statement.bind(5, record.sha256Hash);
        statement.bind(6, record.fileSizeBytes);
        statement.bind(7, record.uploadToken);
        statement.bind(8, record.remoteMediaID);
        statement.bind(9, rawValue(record.syncStatus));
        statement.bind(10, record.retryCount);
        statement.bind(11, record.lastError);
    });
}

void DatabaseManager::updateStatus(const QString& identifier, const QString& provider,
                                   const QString& account, SyncStatus status,
                                   const std::optional<QString>& uploadToken,
                                   const std::optional<QString>& remoteMediaID,
                                   const std::optional<QString>& error) {
    write(statements::updateStatus, [&](sqlite::Statement& statement) {
        statement.bind(1, rawValue(status));
        statement.bind(2, uploadToken);
        statement.bind(3, remoteMediaID);
        statement.bind(4, error);
        statement.bind(5, rawValue(status));
        statement.bind(6, identifier);
        statement.bind(7, provider);
        statement.bind(8, account);
    });
}

std::optional<SyncRecord> DatabaseManager::fetchRecord(const QString& identifier,
                                                       const QString& provider,
                                                       const QString& account) {
    auto records = fetchRecords(statements::fetchOne, [&](sqlite::Statement& statement) {
        statement.bind(1, identifier);
        statement.bind(2, provider);
        statement.bind(3, account);
    });
    return records.empty() ? std::nullopt : std::optional(std::move(records.front()));
}

std::optional<SyncStatus> DatabaseManager::fetchStatus(const SyncRecord& record) {
    return executeOnQueue([&]() -> std::optional<SyncStatus> {
        sqlite::Statement statement = prepare(connection(), statements::statusOf);
        statement.bind(1, record.assetLocalIdentifier);
        statement.bind(2, record.providerID);
        statement.bind(3, record.accountID);
        if (!step(statement))
            return std::nullopt;
        return syncStatusFrom(statement.text(0)).value_or(SyncStatus::discovered);
    });
}

void DatabaseManager::limitTo(const std::optional<QStringList>& identifiers) {
    onConnection([&](sqlite::Connection& database) {
        isLimited_ = false;
        database.execute(statements::makeLimit);
        if (!identifiers)
            return;
        sqlite::Statement statement(database, statements::addToLimit);
        for (const QString& identifier : *identifiers) {
            statement.reset();
            statement.bind(1, identifier);
            statement.step();
        }
        isLimited_ = true;
    });
}

void DatabaseManager::extendLimit(const QString& identifier) {
    onConnection([&](sqlite::Connection& database) {
        if (!isLimited_)
            return;
        sqlite::Statement statement(database, statements::addToLimit);
        statement.bind(1, identifier);
        statement.step();
    });
}

const char* DatabaseManager::chosen(const char* sql, const char* limited) const {
    return isLimited_ ? limited : sql;
}

std::vector<SyncRecord> DatabaseManager::fetchPendingRecords(int limit, int skipped) {
    return executeOnQueue([&] {
        return fetchRecords(chosen(statements::fetchPending, statements::fetchPendingLimited),
                            [&](sqlite::Statement& statement) {
                                statement.bind(1, limit);
                                statement.bind(2, skipped);
                            });
    });
}

std::vector<SyncRecord> DatabaseManager::fetchVerifiedForDeletion() {
    return executeOnQueue([&] {
        return fetchRecords(chosen(statements::fetchVerified, statements::fetchVerifiedLimited));
    });
}

int DatabaseManager::countNotVerified() {
    return count(statements::countNotVerified);
}

std::vector<SyncRecord> DatabaseManager::fetchRecordsOfAsset(const QString& identifier) {
    return fetchRecords(statements::fetchOfAsset,
                        [&](sqlite::Statement& statement) { statement.bind(1, identifier); });
}

std::vector<SyncRecord> DatabaseManager::fetchUnfinishedRecords(int limit) {
    return fetchRecords(statements::fetchUnfinished,
                        [&](sqlite::Statement& statement) { statement.bind(1, limit); });
}

std::vector<SyncRecord> DatabaseManager::fetchRecords(SyncStatus status) {
    return fetchRecords(statements::fetchOfStatus,
                        [&](sqlite::Statement& statement) { statement.bind(1, rawValue(status)); });
}

int DatabaseManager::countPendingRecords() {
    return executeOnQueue(
        [&] { return count(chosen(statements::countPending, statements::countPendingLimited)); });
}

int DatabaseManager::countFailedRecords() {
    return count(statements::countFailed);
}

int DatabaseManager::countDateUnresolvedRecords() {
    return count(statements::countDateUnresolved);
}

std::vector<std::pair<SyncStatus, int>> DatabaseManager::countByStatus() {
    return executeOnQueue([&] {
        sqlite::Statement statement = prepare(connection(), statements::countByStatus);
        std::vector<std::pair<SyncStatus, int>> counts;
        while (step(statement))
            if (const auto status = syncStatusFrom(statement.text(0)))
                counts.emplace_back(*status, static_cast<int>(statement.integer(1)));
        return counts;
    });
}

std::vector<std::pair<QString, SyncStatus>> DatabaseManager::fetchStatuses() {
    return executeOnQueue([&] {
        sqlite::Statement statement = prepare(connection(), statements::fetchStatuses);
        std::vector<std::pair<QString, SyncStatus>> result;
        while (step(statement))
            result.emplace_back(statement.text(0),
                                syncStatusFrom(statement.text(1)).value_or(SyncStatus::discovered));
        return result;
    });
}

std::vector<FailedCategorySummary> DatabaseManager::fetchFailedCategorySummaries() {
    return executeOnQueue([&] {
        std::vector<FailureCount> failures;
        std::map<QString, int> known; // of each text, those whose fault is known
        sqlite::Statement byFault = prepare(connection(), statements::failuresByFault);
        while (step(byFault)) {
            failures.push_back({byFault.text(0), static_cast<int>(byFault.integer(1)),
                                faultCodeFrom(byFault.text(2))});
            known[byFault.text(0)] += failures.back().count;
        }
        sqlite::Statement byText = prepare(connection(), statements::failuresByError);
        while (step(byText))
            if (const auto count = static_cast<int>(byText.integer(1)) - known[byText.text(0)];
                count > 0)
                failures.push_back({byText.text(0), count});
        return summarizeFailures(failures);
    });
}

void DatabaseManager::clearPendingRecords() {
    write(statements::clearPending);
}

void DatabaseManager::retryFailedRecords(bool resetRetryCount) {
    write(statements::retryFailed,
          [&](sqlite::Statement& statement) { statement.bind(1, resetRetryCount ? 1 : 0); });
}

void DatabaseManager::retryDateUnresolvedRecords() {
    onConnection(
        [](sqlite::Connection& database) { database.execute(statements::retryDateUnresolved); });
}

void DatabaseManager::write(const char* sql, const Bind& bind) {
    executeOnQueue([&] {
        sqlite::Statement statement = prepare(connection(), sql);
        if (bind)
            bind(statement);
        step(statement);
    });
}

int DatabaseManager::count(const char* sql) {
    return executeOnQueue([&] {
        sqlite::Statement statement = prepare(connection(), sql);
        return step(statement) ? static_cast<int>(statement.integer(0)) : 0;
    });
}

std::vector<SyncRecord> DatabaseManager::fetchRecords(const char* sql, const Bind& bind) {
    return executeOnQueue([&] {
        sqlite::Statement statement = prepare(connection(), sql);
        if (bind)
            bind(statement);
        std::vector<SyncRecord> records;
        while (step(statement))
            records.push_back(readRecord(statement));
        return records;
    });
}

void DatabaseManager::insertBatch(
    const char* sql, const RecordSource& next,
    const std::function<void(sqlite::Statement&, const SyncRecord&)>& bind) {
    transaction([&](sqlite::Connection& database) {
        sqlite::Statement statement = prepare(database, sql);
        while (const auto record = next()) {
            statement.reset();
            bind(statement, *record);
            step(statement);
        }
    });
}

} // namespace quorvane

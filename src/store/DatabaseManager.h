#pragma once

#include "foundation/Console.h"
#include "foundation/SerialQueue.h"
#include "foundation/UserFolders.h"
#include "sqlite/Sqlite.h"
#include "store/SyncRecord.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

namespace quorvane {

/// A statement of the state store that failed; carries SQLite's message.
class DBError : public Error {
  public:
    enum class Case { prepareFailed, stepFailed, openFailed };

    DBError(Case which, const QString& message);
    Case which() const noexcept { return case_; }

  private:
    Case case_;
};

/// The program's only persistent memory of what has been synced: table `sync_records`, one row per
/// asset, provider and account. All operations are synchronous, may be called from any thread (and
/// from inside one another), and throw `DBError`.
class DatabaseManager {
  public:
    /// Opens or creates the file. A file that cannot be opened is reported on the console and left
    /// as it is; every later operation then throws.
    DatabaseManager(const std::filesystem::path& file, Console& console);

    /// Throws `Error` with a plain text when the file is no usable state database. It is left as
    /// it is: nothing is ever deleted or created over it.
    void requireUsable();

    /// Inserts as DISCOVERED; a known asset is left as it is.
    void insertIfNotExists(const SyncRecord& record);

    /// Yields the records of a batch one by one, so that nobody has to hold all; none at the end.
    using RecordSource = std::function<std::optional<SyncRecord>()>;

    /// All or nothing; known assets are left as they are.
    void insertDiscoveredBatch(const RecordSource& next);
    void insertStagedBatch(const RecordSource& next);

    /// Writes every field except the time stamps.
    void upsertRecord(const SyncRecord& record);

    /// An absent token or remote id keeps the stored one; an absent error clears the stored one.
    /// FAILED raises the retry count by one.
    void updateStatus(const QString& identifier, const QString& provider, const QString& account,
                      SyncStatus status, const std::optional<QString>& uploadToken = {},
                      const std::optional<QString>& remoteMediaID = {},
                      const std::optional<QString>& error = {});

    /// The record as it is stored now; none when it is gone.
    std::optional<SyncRecord> fetchRecord(const QString& identifier,
                                          const QString& provider = googlePhotosProvider,
                                          const QString& account = pendingAccount);

    /// Only its status; none when it is gone.
    std::optional<SyncStatus> fetchStatus(const SyncRecord& record);

    /// What is pending, or may be deleted, is from now on told of these assets only; none takes the
    /// limit away. It holds for this object, not for the file.
    void limitTo(const std::optional<QStringList>& identifiers);
    /// One more; without a limit nothing happens.
    void extendLimit(const QString& identifier);

    /// DISCOVERED and STAGED records, oldest first, without the first `skipped` of them.
    std::vector<SyncRecord> fetchPendingRecords(int limit, int skipped = 0);

    /// VERIFIED records with a remote id, least recently changed first.
    std::vector<SyncRecord> fetchVerifiedForDeletion();
    /// The assets that have another record than such, save EXCLUDED ones and those already deleted.
    int countNotVerified();

    /// All records of one asset, whatever their status.
    std::vector<SyncRecord> fetchRecordsOfAsset(const QString& identifier);

    /// In no order.
    std::vector<SyncRecord> fetchRecords(SyncStatus status);

    int countPendingRecords();
    int countFailedRecords();
    int countDateUnresolvedRecords();

    /// How many records there are of each status; absent means none.
    std::vector<std::pair<SyncStatus, int>> countByStatus();

    /// FAILED and DATE_UNRESOLVED records with their reasons, most recently changed first.
    std::vector<SyncRecord> fetchUnfinishedRecords(int limit);

    /// Every record's identifier and status.
    std::vector<std::pair<QString, SyncStatus>> fetchStatuses();

    std::vector<FailedCategorySummary> fetchFailedCategorySummaries();

    void clearPendingRecords();
    void retryFailedRecords(bool resetRetryCount);
    void retryDateUnresolvedRecords();

    /// Runs `work(connection)` on the queue. SQLite's failures become `DBError`.
    template <typename Work>
    auto onConnection(Work&& work) {
        return executeOnQueue([&] {
            try {
                return work(connection());
            } catch (const sqlite::SqliteError& error) {
                throw DBError(DBError::Case::stepFailed, error.localizedDescription());
            }
        });
    }

    /// The same with nobody else writing in between, in any process; what it throws takes all of it
    /// back. Inside another one it is a part of that.
    template <typename Work>
    auto transaction(Work&& work) {
        return onConnection([&](sqlite::Connection& database) {
            sqlite::Transaction transaction(database);
            if constexpr (std::is_void_v<decltype(work(database))>) {
                work(database);
                transaction.commit();
            } else {
                auto result = work(database);
                transaction.commit();
                return result;
            }
        });
    }

  private:
    using Bind = std::function<void(sqlite::Statement&)>;

    template <typename Work>
    decltype(auto) executeOnQueue(Work&& work) {
        return queue_.sync(std::forward<Work>(work));
    }

    void open(Console& console);
    bool tryToExecute(const char* sql);
    bool hasPlanStatistics();
    sqlite::Connection& connection();
    void write(const char* sql, const Bind& bind = {});
    int count(const char* sql);
    std::vector<SyncRecord> fetchRecords(const char* sql, const Bind& bind = {});
    /// `limited` where `limitTo` is in force.
    const char* chosen(const char* sql, const char* limited) const;
    void insertBatch(const char* sql, const RecordSource& next,
                     const std::function<void(sqlite::Statement&, const SyncRecord&)>& bind);

    SerialQueue queue_{QStringLiteral("com.quorvane.db")};
    const std::filesystem::path file_;
    std::unique_ptr<sqlite::Connection> connection_;
    QString openError_;
    bool isLimited_ = false; ///< on the queue
};

} // namespace quorvane

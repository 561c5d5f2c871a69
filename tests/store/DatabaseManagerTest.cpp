#include "store/DatabaseManager.h"

#include "store/KnownAssets.h"
#include "store/Statements.h"
#include "support/Failures.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

SyncRecord recordOf(const QString& identifier) {
    SyncRecord record;
    record.assetLocalIdentifier = identifier;
    return record;
}

class DatabaseManagerTest : public testing::Test {
  protected:
    /// Through a connection of its own, as another program would.
    void execute(const char* sql) {
        sqlite::Connection other(file, sqlite::Connection::Mode::readWriteCreate);
        other.setBusyTimeout(5000);
        other.execute(sql);
    }
    /// The last row's text in a column; a plan ends with its sorting, if there is any.
    QString value(const char* sql, int column = 0) {
        sqlite::Connection other(file, sqlite::Connection::Mode::readOnly);
        sqlite::Statement statement(other, sql);
        QString last = QStringLiteral("none");
        while (statement.step())
            last = statement.optionalText(column).value_or(QStringLiteral("NULL"));
        return last;
    }
    void setStatus(const QString& identifier, SyncStatus status,
                   const std::optional<QString>& token = {},
                   const std::optional<QString>& remote = {},
                   const std::optional<QString>& error = {}) {
        db.updateStatus(identifier, googlePhotosProvider, pendingAccount, status, token, remote,
                        error);
    }

    test::TemporaryFolder folder;
    std::filesystem::path file = folder / "a/b/quorvane.sqlite";
    Console console{Console::Channel::silent};
    DatabaseManager db{file, console};
};

TEST_F(DatabaseManagerTest, aBatchIsAllOrNothing) {
    execute("CREATE TRIGGER refuse BEFORE INSERT ON sync_records WHEN NEW.asset_local_identifier "
            "= 'fifth' BEGIN SELECT RAISE(FAIL, 'refused'); END");
    std::vector<SyncRecord> batch;
    for (const char* name : {"1", "2", "3", "4", "fifth", "6"})
        batch.push_back(recordOf(QString::fromLatin1(name)));
    EXPECT_EQ(test::messageOf([&] { db.insertDiscoveredBatch(test::batchOf(batch)); }),
              QStringLiteral("[DB] Step failed: refused"));
    EXPECT_EQ(db.countPendingRecords(), 0);
    db.insertDiscoveredBatch(
        test::batchOf({recordOf(QStringLiteral("later"))})); // no transaction is left open
    EXPECT_EQ(db.countPendingRecords(), 1);
}

TEST_F(DatabaseManagerTest, pendingRecordsComeOldestFirstWithinTheLimit) {
    db.insertDiscoveredBatch(
        test::batchOf({recordOf(QStringLiteral("new")), recordOf(QStringLiteral("old")),
                       recordOf(QStringLiteral("done"))}));
    execute("UPDATE sync_records SET created_at = '2001-01-01 00:00:00' WHERE "
            "asset_local_identifier = 'old'");
    setStatus(QStringLiteral("old"), SyncStatus::staged);
    setStatus(QStringLiteral("done"), SyncStatus::verified);
    const auto pending = db.fetchPendingRecords(10);
    ASSERT_EQ(pending.size(), 2U);
    EXPECT_EQ(pending[0].assetLocalIdentifier, QStringLiteral("old"));
    EXPECT_EQ(pending[0].createdAt, Date(std::chrono::seconds(978307200)));
    EXPECT_EQ(db.fetchPendingRecords(1).size(), 1U);
    EXPECT_EQ(db.fetchPendingRecords(10, 1).at(0).assetLocalIdentifier, QStringLiteral("new"));
}

TEST_F(DatabaseManagerTest, readsLeniently) {
    execute("INSERT INTO sync_records (asset_local_identifier, provider_id, account_id, "
            "media_type, sync_status, created_at, file_size_bytes) VALUES ('a', 'p', 'q', "
            "'hologram', 'DISCOVERED', 'yesterday', 5000000000)");
    const auto records = db.fetchPendingRecords(5);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].mediaType, MediaType::photo);
    EXPECT_EQ(records[0].fileSizeBytes, 5'000'000'000);
    EXPECT_EQ(records[0].sha256Hash, std::nullopt);
    EXPECT_GT(records[0].createdAt, Date(std::chrono::seconds(1'700'000'000)));
}

TEST_F(DatabaseManagerTest, tellsWhichAssetsAreKnownWhateverTheirIdentifiersLookLike) {
    const QString uuid = QStringLiteral("3DD2C897-F19E-4CA6-8C22-B027D5A71907/L0/001");
    const QStringList known{QStringLiteral("ş"), uuid, QStringLiteral("A/L0/001"),
                            QString(uuid).replace(u'3', u'0'),
                            QStringLiteral("00000000-0000-0000-0000-000000000000/L0/001")};
    std::vector<AssetIdentifier> asked{uuid.toLower(), uuid, QString(uuid).replace(u'3', u'F'),
                                       uuid};
    std::vector<bool> expected{false, true, false, true};
    for (const QString& text : known) {
        db.insertIfNotExists(recordOf(text));
        asked.emplace_back(text);
        expected.push_back(true);
        EXPECT_EQ(asked.back().text(), text);
    }
    std::vector<const AssetIdentifier*> pointers;
    for (const AssetIdentifier& identifier : asked)
        pointers.push_back(&identifier);
    EXPECT_EQ(areKnown(pointers, db), expected);
}

TEST_F(DatabaseManagerTest, asksForAFewOfVeryManyRecordsWithoutSortingThemAll) {
    for (const char* sql :
         {statements::fetchPending, statements::fetchUnfinished, statements::fetchVerified,
          statements::failuresByError, statements::countPending, statements::countFailed,
          statements::countDateUnresolved, statements::countByStatus, statements::updateStatus}) {
        const QString plan = value((std::string("EXPLAIN QUERY PLAN ") + sql).c_str(), 3);
        EXPECT_TRUE(plan.contains(u"INDEX ")) << sql << ": " << plan.toStdString();
    }
}

} // namespace
} // namespace quorvane

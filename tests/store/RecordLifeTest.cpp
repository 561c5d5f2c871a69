#include "store/RecordLife.h"

#include "store/RecordAbsences.h"
#include "store/StateFacts.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

const RecordSource source{u"ab"_s, {1, 2, 3, 4}};

struct Operation {
    std::string_view name;
    std::function<bool(RecordLife&, const SyncRecord&)> run;
    std::function<void(SyncRecord&)> change; ///< of the stored record, beside its status
};

void nothing(SyncRecord&) {}
void otherBytes(SyncRecord& record) {
    record.sha256Hash = u"new"_s;
    record.fileSizeBytes = 9;
    record.uploadToken.reset();
}
void clearError(SyncRecord& record) {
    record.lastError.reset();
}
void setReason(SyncRecord& record) {
    record.lastError = u"reason"_s;
}
void countFailure(SyncRecord& record) {
    setReason(record);
    ++record.retryCount;
}
void setRemote(SyncRecord& record) {
    clearError(record);
    record.remoteMediaID = u"R"_s;
}

/// An operation that speaks of all records and answers nothing.
template <typename Call>
auto onAll(SyncStatus status, Call call) {
    return [=](RecordLife& life, const SyncRecord& record) {
        call(life);
        return record.syncStatus == status;
    };
}

const std::vector<Operation> operations{
    {"staged", [](auto& life, auto& record) { return life.staged(record, source); }, otherBytes},
    {"stageFailed", [](auto& life, auto& record) { return life.stageFailed(record, u"reason"_s); },
     countFailure},
    {"redated", [](auto& life, auto& record) { return life.redated(record); }, otherBytes},
    {"requeued", [](auto& life, auto& record) { return life.requeued(record); }, clearError},
    {"heldBack",
     [](auto& life, auto& record) {
         return life.heldBack(record, u"reason"_s, RecordLife::Want::undatable);
     },
     setReason},
    {"refused", [](auto& life, auto& record) { return life.refused(record, u"reason"_s); },
     countFailure},
    {"relieved", [](auto& life, auto& record) { return life.relieved(record); }, clearError},
    {"created", [](auto& life, auto& record) { return life.created(record, u"T"_s, u"R"_s); },
     [](SyncRecord& record) {
         setRemote(record);
         record.uploadToken = u"T"_s;
     }},
    {"recognised", [](auto& life, auto& record) { return life.recognised(record, source, u"R"_s); },
     setRemote},
    {"superseded", [](auto& life, auto& record) { return life.superseded(record, u"reason"_s); },
     setReason},
    {"absent", [](auto& life, auto& record) { return life.absent(record, u"code"_s, u"reason"_s); },
     setReason},
    {"returned", [](auto& life, auto& record) { return life.returned(record); }, clearError},
    {"deleting", [](auto& life, auto& record) { return life.deleting(record); }, nothing},
    {"deleted", [](auto& life, auto& record) { return life.deleted(record); }, clearError},
    {"retried", [](auto& life, auto& record) { return life.retried(record); },
     [](SyncRecord& record) {
         clearError(record);
         record.retryCount = 0;
     }},
    {"retriedFailed", onAll(SyncStatus::failed, [](auto& life) { life.retriedFailed(false); }),
     clearError},
    {"retriedUndated", onAll(SyncStatus::dateUnresolved, [](auto& life) { life.retriedUndated(); }),
     clearError},
    {"dateChosen",
     [](auto& life, auto& record) { return life.dateChosen(record, Date(std::chrono::days(9))); },
     clearError},
    {"undatableReleased", [](auto& life, auto&) { return life.undatableReleased() == 1; },
     clearError},
};

SyncRecord recordWith(SyncStatus status) {
    SyncRecord record;
    record.assetLocalIdentifier = u"a"_s;
    record.sha256Hash = u"old"_s;
    record.fileSizeBytes = 3;
    record.uploadToken = u"t"_s;
    record.remoteMediaID = u"r"_s;
    record.syncStatus = status;
    record.retryCount = 2;
    record.lastError = u"e"_s;
    return record;
}

QStringList shown(const SyncRecord& record) {
    return {rawValue(record.syncStatus),
            record.sha256Hash.value_or(u"-"_s),
            QString::number(record.fileSizeBytes.value_or(-1)),
            record.uploadToken.value_or(u"-"_s),
            record.remoteMediaID.value_or(u"-"_s),
            QString::number(record.retryCount),
            record.lastError.value_or(u"-"_s)};
}

class RecordLifeTest : public testing::Test {
  protected:
    std::string whatIsRemembered() {
        const auto choice = dates.choiceOf(u"a"_s);
        return QStringList{life.left().join(u','),
                           QString::number(life.unfinishedDeletions().size()),
                           life.sourceOf(u"a"_s).value_or(RecordSource()).sha256,
                           StateFacts(db).account().email,
                           choice ? describe(choice->date.value_or(Date())) : QString(),
                           QString::number(RecordAbsences(db).counts().size())}
            .join(u'|')
            .toStdString();
    }

    TemporaryFolder folder;
    Console console{Console::Channel::silent};
    DatabaseManager db{folder / "quorvane.sqlite", console};
    RecordLife life{db, {u"1"_s, u"me"_s}};
    RecordDates dates{db};
};

} // namespace

TEST_F(RecordLifeTest, EveryArrowIsFollowedFromItsStatusesOnly) {
    dates.setUndatable(u"a"_s, true);
    ASSERT_EQ(RecordLife::arrows().size(), operations.size());
    for (const Operation& operation : operations) {
        const auto arrow =
            std::ranges::find(RecordLife::arrows(), operation.name, &RecordLife::Arrow::name);
        ASSERT_NE(arrow, RecordLife::arrows().end()) << operation.name;
        SyncRecord told = recordWith(SyncStatus::discovered);
        otherBytes(told);
        told.uploadToken = u"t"_s;
        for (const SyncStatus status : allSyncStatuses) {
            SCOPED_TRACE(std::string(operation.name) + " from " + rawValue(status).toStdString());
            SyncRecord stored = recordWith(status);
            db.upsertRecord(stored);
            const std::string before = whatIsRemembered();
            const bool isAllowed = std::ranges::find(arrow->from, status) != arrow->from.end();
            told.syncStatus = status;
            EXPECT_EQ(operation.run(life, told), isAllowed);
            if (isAllowed) {
                operation.change(stored);
                stored.syncStatus = arrow->to;
            } else {
                EXPECT_EQ(whatIsRemembered(), before);
            }
            const SyncRecord now = db.fetchRecord(u"a"_s).value();
            EXPECT_EQ(shown(now).join(u' ').toStdString(), shown(stored).join(u' ').toStdString());
            life.kept(stored); // as if nothing had begun
            db.onConnection(
                [](auto& database) { database.execute("DELETE FROM record_absences"); });
        }
        db.onConnection([](sqlite::Connection& database) {
            database.execute("DELETE FROM sync_records; DELETE FROM record_sources;"
                             "DELETE FROM record_leavings; DELETE FROM state_facts;"
                             "DELETE FROM record_choices;");
        });
        operation.run(life, told);
        EXPECT_FALSE(db.fetchRecord(u"a"_s)) << operation.name << " of a record that is gone";
        EXPECT_EQ(whatIsRemembered(), "|0||||0");
    }
}

TEST_F(RecordLifeTest, RemembersWhatGoesBesideAStatus) {
    db.upsertRecord(recordWith(SyncStatus::discovered));
    const SyncRecord record = recordWith(SyncStatus::discovered);
    life.exporting(record, {u"first"_s, {}});
    ASSERT_TRUE(life.staged(record, std::nullopt));
    EXPECT_EQ(life.sourceOf(u"a"_s)->sha256, u"first"_s) << "nothing better is known";
    ASSERT_TRUE(life.requeued(record));
    ASSERT_TRUE(life.staged(record, source));
    EXPECT_EQ(life.sourceOf(u"a"_s), source);

    ASSERT_TRUE(life.created(record, u"T"_s, u"R"_s));
    RecordLife(db, {u"2"_s, u"other"_s}).recognised(record, source, u"R"_s);
    EXPECT_EQ(StateFacts(db).account(), life.account()) << "the first account binds";

    ASSERT_TRUE(life.deleting(record));
    EXPECT_EQ(RecordLife(db).unfinishedDeletions().size(), 1U) << "a new process knows";
    ASSERT_TRUE(life.deleted(record));
    EXPECT_TRUE(life.unfinishedDeletions().empty());
}

TEST_F(RecordLifeTest, AnAccountIsItsUserIdElseItsEmail) {
    const struct {
        AccountIdentity one, other;
        bool isSame;
    } cases[] = {
        {{u"1"_s, u"a"_s}, {u"1"_s, u"b"_s}, true},
        {{u"1"_s, u"a"_s}, {u"2"_s, u"a"_s}, false},
        {{{}, u"a"_s}, {u"2"_s, u"a"_s}, true},
        {{{}, u"a"_s}, {{}, u"b"_s}, false},
        {{}, {}, false},
        {{u"1"_s, {}}, {{}, u"a"_s}, false},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(each.one.isSameAs(each.other), each.isSame);
        EXPECT_EQ(each.other.isSameAs(each.one), each.isSame);
    }
    StateFacts facts(db);
    facts.bindAccount({{}, u"a"_s});
    facts.bindAccount({u"9"_s, u"b"_s});
    EXPECT_EQ(facts.account(), (AccountIdentity{{}, u"a"_s}));
    facts.bindAccount({u"1"_s, u"a"_s});
    EXPECT_EQ(facts.account(), (AccountIdentity{u"1"_s, u"a"_s})) << "the id comes later";
}

TEST_F(RecordLifeTest, WhatLeavesTheQueueIsRememberedUntilItsFileIsDiscarded) {
    const struct {
        const char* name;
        SyncStatus status;
        bool isHashed, hasSource, isLeft;
    } cases[] = {
        {"staged", SyncStatus::staged, true, true, true},
        {"recovered", SyncStatus::staged, false, false, true},
        {"came back", SyncStatus::discovered, true, true, true},
        {"cut short", SyncStatus::discovered, false, true, true},
        {"new", SyncStatus::discovered, false, false, false},
        {"sent", SyncStatus::verified, true, true, false},
        {"refused", SyncStatus::failed, true, true, false},
    };
    QStringList expected;
    for (const auto& each : cases) {
        SyncRecord record = recordWith(each.status);
        record.assetLocalIdentifier = QString::fromLatin1(each.name);
        if (!each.isHashed)
            record.sha256Hash.reset();
        db.upsertRecord(record);
        if (each.hasSource)
            life.exporting(record, source);
        if (each.isLeft)
            expected += record.assetLocalIdentifier;
    }
    life.cleared();
    EXPECT_EQ(db.countPendingRecords(), 0);
    EXPECT_EQ(db.fetchStatuses().size(), 2U);
    QStringList left = RecordLife(db).left();
    EXPECT_EQ(QSet(left.begin(), left.end()), QSet(expected.begin(), expected.end()));
    life.discarded(u"staged"_s);
    EXPECT_EQ(life.left().size(), expected.size() - 1);
    EXPECT_ANY_THROW(db.transaction([&](sqlite::Connection&) {
        life.superseded(db.fetchRecord(u"refused"_s).value(), u"reason"_s);
        throw Error(u"the scan died"_s);
    }));
    EXPECT_EQ(life.left().size(), expected.size() - 1) << "it did not leave after all";
}

} // namespace quorvane::test

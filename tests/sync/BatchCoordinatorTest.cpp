#include "sync/BatchCoordinator.h"

#include "store/DatabaseManager.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Outcome = NewItemResult::Outcome;

NewItemResult made(const NewItem& item) {
    return {Outcome::created, u"m-"_s + item.uploadToken};
}

/// Answers as a test says; asked for one request at a time.
struct FakeDestination final : Destination {
    std::function<NewItemResult(const NewItem&, const std::stop_token&)> answer =
        [](const NewItem& item, const std::stop_token&) { return made(item); };
    std::function<void()> makeAlbum;
    std::vector<QStringList> batches; ///< the tokens of each request

    std::vector<NewItemResult> create(const std::vector<NewItem>& items,
                                      std::stop_token stop) override {
        QStringList& tokens = batches.emplace_back();
        std::vector<NewItemResult> results;
        for (const NewItem& item : items) {
            tokens.append(item.uploadToken);
            results.push_back(answer(item, stop));
        }
        return results;
    }
    bool makeNextAlbum(std::stop_token) override {
        makeAlbum();
        return true;
    }
    bool hasTargetAlbum() const override { return true; }
    QString upload(const UploadSource&, UploadMemory&, const Progress&, std::stop_token) override {
        return {};
    }
    std::optional<std::set<QString>> existing(const QStringList&, std::stop_token) override {
        return std::nullopt;
    }
};

struct Batches : testing::Test {
    test::TemporaryFolder folder;
    FakeDestination destination;
    test::RecordingLog log;
    test::FakeClock clock;
    Console console;
    Preferences preferences{folder / "preferences.json"};
    DatabaseManager database{folder / "quorvane.sqlite", console};
    RecordLife life{database};
    UploadTokens tokens{database, clock};
    test::FakeClock worldClock;
    DailyRequests requests{{}, worldClock};
    Attempts attempts{worldClock, requests};
    std::optional<BatchCoordinator> coordinator;

    Batches() {
        worldClock.skipSleeps(true);
        coordinator.emplace(BatchCoordinator::Services{destination, life, tokens, attempts,
                                                       preferences, log, console, clock});
    }

    /// Records "0", "1"... with tokens "t0", "t1"... named "0.jpg", "1.jpg"...
    void enqueue(int from, int to, const std::stop_token& stop = {}) {
        for (int i = from; i < to; ++i) {
            SyncRecord record;
            record.assetLocalIdentifier = QString::number(i);
            record.syncStatus = SyncStatus::staged;
            database.upsertRecord(record);
            coordinator->enqueue({u't' + QString::number(i), QString::number(i) + u".jpg"_s},
                                 record, stop);
        }
    }

    /// The status of record `number`, with its remote id or its error.
    QString state(int number) {
        const SyncRecord record = database.fetchRecordsOfAsset(QString::number(number)).at(0);
        return QString(rawValue(record.syncStatus) + u' ' +
                       record.remoteMediaID.value_or(record.lastError.value_or(QString())))
            .trimmed();
    }

    void waitForTimer(std::size_t number) {
        ASSERT_TRUE(test::waitOnMainThread([&] { return clock.sleeps().size() == number; }));
    }

    std::size_t verified() { return database.fetchVerifiedForDeletion().size(); }
    int staged() { return database.countPendingRecords(); }
};

} // namespace

TEST_F(Batches, TheOldestEntryWaitsThirtySeconds) {
    enqueue(0, 1);
    waitForTimer(1);
    clock.advance(20s);
    enqueue(1, 24);
    clock.advance(9'999ms);
    EXPECT_TRUE(destination.batches.empty());
    clock.advance(1ms);
    ASSERT_TRUE(test::waitOnMainThread([&] { return verified() == 24; }));
    EXPECT_EQ(destination.batches.size(), 1U);

    enqueue(24, 25); // the next entry starts a timer of its own, and a flush ends it
    waitForTimer(2);
    coordinator->flush();
    enqueue(25, 26);
    waitForTimer(3);
    EXPECT_EQ(clock.sleeps(), (std::vector<std::chrono::milliseconds>{30s, 30s, 30s}));
    coordinator.reset();
    EXPECT_EQ(state(25), u"STAGED"_s);
}

TEST_F(Batches, EachResultDecidesItsOwnRecord) {
    const struct {
        NewItemResult result;
        QString state, log;
    } rows[] = {
        {{Outcome::created, u"m"_s}, u"VERIFIED m"_s, u"[Batch] VERIFIED: 0.jpg -> m"_s},
        {{Outcome::alreadyExists}, u"VERIFIED"_s, u"-> hedefte zaten vardı"_s},
        {{Outcome::refused, {}, u"neden"_s, u"code 3"_s},
         u"FAILED neden"_s,
         u"[Batch] FAILED: 0.jpg -> code 3"_s},
        {{Outcome::heldBack}, u"STAGED"_s, u"albüm sınırı (20.000 medya) doldu!"_s},
    };
    for (const auto& row : rows) {
        destination.answer = [&](const NewItem&, const std::stop_token&) { return row.result; };
        enqueue(0, 1);
        coordinator->flush();
        EXPECT_EQ(state(0), row.state);
        EXPECT_TRUE(log.contains(row.log)) << row.log.toStdString();
        EXPECT_EQ(verified(), row.state == u"VERIFIED m"_s ? 1U : 0U);
        EXPECT_EQ(coordinator->takeAlreadyExisting(), row.state == u"VERIFIED"_s ? 1 : 0);
    }
}

TEST_F(Batches, AFailedRequestFailsItsRecordsAndAStopLeavesThemStaged) {
    std::stop_source stop;
    const QString kept = u"[Batch] İptal algılandı, batch öğeleri STAGED olarak korunuyor"_s;
    const std::vector<std::tuple<std::function<void()>, QString, QString>> rows{
        {[] { throw Error(u"HTTP 401"_s); }, u"FAILED HTTP 401"_s,
         u"[Batch] Flush hatasi: HTTP 401"_s},
        {[] { throw Cancelled(); }, u"STAGED"_s, kept},
        {[] { throw Error(u"Request Cancelled"_s); }, u"STAGED"_s, kept},
        {[&] {
             stop.request_stop();
             throw Error(u"HTTP 401"_s);
         },
         u"STAGED"_s, kept},
        {[] {}, u"STAGED"_s, kept}, // stopped before it began
    };
    for (const auto& [fault, expected, message] : rows) {
        destination.answer = [&, &fault = fault](const NewItem& item, const std::stop_token&) {
            fault();
            return made(item);
        };
        enqueue(0, 2, stop.get_token());
        coordinator->flush();
        EXPECT_EQ(state(0), expected);
        EXPECT_EQ(state(1), expected);
        EXPECT_EQ(log.messages().back(), message);
    }
    EXPECT_EQ(destination.batches.size(), 4U);
}

TEST_F(Batches, TheWorldsFaultsCostNoRecordAndARefusedTokenOnce) {
    const auto refusal = [](FaultCode code) {
        return NewItemResult{Outcome::refused, {}, u"neden"_s, u"code"_s, Fault{code}};
    };
    const std::vector<std::pair<std::vector<std::function<NewItemResult()>>, QString>> rows{
        {{[]() -> NewItemResult { throw Error(u"HTTP 503"_s, Fault{FaultCode::serviceBusy}); },
          []() -> NewItemResult { throw Error(u"HTTP 429"_s, Fault{FaultCode::rateLimited}); },
          [&] { return refusal(FaultCode::serviceBusy); }},
         u"VERIFIED m-t0"_s},
        {{[&] { return refusal(FaultCode::tokenRefused); }}, u"STAGED"_s},
        {{[&] { return refusal(FaultCode::tokenRefused); }}, u"FAILED neden"_s},
        {{[]() -> NewItemResult { throw Error(u"HTTP 401"_s, Fault{FaultCode::sessionEnded}); }},
         u"FAILED HTTP 401"_s},
        {{[&] { return refusal(FaultCode::storageFull); }}, u"STAGED"_s},
    };
    for (const auto& [answers, expected] : rows) {
        attempts.begin(World::endless);
        std::size_t next = 0;
        destination.answer = [&, &answers = answers](const NewItem& item, const std::stop_token&) {
            return next < answers.size() ? answers[next++]() : made(item);
        };
        enqueue(0, 1);
        coordinator->flush();
        EXPECT_EQ(state(0), expected);
        EXPECT_EQ(next, answers.size());
    }
}

TEST_F(Batches, ARecordThatCannotBeMarkedCostsNoOtherRecord) {
    enqueue(0, 4);
    sqlite::Connection(folder / "quorvane.sqlite", sqlite::Connection::Mode::readWriteCreate)
        .execute("CREATE TRIGGER refuse BEFORE UPDATE ON sync_records "
                 "WHEN NEW.asset_local_identifier = '1' "
                 "BEGIN SELECT RAISE(FAIL, 'disk dolu'); END;");
    database.updateStatus(u"2"_s, googlePhotosProvider, pendingAccount, SyncStatus::excluded);
    coordinator->flush();
    EXPECT_EQ(state(0), u"VERIFIED m-t0"_s);
    EXPECT_EQ(state(1), u"STAGED"_s);
    EXPECT_EQ(state(2), u"EXCLUDED"_s);
    EXPECT_EQ(state(3), u"VERIFIED m-t3"_s);
    EXPECT_TRUE(log.contains(u"Kayıt bu arada değişti, sonuç yazılmadı (VERIFIED): 2"_s));
    EXPECT_TRUE(coordinator->takeStoreRefusal().value().contains(u"disk dolu"_s));
    EXPECT_FALSE(coordinator->takeStoreRefusal());
}

TEST_F(Batches, AFullAlbumStopsTheRunOrRollsOverAsTheSettingsSay) {
    const struct {
        bool autoRollover, canMakeAlbums, newAlbumIsFull;
        std::size_t verified, requests;
    } rows[] = {
        {true, true, false, 3, 2},
        {true, true, true, 1, 2},
        {true, false, false, 1, 1},
        {false, true, false, 1, 1},
    };
    int notifications = 0;
    const Subscription subscription = coordinator->googlePhotosAlbumLimitReached.subscribe(
        [&](const AlbumLimitReached&) { ++notifications; });
    for (const auto& row : rows) {
        preferences.setBoolean(preferenceKeys::autoRolloverOnLimit, row.autoRollover);
        int told = 0;
        bool isNew = false;
        coordinator->onAlbumFull = [&] { ++told; };
        destination.makeAlbum = [&] {
            isNew = row.canMakeAlbums ? true : throw Error(u"albüm yok"_s);
        };
        destination.answer = [&](const NewItem& item, const std::stop_token&) {
            const bool hasRoom = item.uploadToken == u"t1" || (isNew && !row.newAlbumIsFull);
            return hasRoom ? made(item) : NewItemResult{Outcome::heldBack};
        };
        destination.batches.clear();
        enqueue(0, 3);
        coordinator->flush();
        EXPECT_EQ(told, row.verified == 3 ? 0 : 1);
        EXPECT_EQ(verified(), row.verified);
        EXPECT_EQ(staged(), 3 - static_cast<int>(row.verified));
        EXPECT_EQ(destination.batches.size(), row.requests);
    }
    EXPECT_TRUE(test::waitOnMainThread([&] { return notifications == 3; }));
}

TEST_F(Batches, AStopOrTheEndReachesATimedFlushUnderWay) {
    std::stop_source run;
    std::atomic<int> onTheNetwork = 0;
    destination.answer = [&](const NewItem&, const std::stop_token& stop) -> NewItemResult {
        ++onTheNetwork;
        SystemClock().sleep(1min, stop);
        throw Cancelled();
    };
    const auto reachTheNetwork = [&](std::size_t times) {
        enqueue(0, 1, run.get_token());
        waitForTimer(times);
        clock.advance(30s);
        ASSERT_TRUE(test::waitOnMainThread([&] { return onTheNetwork == int(times); }));
    };
    const auto start = SystemClock().monotonic();
    reachTheNetwork(1);
    run.request_stop();
    ASSERT_TRUE(test::waitOnMainThread([&] { return log.messages().size() == 1; }));
    run = {};
    reachTheNetwork(2);
    coordinator.reset();
    EXPECT_EQ(log.messages().size(), 2);
    EXPECT_EQ(staged(), 1);
    EXPECT_LT(SystemClock().monotonic() - start, 20s);
}

} // namespace quorvane

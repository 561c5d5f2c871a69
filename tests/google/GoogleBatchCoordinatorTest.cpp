#include "google/GoogleBatchCoordinator.h"

#include "google/RecordStates.h"
#include "google/ScriptedHttp.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <latch>
#include <map>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;

using namespace std::chrono_literals;

QStringList tokensOf(const HttpRequest& request) {
    QStringList tokens;
    for (const QJsonValue& item : test::jsonOf(request.body)[u"newMediaItems"].toArray())
        tokens.append(item[u"simpleMediaItem"][u"uploadToken"].toString());
    return tokens;
}

QJsonObject made(const QString& token) {
    return {{u"uploadToken"_s, token},
            {u"status"_s, QJsonObject{{u"message"_s, u"Success"_s}}},
            {u"mediaItem"_s, QJsonObject{{u"id"_s, u"m-"_s + token}}}};
}

QJsonObject heldBack() {
    return {{u"status"_s, QJsonObject{{u"message"_s, u"ERR_PHOTO_PER_ALBUM_LIMIT"_s}}}};
}

HttpResponse resultsFor(const HttpRequest& request,
                        const std::function<QJsonObject(const QString& token)>& resultOf) {
    QJsonArray results;
    for (const QString& token : tokensOf(request))
        results.append(resultOf(token));
    return {200, QJsonDocument(QJsonObject{{u"newMediaItemResults"_s, results}}).toJson()};
}

struct Batches : testing::Test {
    test::TemporaryFolder folder;
    test::ScriptedHttp http;
    test::FixedToken tokens;
    test::RecordingLog log;
    test::FakeClock clock;
    Console console;
    Preferences preferences{folder / "preferences.json"};
    DatabaseManager database{folder / "quorvane.sqlite", console};
    GoogleAlbumManager albums{http, tokens, preferences, log, test::loopbackEndpoints()};
    std::optional<GoogleBatchCoordinator> coordinator;
    int stops = 0;
    int notifications = 0;
    Subscription subscription;

    Batches() {
        coordinator.emplace(http, tokens, albums, database, preferences, log, console, clock,
                            test::loopbackEndpoints());
        coordinator->onStopAtLimit = [this] { ++stops; };
        subscription = coordinator->googlePhotosAlbumLimitReached.subscribe(
            [this](const AlbumLimitReached&) { ++notifications; });
        http.answer = [](const HttpRequest& request, const std::stop_token&) {
            return resultsFor(request, made);
        };
    }

    /// Records "0", "1"... with tokens "t0", "t1"... named "0.jpg", "1.jpg"...
    void enqueue(int from, int to, const std::stop_token& stop = {}) {
        for (int i = from; i < to; ++i) {
            const SyncRecord record = test::stagedRecord(QString::number(i));
            database.upsertRecord(record);
            coordinator->enqueue(u't' + QString::number(i), record, QString::number(i) + u".jpg"_s,
                                 stop);
        }
    }

    std::map<QString, QString> states() { return test::recordStates(database); }

    std::size_t verified() { return database.fetchVerifiedForDeletion().size(); }
    int staged() { return database.countPendingRecords(); }

    std::string flushAndCapture() {
        testing::internal::CaptureStdout();
        coordinator->flush({});
        return testing::internal::GetCapturedStdout();
    }
};

} // namespace

TEST_F(Batches, The25thEntrySendsThemAll) {
    enqueue(0, 24);
    EXPECT_TRUE(http.requests().empty());
    EXPECT_EQ(coordinator->bufferedCount(), 24U);
    enqueue(24, 25);
    EXPECT_EQ(coordinator->bufferedCount(), 0U);
    ASSERT_EQ(http.requests().size(), 1U);
    EXPECT_EQ(http.requests()[0].timeout, 60s);
    EXPECT_EQ(verified(), 25U);
    EXPECT_EQ(states().at(u"7"_s), u"VERIFIED m-t7"_s);
    EXPECT_EQ(database.fetchVerifiedForDeletion().at(0).uploadToken, u"t0"_s);
}

TEST_F(Batches, NothingUnknownIsSent) {
    preferences.setString(preferenceKeys::targetAlbumID, QString());
    coordinator->flush({});
    coordinator->enqueue(u"t"_s, {}, QString(), {});
    coordinator->flush({});
    ASSERT_EQ(http.requests().size(), 1U) << "an empty buffer sends nothing";
    EXPECT_EQ(http.requests()[0].body,
              R"({"newMediaItems":[{"simpleMediaItem":{"uploadToken":"t"}}]})");
}

TEST_F(Batches, TheOldestEntryWaitsThirtySeconds) {
    enqueue(0, 1);
    ASSERT_TRUE(test::waitOnMainThread([&] { return clock.sleeps().size() == 1; }));
    clock.advance(20s);
    enqueue(1, 24);
    clock.advance(9'999ms);
    EXPECT_EQ(coordinator->bufferedCount(), 24U);
    clock.advance(1ms);
    ASSERT_TRUE(test::waitOnMainThread([&] { return verified() == 24; }));
    EXPECT_EQ(http.requests().size(), 1U);

    enqueue(24, 25); // the next entry starts a timer of its own, and a flush ends it
    ASSERT_TRUE(test::waitOnMainThread([&] { return clock.sleeps().size() == 2; }));
    coordinator->flush({});
    enqueue(25, 26);
    ASSERT_TRUE(test::waitOnMainThread([&] { return clock.sleeps().size() == 3; }));
    EXPECT_EQ(clock.sleeps(), (std::vector<std::chrono::milliseconds>{30s, 30s, 30s}));
    EXPECT_EQ(coordinator->bufferedCount(), 1U);
    coordinator.reset();
    EXPECT_EQ(states().at(u"25"_s), u"STAGED"_s);
}

TEST_F(Batches, EachResultDecidesItsOwnRecord) {
    const QString kept =
        u"FAILED Google yaniti mediaItem.id icermedi; yerel medya güvenlik için saklandı."_s;
    const QString unanswered =
        u"FAILED Google yanıtı bu medya için sonuç içermedi; yerel medya güvenlik için saklandı."_s;
    struct Row {
        const char* result;
        QString state;
        const char* log;
    };
    const std::vector<Row> rows{
        {R"({"mediaItem":{"id":"m"}})", u"VERIFIED m"_s, "[Batch] VERIFIED: 0.jpg -> m"},
        {R"({"status":{"code":0},"mediaItem":{"id":"m"}})", u"VERIFIED m"_s, ""},
        {R"({"status":{"message":"Success"},"mediaItem":{"id":"m"}})", u"VERIFIED m"_s, ""},
        {R"({"status":{"message":"bad","code":3},"mediaItem":{"id":"m"}})",
         u"FAILED {\"code\":3,\"message\":\"bad\"}"_s,
         "[Batch] FAILED: 0.jpg -> {\"code\":3,\"message\":\"bad\"}"},
        {R"({"status":{"code":-1}})", u"FAILED {\"code\":-1}"_s, ""},
        {R"({"status":{"message":"?"},"mediaItem":{"id":""}})", kept,
         "[Batch] FAILED: 0.jpg -> {\"message\":\"?\"}"},
        {R"({"mediaItem":{"id":7}})", kept, "[Batch] FAILED: 0.jpg -> status.code = 0"},
        {R"({"status":"x","mediaItem":[]})", kept, "[Batch] FAILED: 0.jpg -> status.code = 0"},
        {R"({})", kept, ""},
        {R"(null)", unanswered, ""},
        {R"("m")", unanswered, ""},
        {R"({"uploadToken":"t1","mediaItem":{"id":"m"}})", unanswered, ""},
        {R"({"status":{"code":8,"message":"The maximum number of photos in an album"},"mediaItem":{"id":"m"}})",
         u"STAGED"_s, "Google Photos albüm sınırı (20.000 medya) doldu!"},
        {R"({"status":{"message":"ERR_PHOTO_PER_ALBUM_LIMIT"}})", u"STAGED"_s, ""},
    };
    for (const Row& row : rows) {
        http.answerAlways(207, "{\"newMediaItemResults\":[" + QByteArray(row.result) + "]}");
        enqueue(0, 1);
        flushAndCapture();
        EXPECT_EQ(states().at(u"0"_s), row.state) << row.result;
        EXPECT_TRUE(log.contains(QString::fromUtf8(row.log))) << row.log;
    }
}

TEST_F(Batches, TooFewOrTooManyResultsNeverMarkAnotherRecord) {
    http.answerAlways(200, R"({"newMediaItemResults":[{"mediaItem":{"id":"m0"}}]})");
    enqueue(0, 2);
    coordinator->flush({});
    EXPECT_EQ(states().at(u"0"_s), u"VERIFIED m0"_s);
    EXPECT_TRUE(states().at(u"1"_s).startsWith(u"FAILED Google yanıtı bu medya için"));

    http.answerAlways(200, R"({"newMediaItemResults":[{"mediaItem":{"id":"m2"}},
                                                      {"mediaItem":{"id":"m3"}}]})");
    enqueue(2, 3);
    coordinator->flush({});
    EXPECT_EQ(states().at(u"2"_s), u"VERIFIED m2"_s);
    EXPECT_TRUE(log.contains(u"[Batch] ⚠️ Google yanıtı 1 medya için 2 sonuç içerdi"_s));
}

TEST_F(Batches, AFailedRequestFailsItsRecords) {
    int next = 0;
    const auto expectFailure = [&](const QString& text) {
        enqueue(next, next + 2);
        coordinator->flush({});
        for (int i = 0; i < 2; ++i, ++next)
            EXPECT_EQ(states().at(QString::number(next)), u"FAILED "_s + text);
        EXPECT_EQ(log.messages().back(), u"[Batch] Flush hatasi: "_s + text);
    };
    for (const int status : {201, 302, 401, 403, 404, 408, 413, 429, 500, 503}) {
        http.answerAlways(status, "{}");
        expectFailure(u"[Batch] HTTP %1"_s.arg(status));
    }
    for (const QByteArray& body :
         {QByteArray(), QByteArray("<html>"), QByteArray("{}"), QByteArray("[]"),
          QByteArray(R"({"newMediaItemResults":{}})"), QByteArray(R"({"newMediaItemResults":[)"),
          "{\"newMediaItemResults\":" + QByteArray("[").repeated(100'000)}) {
        http.answerAlways(200, body);
        expectFailure(u"[Batch] Gecersiz yanit"_s);
    }
    http.answer = [](const HttpRequest&, const std::stop_token&) -> HttpResponse {
        throw TransportError(u"koptu"_s);
    };
    expectFailure(u"koptu"_s);
    tokens.failure = u"OAuth: kullanici giris yapmamis"_s;
    expectFailure(*tokens.failure);
}

TEST_F(Batches, ACancellationLeavesTheRecordsStaged) {
    std::stop_source stop;
    const std::vector<std::function<HttpResponse()>> cancellations{
        []() -> HttpResponse { throw Cancelled(); },
        []() -> HttpResponse { throw TransportError(u"Request Cancelled"_s); },
        [&]() -> HttpResponse {
            stop.request_stop();
            return {500, {}};
        },
    };
    for (const auto& cancellation : cancellations) {
        http.answer = [&](const HttpRequest&, const std::stop_token&) { return cancellation(); };
        enqueue(0, 2);
        coordinator->flush(stop.get_token());
    }
    enqueue(0, 2);
    coordinator->flush(stop.get_token()); // stopped before it began
    EXPECT_EQ(http.requests().size(), 3U);
    EXPECT_EQ(staged(), 2);
    EXPECT_EQ(coordinator->bufferedCount(), 0U);
    EXPECT_EQ(log.messages(),
              QStringList(4, u"[Batch] İptal algılandı, batch öğeleri STAGED olarak "
                             "korunuyor"_s));
}

TEST_F(Batches, AStoreErrorCostsNoOtherRecord) {
    enqueue(0, 3);
    sqlite::Connection(folder / "quorvane.sqlite", sqlite::Connection::Mode::readWriteCreate)
        .execute("CREATE TRIGGER refuse BEFORE UPDATE ON sync_records "
                 "WHEN NEW.asset_local_identifier = '1' "
                 "BEGIN SELECT RAISE(FAIL, 'disk dolu'); END;");
    coordinator->flush({});
    EXPECT_EQ(states(), (std::map<QString, QString>{{u"0"_s, u"VERIFIED m-t0"_s},
                                                    {u"1"_s, u"STAGED"_s},
                                                    {u"2"_s, u"VERIFIED m-t2"_s}}));
    EXPECT_TRUE(log.contains(u"disk dolu"_s));
}

TEST_F(Batches, AFullAlbumStopsTheRunOrRollsOverAsTheSettingsSay) {
    const std::string stopped =
        "[Sync] 🛑 Albüm sınırı nedeniyle eşitleme otomatik durduruldu\n";
    const std::string askedTo =
        "[Batch] Albüm limiti aşıldı, stopAtLimit devrede. Senkronizasyon durduruluyor.\n" +
        stopped;
    const std::string rollsOver =
        "[Batch] Albüm limiti aşıldı, otomatik yeni albüm oluşturuluyor...\n";
    const HttpResponse newAlbum{200, R"({"id":"new","title":"Aile - Parça 2"})"};
    const struct {
        bool stopAtLimit, autoRollover;
        HttpResponse album; ///< the answer to the new album
        bool newAlbumIsFull;
        std::string printed;
        std::size_t verified, requests;
        int stops;
    } rows[] = {
        {true, false, newAlbum, false, askedTo, 1, 1, 1},
        {false, false, newAlbum, false, stopped, 1, 1, 0},
        {true, true, newAlbum, false, rollsOver, 3, 3, 0},
        {true, true, newAlbum, true, rollsOver + askedTo, 1, 3, 1},
        {true, true, {500, ""}, false, rollsOver + askedTo, 1, 2, 1},
    };
    for (const auto& row : rows) {
        preferences.setBoolean(preferenceKeys::stopAtLimit, row.stopAtLimit);
        preferences.setBoolean(preferenceKeys::autoRolloverOnLimit, row.autoRollover);
        preferences.setString(preferenceKeys::targetAlbumID, u"old"_s);
        preferences.setString(preferenceKeys::targetAlbumTitle, u"Aile"_s);
        http.answer = [&](const HttpRequest& request, const std::stop_token&) {
            if (request.url.path() == u"/v1/albums")
                return row.album;
            const bool isNew = test::jsonOf(request.body)[u"albumId"] == u"new"_s;
            return resultsFor(request, [&](const QString& token) {
                const bool fits = token == u"t1" || (isNew && !row.newAlbumIsFull);
                return fits ? made(token) : heldBack();
            });
        };
        const std::size_t before = http.requests().size();
        stops = 0;
        enqueue(0, 3);
        EXPECT_EQ(flushAndCapture(), row.printed);
        EXPECT_EQ(stops, row.stops);
        EXPECT_EQ(verified(), row.verified);
        EXPECT_EQ(staged(), 3 - static_cast<int>(row.verified));
        EXPECT_EQ(coordinator->bufferedCount(), 0U);
        const auto requests = http.requests();
        ASSERT_EQ(requests.size() - before, row.requests);
        if (row.requests == 3) {
            EXPECT_EQ(tokensOf(requests.back()), (QStringList{u"t0"_s, u"t2"_s}));
        }
    }
    EXPECT_TRUE(test::waitOnMainThread([&] { return notifications == 4; }));
}

TEST_F(Batches, EveryTokenOfTwoThreadsIsSentOnce) {
    {
        const std::jthread first([&] { enqueue(0, 100); });
        const std::jthread second([&] { enqueue(100, 200); });
    }
    coordinator->flush({});
    QStringList sent;
    for (const HttpRequest& request : http.requests()) {
        EXPECT_LE(tokensOf(request).size(), 25);
        sent += tokensOf(request);
    }
    EXPECT_EQ(sent.size(), 200);
    EXPECT_EQ(sent.removeDuplicates(), 0);
    EXPECT_EQ(verified(), 200U);
}

TEST_F(Batches, AFlushWaitsForTheOneUnderWayWhileEntriesComeIn) {
    std::latch onTheNetwork(1);
    std::latch mayAnswer(1);
    http.answer = [&](const HttpRequest& request, const std::stop_token&) {
        if (tokensOf(request).contains(u"t0"_s)) {
            onTheNetwork.count_down();
            mayAnswer.wait();
        }
        return resultsFor(request, made);
    };
    enqueue(0, 1);
    const std::jthread first([&] { coordinator->flush({}); });
    onTheNetwork.wait();
    enqueue(1, 2); // not blocked
    EXPECT_EQ(coordinator->bufferedCount(), 1U);
    const std::jthread release([&] { mayAnswer.count_down(); });
    coordinator->flush({});
    EXPECT_EQ(verified(), 2U) << "also the other thread's entry is settled";
}

TEST_F(Batches, AStopOrTheEndReachesATimedFlushUnderWay) {
    std::stop_source run;
    std::atomic<int> onTheNetwork = 0;
    http.answer = [&](const HttpRequest&, const std::stop_token& stop) -> HttpResponse {
        ++onTheNetwork;
        SystemClock().sleep(1min, stop);
        throw Cancelled();
    };
    const auto reachTheNetwork = [&](std::size_t times) {
        enqueue(0, 1, run.get_token());
        ASSERT_TRUE(test::waitOnMainThread([&] { return clock.sleeps().size() == times; }));
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

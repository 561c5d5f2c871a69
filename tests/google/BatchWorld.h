#pragma once

#include "google/GoogleBatchCoordinator.h"
#include "google/RecordStates.h"
#include "google/ScriptedHttp.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <map>

namespace quorvane {

using namespace Qt::StringLiterals;

inline QStringList tokensOf(const HttpRequest& request) {
    QStringList tokens;
    for (const QJsonValue& item : test::jsonOf(request.body)[u"newMediaItems"].toArray())
        tokens.append(item[u"simpleMediaItem"][u"uploadToken"].toString());
    return tokens;
}

inline QJsonObject made(const QString& token) {
    return {{u"uploadToken"_s, token},
            {u"status"_s, QJsonObject{{u"message"_s, u"Success"_s}}},
            {u"mediaItem"_s, QJsonObject{{u"id"_s, u"m-"_s + token}}}};
}

inline QJsonObject refused(int code, const QString& message) {
    return {{u"status"_s, QJsonObject{{u"code"_s, code}, {u"message"_s, message}}}};
}

inline HttpResponse resultsFor(const HttpRequest& request,
                               const std::function<QJsonObject(const QString& token)>& resultOf) {
    QJsonArray results;
    for (const QString& token : tokensOf(request))
        results.append(resultOf(token));
    return {200, QJsonDocument(QJsonObject{{u"newMediaItemResults"_s, results}}).toJson()};
}

/// The coordinator over a real store and a scripted network.
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

} // namespace quorvane

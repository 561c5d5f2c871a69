#include "google/CurlHttpClient.h"
#include "google/GoogleBatchCoordinator.h"
#include "google/GoogleUploadTask.h"

#include "emulator/GoogleEmulator.h"
#include "google/RecordStates.h"
#include "google/ScriptedHttp.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;
using emulator::Fault;
using emulator::RequestKind;

/// Upload, batch and albums over real HTTP, against a service that refuses what Google refuses.
struct UploadToAlbum : testing::Test {
    test::TemporaryFolder folder;
    GoogleEmulator google;
    CurlHttpClient http;
    test::FixedToken tokens;
    test::RecordingLog log;
    test::FakeClock clock;
    Console console{Console::Channel::silent};
    Preferences preferences{folder / "preferences.json"};
    DatabaseManager database{folder / "quorvane.sqlite", console};
    TransferActivityTracker tracker{clock};
    std::optional<GoogleUploadTask> task;
    std::optional<GoogleAlbumManager> albums;
    std::optional<GoogleBatchCoordinator> coordinator;

    UploadToAlbum() {
        google.start();
        tokens.token = google.issueTokens().accessToken;
        const auto endpoints = GoogleEndpoints::resolve(google.baseURL());
        task.emplace(http, tokens, tracker, endpoints);
        albums.emplace(http, tokens, preferences, log, endpoints);
        coordinator.emplace(http, tokens, *albums, database, preferences, log, console, clock,
                            endpoints);
    }

    /// Sends one picture of its own, as the sync engine would.
    void send(const QString& name) {
        const SyncRecord record = test::stagedRecord(name);
        database.upsertRecord(record);
        const auto file = folder.write(pathFrom(name), "\x89PNG\r\n\x1a\n" + name.toUtf8());
        coordinator->enqueue(task->upload(record, file, name, {}), record, name, {});
    }
};

} // namespace

TEST_F(UploadToAlbum, AfterEveryFaultTheNextTryLeavesOneMediaItem) {
    std::vector<Fault> faults;
    for (const RequestKind kind : {RequestKind::upload, RequestKind::batchCreate}) {
        for (const int status : test::refusals)
            faults.push_back({.kind = kind, .status = status});
        for (const char* body : {"", "<html></html>"})
            faults.push_back({.kind = kind, .body = body});
        faults.push_back({.kind = kind, .dropRequestAfter = 0});
        faults.push_back({.kind = kind, .dropAnswerAfter = 5});
    }
    for (Fault& fault : faults) {
        fault.times = 0;
        fault.carriedOut = true;
        google.addFault(fault);
        const QString name = u"Çiçek 100% 📷 \"%1\".png"_s.arg(google.mediaItems().size());
        try {
            send(name);
            coordinator->flush({});
        } catch (const Error& error) {
            EXPECT_EQ(fault.kind, RequestKind::upload) << error.what();
        }
        EXPECT_FALSE(test::recordStates(database).at(name).startsWith(u"VERIFIED"));
        google.clearFaults();
        send(name);
        coordinator->flush({});
        const emulator::StoredMediaItem item = google.mediaItems().back();
        EXPECT_EQ(item.filename, name);
        EXPECT_EQ(test::recordStates(database).at(name), u"VERIFIED "_s + item.id);
    }
    EXPECT_EQ(google.mediaItems().size(), faults.size());
}

} // namespace quorvane

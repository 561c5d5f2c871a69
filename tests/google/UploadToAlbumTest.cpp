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

TEST_F(UploadToAlbum, PicturesGoToTheAlbumAndOnToItsNextPart) {
    google.change([](emulator::Behaviour& behaviour) { behaviour.albumCapacity = 2; });
    preferences.setBoolean(preferenceKeys::autoRolloverOnLimit, true);
    albums->createAlbum(u"Aile"_s, {});
    const QStringList names{u"Çiçek 1.png"_s, u"100% 📷 \"a\".png"_s, u"3.png"_s};
    for (const QString& name : names)
        send(name);
    coordinator->flush({});

    const auto items = google.mediaItems();
    ASSERT_EQ(items.size(), 3U);
    const auto states = test::recordStates(database);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(items[i].filename, names[i]);
        EXPECT_EQ(items[i].mimeType, u"image/png"_s);
        EXPECT_EQ(states.at(names[i]), u"VERIFIED "_s + items[i].id);
    }
    const auto upload = google.requests(RequestKind::upload).at(1);
    EXPECT_EQ(upload.header("X-Goog-Upload-File-Name"), "100%25%20%F0%9F%93%B7%20%22a%22.png");
    EXPECT_EQ(upload.header("X-Goog-Upload-Content-Type"), "image/png");

    const auto listed = albums->listAlbums({});
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed[0].title, u"Aile"_s);
    EXPECT_EQ(listed[0].itemCount(), 2);
    EXPECT_EQ(listed[1].title, u"Aile - Parça 2"_s);
    EXPECT_EQ(listed[1].itemCount(), 1);
}

TEST_F(UploadToAlbum, AfterEveryFaultTheNextTryLeavesOneMediaItem) {
    std::vector<Fault> faults;
    const auto addFault = [&](RequestKind kind, const std::function<void(Fault&)>& edit) {
        edit(faults.emplace_back());
        faults.back().kind = kind;
        faults.back().times = 0;
        faults.back().carriedOut = true;
    };
    for (const RequestKind kind : {RequestKind::upload, RequestKind::batchCreate}) {
        for (const int status : test::refusals)
            addFault(kind, [&](Fault& fault) { fault.status = status; });
        for (const char* body : {"", "<html></html>"})
            addFault(kind, [&](Fault& fault) { fault.body = body; });
        addFault(kind, [](Fault& fault) { fault.dropRequestAfter = 0; });
        addFault(kind, [](Fault& fault) { fault.dropAnswerAfter = 5; });
    }
    for (const Fault& fault : faults) {
        google.addFault(fault);
        const QString name = u"%1.png"_s.arg(google.mediaItems().size());
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
        EXPECT_TRUE(test::recordStates(database).at(name).startsWith(u"VERIFIED"));
    }
    EXPECT_EQ(google.mediaItems().size(), faults.size());
}

} // namespace quorvane

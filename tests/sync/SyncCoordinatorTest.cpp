#include "sync/SyncCoordinator.h"

#include "foundation/MainThread.h"
#include "google/ScriptedHttp.h"
#include "metadata/ImageMetadata.h"
#include "support/TestProgram.h"

#include <QJsonArray>

#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

using namespace Qt::StringLiterals;
using emulator::Disturbance;
using emulator::RequestKind;
using std::chrono::milliseconds;

struct SyncRun : testing::Test {
    SyncWorld world;
};

int sizeOf(const emulator::RecordedRequest& batch) {
    return static_cast<int>(jsonOf(batch.body)[u"newMediaItems"_s].toArray().size());
}

} // namespace

TEST_F(SyncRun, DrainsInPassesOfFiftyWithTwoUploadsAtOnce) {
    world.addPictures(120);
    world.google.change([](auto& behaviour) { behaviour.latency = milliseconds(3); });
    TestProgram program(world);
    program.discover();
    std::vector<std::pair<int, int>> progress;
    bool alwaysOnMainThread = true;
    program.onProgress = [&](int completed, int total) {
        progress.emplace_back(completed, total);
        alwaysOnMainThread = alwaysOnMainThread && isMainThread();
    };
    const auto summary = program.run();

    EXPECT_EQ(program.messagesWith(u"[Sync]"_s),
              (QStringList{u"[Sync] Kuyruk gecisi 1: 120 medya bekliyor"_s,
                           u"[Sync] Kuyruk gecisi 2: 70 medya bekliyor"_s,
                           u"[Sync] Kuyruk gecisi 3: 20 medya bekliyor"_s}));
    EXPECT_EQ(program.linesWith(u"kayit isleniyor"_s),
              (QStringList{u"[Sync] 50 kayit isleniyor"_s, u"[Sync] 50 kayit isleniyor"_s,
                           u"[Sync] 20 kayit isleniyor"_s}));
    expectAllStoredOnce(world, program, 120);
    EXPECT_EQ(world.google.requestCount(RequestKind::upload), 120);
    int sent = 0;
    std::vector<int> passEnds;
    for (const auto& batch : world.google.requests(RequestKind::batchCreate)) {
        EXPECT_LE(sizeOf(batch), 25);
        sent += sizeOf(batch);
        passEnds.push_back(sent);
    }
    EXPECT_EQ(passEnds, (std::vector{25, 50, 75, 100, 120}))
        << "no batch of one by the other upload";
    EXPECT_LE(program.http.mostAtOnce(), 3) << "two uploads, and a batch beside them";

    EXPECT_TRUE(alwaysOnMainThread);
    EXPECT_GE(progress.size(), 120U);
    EXPECT_TRUE(std::ranges::is_sorted(progress));
    EXPECT_EQ(progress.back(), std::pair(120, 120));
    EXPECT_EQ(summary.completed, 120);
    EXPECT_EQ(summary.passes, 3);
    EXPECT_FALSE(summary.cancelled);
    EXPECT_TRUE(program.google.tracker.getSnapshot().items.empty());
    EXPECT_TRUE(program.log.contains(u"[SafeDeletion]"_s)) << "a run ends with the deletion";
}

TEST_F(SyncRun, NothingWithoutADateIsUploaded) {
    const QString heldBack = u"Tarih tespit edilemedi - Google Photos hatalı tarih koruması"_s;
    const QString noPlace = u"Bu biçime tarih yazılamaz - isterseniz olduğu gibi yüklenir"_s;
    world.addPicture(u"dated.jpg"_s);
    world.addPicture(u"undated.jpg"_s, std::nullopt);
    world.addPicture(u"undated.gif"_s); // no place for a date
    TestProgram program(world);
    program.discover();
    program.run();
    EXPECT_EQ(world.google.mediaItems().size(), 1U);
    EXPECT_EQ(world.google.requestCount(RequestKind::upload), 1);
    EXPECT_EQ(program.record(u"dated.jpg"_s).syncStatus, SyncStatus::verified);
    for (const QString& name : {u"undated.jpg"_s, u"undated.gif"_s}) {
        EXPECT_EQ(program.record(name).syncStatus, SyncStatus::dateUnresolved);
        EXPECT_EQ(program.record(name).lastError, name.endsWith(u"gif"_s) ? noPlace : heldBack);
        EXPECT_EQ(program.linesWith(u"(DATE_UNRESOLVED)"_s).filter(program.identifierOf(name)),
                  QStringList{u"[Sync] 🛑 Tarih tespit edilemedi (DATE_UNRESOLVED), upload "
                              "engellendi: "_s +
                              program.identifierOf(name)});
    }

    program.core.preferences.setString(preferenceKeys::dateFallbackMode, u"fileSaveDate"_s);
    program.life.retriedUndated();
    program.run();
    EXPECT_EQ(program.record(u"undated.jpg"_s).syncStatus, SyncStatus::verified);
    EXPECT_EQ(program.record(u"undated.gif"_s).syncStatus, SyncStatus::dateUnresolved);
    EXPECT_EQ(program.record(u"undated.gif"_s).lastError, noPlace);
    EXPECT_EQ(
        program.linesWith(u"geçerli gömülü tarih bulunamadı"_s),
        QStringList{
            u"[Sync] 🛑 Dosyada geçerli gömülü tarih bulunamadı, upload engellendi: "_s +
            program.identifierOf(u"undated.gif"_s)});
    EXPECT_EQ(world.google.requestCount(RequestKind::upload), 2);

    EXPECT_EQ(program.life.undatableReleased(), 1);
    TestProgram next(world);
    next.run();
    EXPECT_EQ(next.database.fetchRecord(program.identifierOf(u"undated.gif"_s))->syncStatus,
              SyncStatus::verified);
    EXPECT_EQ(world.storedContents()[computeHashAndSize(world.pictures / "undated.gif").sha256], 1);
}

TEST_F(SyncRun, ADateThatAPersonNamedIsWritten) {
    world.addPicture(u"undated.jpg"_s, std::nullopt);
    TestProgram program(world);
    program.discover();
    program.run();
    const Date chosen{std::chrono::sys_days(std::chrono::May / 3 / 2019)};
    EXPECT_TRUE(program.life.dateChosen(program.record(u"undated.jpg"_s), chosen));
    TestProgram next(world);
    next.run();
    ASSERT_EQ(world.google.mediaItems().size(), 1U);
    EXPECT_EQ(readExistingImageDate(program.stagedPath(u"undated.jpg"_s)), chosen);
    const QString identifier = program.identifierOf(u"undated.jpg"_s);
    EXPECT_EQ(RecordDates(next.database).all(),
              (std::vector{std::pair(identifier, RecordDate{chosen, u"chosen"_s})}));
}

TEST_F(SyncRun, EachFailureInARowWaitsTwiceAsLong) {
    world.addPictures(6);
    world.google.addDisturbance(refusal(1, 3));
    // Two are in flight: the fourth waits for the third's failure, the fifth for its success.
    Disturbance success = faultOf(RequestKind::upload, 4);
    success.delay = milliseconds(300);
    world.google.addDisturbance(success);
    Disturbance afterASuccess = refusal(5, 1);
    afterASuccess.delay = milliseconds(900);
    world.google.addDisturbance(afterASuccess);
    TestProgram program(world);
    program.discover();
    program.clock.skipSleeps(true);
    program.run();

    auto waits = program.clock.sleeps();
    std::ranges::sort(waits); // of two failures at once either may begin to wait first
    EXPECT_EQ(waits, (std::vector<milliseconds>{milliseconds(2000), milliseconds(2000),
                                                milliseconds(4000), milliseconds(8000)}));
    for (const auto& [errors, text] : {std::pair{1, "2.0"}, std::pair{2, "4.0"}})
        EXPECT_FALSE(
            program
                .linesWith(
                    u"[Sync] Hata (%1x), %2s bekleniyor: [Upload] HTTP 500"_s.arg(errors).arg(
                        QLatin1String(text)))
                .isEmpty());
    EXPECT_EQ(program.counts(), (Counts{{SyncStatus::verified, 5}, {SyncStatus::failed, 1}}))
        << "three in a row were the service's fault, the one after a success is the picture's";
    for (const SyncRecord& record : program.database.fetchUnfinishedRecords(10)) {
        EXPECT_EQ(record.lastError, u"[Upload] HTTP 500"_s);
        EXPECT_EQ(record.retryCount, 1);
    }

    program.life.retriedFailed(true);
    EXPECT_EQ(program.database.fetchPendingRecords(1).at(0).retryCount, 0);
    program.run();
    expectAllStoredOnce(world, program, 6);
}

TEST_F(SyncRun, WhatTheLibraryCannotHandOutKeepsNobodyWaiting) {
    world.addPictures(91);
    TestProgram program(world);
    program.discover();
    for (int i = 1; i <= 60; ++i)
        std::filesystem::remove(world.pictures / pathFrom(u"%1.jpg"_s.arg(i, 3, 10, QChar(u'0'))));
    world.google.addDisturbance(
        refusal(1, 1)); // the oldest fails, and comes back in front of those
    program.clock.skipSleeps(true);
    program.coordinator.onPassEnded = [&] { program.life.retriedFailed(false); };
    const auto summary = program.run();
    EXPECT_EQ(program.counts(), (Counts{{SyncStatus::discovered, 60}, {SyncStatus::verified, 31}}));
    EXPECT_EQ(program.record(u"060.jpg"_s).syncStatus, SyncStatus::discovered);
    EXPECT_EQ(summary.unavailable, 60);
    EXPECT_FALSE(summary.failure);
    EXPECT_EQ(
        program.messagesWith(u"alınamıyor"_s),
        QStringList{u"[Sync] ⚠️ 60 medya şu anda arşivden alınamıyor; sonraki eşitlemede "
                    "yeniden denenecek."_s});
    EXPECT_EQ(program.linesWith(u"Asset bulunamadı"_s).size(), 60) << "each says so once a run";
}

TEST_F(SyncRun, StagesTheNextRecordsWhileTheFirstOnesUpload) {
    constexpr int inFlight = SyncCoordinator::maxConcurrent;
    const std::pair<StageAhead::Limits, int> cases[] = {
        {{}, 50}, {{.records = 3}, 3}, {{.bytes = 1}, 1}, {{.freeBytes = UINTMAX_MAX}, 0}};
    world.addPictures(70); // more than a pass
    world.google.change([](auto& behaviour) { behaviour.latency = std::chrono::minutes(1); });
    for (const auto& [limits, ahead] : cases) {
        SCOPED_TRACE(ahead);
        std::filesystem::remove_all(world.folder / "home");
        TestProgram program(world, limits);
        program.discover();
        program.start();
        EXPECT_TRUE(waitOnMainThread(
            [&, all = inFlight + ahead] { return program.counts()[SyncStatus::staged] >= all; }));
        program.stop();
        program.finish();
        EXPECT_EQ(program.stagedFiles(), inFlight + ahead);
        EXPECT_EQ(program.counts()[SyncStatus::staged], ahead);
    }
}

TEST_F(SyncRun, AServiceThatIsDownCostsNoPictureAndEndsTheRunWhenPatienceDoes) {
    world.addPictures(70);
    world.google.addDisturbance(refusal(1, 0));
    TestProgram program(world);
    program.discover();
    program.clock.skipSleeps(true);
    program.patience = std::chrono::minutes(10);
    program.run();
    ASSERT_TRUE(program.attempts.ending());
    EXPECT_EQ(program.attempts.ending()->code, FaultCode::serviceBusy);
    EXPECT_EQ(program.database.countPendingRecords(), 70);
    EXPECT_LT(world.google.requests().size(), 20U);
    world.google.clearDisturbances();
    program.run();
    expectAllStoredOnce(world, program, 70);
}

} // namespace quorvane::test

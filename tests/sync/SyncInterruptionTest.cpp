#include "support/TestProgram.h"

#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

using namespace Qt::StringLiterals;
using emulator::RequestKind;
using std::chrono::milliseconds;

constexpr milliseconds stopsWithin{500};

struct Interrupted : testing::Test {
    SyncWorld world;
};

} // namespace

TEST_F(Interrupted, AStopDuringAnUploadLeavesTheRecordsToTheNextRun) {
    world.addPictures(4);
    const std::function<void()> hindrances[] = {
        [&] { world.google.addDisturbance(stall(RequestKind::upload)); },
        [&] { world.google.change([](auto& all) { all.uploadBytesPerSecond = 10; }); },
        [&] { world.google.change([](auto& all) { all.latency = std::chrono::minutes(1); }); },
    };
    TestProgram program(world);
    program.discover();
    for (const auto& hinder : hindrances) {
        world.google.clearRequests();
        const int before = world.google.requestCount(RequestKind::upload);
        hinder();
        program.start();
        ASSERT_TRUE(world.google.waitForRequests(RequestKind::upload, before + 2));
        EXPECT_LT(program.stop(), stopsWithin);
        const auto summary = program.finish();
        EXPECT_TRUE(summary.cancelled);
        EXPECT_EQ(summary.completed, 0);
        for (const QString& name : {u"000.jpg"_s, u"001.jpg"_s}) {
            EXPECT_EQ(program.record(name).syncStatus, SyncStatus::discovered);
            EXPECT_EQ(program.record(name).lastError, std::nullopt);
            EXPECT_EQ(program.record(name).retryCount, 0);
            EXPECT_TRUE(std::filesystem::exists(program.stagedPath(name)));
            EXPECT_TRUE(program.printed.contains(
                u"[Sync] İptal bayrağı/cancellation algılandı, dosya FAILED yapılmıyor: "_s +
                program.identifierOf(name)));
        }
        EXPECT_FALSE(program.log.contains(u"[SafeDeletion]"_s));
        world.google.clearDisturbances();
        world.google.change([](auto& behaviour) { behaviour = {}; });
    }
    EXPECT_EQ(program.messagesWith(u"batch sonlandırılıyor"_s).size(), std::ssize(hindrances))
        << "once a run, although two noticed";
    EXPECT_EQ(program.messagesWith(u"[Sync] İptal bayrağı algılandı, döngü"_s).size(),
              std::ssize(hindrances));
    EXPECT_TRUE(program.clock.sleeps().empty());
    program.run();
    expectAllStoredOnce(world, program, 4);
}

TEST_F(Interrupted, AStopEndsABackOffWait) {
    world.addPictures(4);
    world.google.addDisturbance(refusal(1, 0));
    TestProgram program(world);
    program.discover();
    program.start();
    ASSERT_TRUE(waitOnMainThread([&] { return program.clock.sleeps().size() == 2; }));
    EXPECT_LT(program.stop(), stopsWithin);
    program.finish();
    EXPECT_EQ(program.counts()[SyncStatus::failed], 2);
    EXPECT_EQ(program.database.countPendingRecords(), 2);
    EXPECT_EQ(world.google.requestCount(RequestKind::upload), 2);
}

TEST(InterruptedOnItsOwn, AStopDuringABatchLeavesItsRecordsStaged) {
    for (const int count : {3, 30}) { // sent at the end of the pass, and by its 25th picture
        SyncWorld world;
        world.addPictures(count);
        world.google.addDisturbance(stall(RequestKind::batchCreate));
        TestProgram program(world);
        program.discover();
        program.start();
        ASSERT_TRUE(world.google.waitForRequests(RequestKind::batchCreate, 1));
        EXPECT_LT(program.stop(), stopsWithin);
        program.finish();
        const Counts counts = program.counts();
        EXPECT_GE(counts.at(SyncStatus::staged), std::min(count, 25));
        EXPECT_EQ(counts.count(SyncStatus::failed) + counts.count(SyncStatus::verified), 0U);
        EXPECT_TRUE(program.log.contains(
            u"[Batch] İptal algılandı, batch öğeleri STAGED olarak korunuyor"_s));
        EXPECT_TRUE(world.google.mediaItems().empty());
        world.google.clearDisturbances();
        program.run();
        expectAllStoredOnce(world, program, count);
    }
}

TEST(InterruptedOnItsOwn, EndsWhenTheStoreRefusesAndLosesNothing) {
    for (const int count : {3, 15}) { // at the batch's results, and at the staging of the eleventh
        SyncWorld world;
        world.addPictures(count);
        TestProgram program(world);
        program.discover();
        sqlite::Connection other(world.folder / "home/Library/Application Support/Quorvane" /
                                     "quorvane.sqlite",
                                 sqlite::Connection::Mode::readWriteCreate);
        other.setBusyTimeout(5000);
        program.http.before = [&](int number) {
            if (number == 1)
                other.execute("CREATE TRIGGER full BEFORE UPDATE ON sync_records "
                              "BEGIN SELECT RAISE(FAIL, 'no space left'); END;");
        };
        const auto summary = program.run();
        ASSERT_TRUE(summary.failure);
        EXPECT_TRUE(summary.failure->localizedDescription().contains(u"no space left"_s));
        EXPECT_EQ(summary.passes, 1);
        EXPECT_EQ(program.database.countPendingRecords(), count);
        EXPECT_LE(world.google.requestCount(RequestKind::upload), count);

        other.execute("DROP TRIGGER full;");
        EXPECT_FALSE(program.run().failure);
        expectAllStoredOnce(world, program, count);
    }
}

/// What a run may suffer at any of its requests.
enum class Blow { crashBefore, crashAfter, stopBefore, stopAfter };

class SyncInterrupted : public testing::TestWithParam<Blow> {};

/// The home folder as it was at the request is what a crash leaves behind: the run itself ends
/// there, and the next program works on the copy.
TEST_P(SyncInterrupted, AtAnyRequestIsMadeGoodByTheNextRun) {
    constexpr int pictureCount = 4;
    constexpr int requestCount = pictureCount + 1;
    const bool isAfter = GetParam() == Blow::crashAfter || GetParam() == Blow::stopAfter;
    const bool isCrash = GetParam() == Blow::crashBefore || GetParam() == Blow::crashAfter;
    for (int fatal = 1; fatal <= requestCount; ++fatal) {
        SCOPED_TRACE(fatal);
        SyncWorld world;
        world.addPictures(pictureCount);
        TestProgram program(world);
        program.discover();
        program.staging.stageDiscoveredAssets(); // so that nothing is half copied below
        std::atomic<bool> isOver = false;
        const auto strike = [&](int number) {
            if (number == fatal) {
                if (isCrash)
                    std::filesystem::copy(world.folder / "home", world.folder / "after",
                                          std::filesystem::copy_options::recursive);
                isOver = true;
                program.flags.cancel();
            }
            if (isOver)
                throw Cancelled();
        };
        (isAfter ? program.http.after : program.http.before) = strike;
        EXPECT_TRUE(program.run().cancelled);
        EXPECT_LT(program.counts()[SyncStatus::verified], pictureCount);

        TestProgram next(world, world.folder / (isCrash ? "after" : "home"));
        EXPECT_EQ(next.run().total, pictureCount);
        expectAllStoredOnce(world, next, pictureCount);
    }
}

INSTANTIATE_TEST_SUITE_P(Blows, SyncInterrupted,
                         testing::Values(Blow::crashBefore, Blow::crashAfter, Blow::stopBefore,
                                         Blow::stopAfter));

} // namespace quorvane::test

#include "platform/watch/ChangeWatch.h"

#include "ChangeRecorder.h"
#include "library/LiveFetches.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

using namespace std::chrono_literals;

constexpr WatchTimes quick{10ms, 100ms, 20ms, 20ms};

struct ChangeWatchTest : testing::Test {
    void watchWith(std::function<ChangeWatch::Found()> look, const WatchTimes& times = quick) {
        watch.emplace(
            QStringLiteral("[Test]"), FolderNotifier::Events::entries,
            [look = std::move(look)](bool, const std::stop_token&) { return look(); }, change, log,
            times);
    }
    bool waitForCalls(int count) {
        return observer.waitFor([&] { return observer.calls() >= count; });
    }

    TemporaryFolder folder;
    LiveFetches change;
    RecordingLog log;
    ChangeRecorder observer{nullptr};
    std::optional<ChangeWatch> watch;
};

} // namespace

TEST_F(ChangeWatchTest, SaysOnceThatTheKernelHasNoRoomAndLooksByItself) {
    const std::filesystem::path unwatchable = "/" + std::string(5000, 'x');
    watchWith([&] { return ChangeWatch::Found{true, false, {unwatchable}}; });
    watch->observe(observer);
    EXPECT_TRUE(waitForCalls(4));
    watch->unobserve(observer);
    EXPECT_EQ(
        log.messages()
            .filter(QStringLiteral("[Test] ⚠️ Çekirdek 1 klasörün izlenmesini kabul etmedi"))
            .size(),
        1);
}

TEST_F(ChangeWatchTest, OutlivesALookThatFails) {
    watchWith([looks = 0]() mutable {
        if (++looks < 4)
            throw PhotoLibraryError(QStringLiteral("Disk takılı değil"));
        return ChangeWatch::Found{true, false, {}};
    });
    watch->observe(observer);
    EXPECT_TRUE(waitForCalls(1));
    watch->unobserve(observer);
    EXPECT_EQ(log.messages().filter(QStringLiteral("Disk takılı değil")).size(), 1);
}

TEST(FolderNotifier, WatchesTheFoldersItWasToldLast) {
    const TemporaryFolder folder;
    folder.write("a/1.jpg", "x");
    folder.write("b/1.jpg", "x");
    const auto notifier = FolderNotifier::make(FolderNotifier::Events::entries);
    using Wake = FolderNotifier::Wake;
    EXPECT_TRUE(notifier->watch({folder / "a"}).gained);
    EXPECT_FALSE(notifier->watch({folder / "a", folder / "gone"}).gained);
    std::filesystem::rename(folder / "a", folder / "c"); // the folder itself is told
    EXPECT_EQ(notifier->wait(5s, {}), Wake::changed);
    EXPECT_FALSE(notifier->watch({folder / "c"}).gained) << "the same folder by another name";
    EXPECT_TRUE(notifier->watch({folder / "b"}).gained);
    notifier->wait(0ms, {}); // the end of the other watch is told
    folder.write("c/2.jpg", "x");
    EXPECT_EQ(notifier->wait(0ms, {}), Wake::timeout);
    folder.write("b/2.jpg", "x");
    EXPECT_EQ(notifier->wait(5s, {}), Wake::changed);
    EXPECT_EQ(notifier->wait(0ms, {}), Wake::timeout) << "a burst is one notification";
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(notifier->wait(60s, stop.get_token()), Wake::stopped);
}

} // namespace quorvane::test

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

struct WatchWorld {
    LiveFetches change;
    RecordingLog log;
    ChangeRecorder observer{nullptr};

    int lines(const QString& part) const {
        return static_cast<int>(log.messages().filter(part).size());
    }
};

} // namespace

TEST(ChangeWatch, SaysOnceThatTheKernelHasNoRoomAndLooksByItself) {
    WatchWorld world;
    const std::filesystem::path unwatchable = "/" + std::string(5000, 'x');
    ChangeWatch watch(
        QStringLiteral("[Test]"), FolderNotifier::Events::entries,
        [&](bool, const std::stop_token&) {
            return ChangeWatch::Found{true, false, {unwatchable}};
        },
        world.change, world.log, quick);
    watch.observe(world.observer);
    EXPECT_TRUE(world.observer.waitFor([&] { return world.observer.calls() >= 4; }));
    watch.unobserve(world.observer);
    EXPECT_EQ(world.lines(
                  QStringLiteral("[Test] ⚠️ Çekirdek 1 klasörün izlenmesini kabul etmedi")),
              1);
}

TEST(ChangeWatch, OutlivesALookThatFails) {
    WatchWorld world;
    int looks = 0;
    ChangeWatch watch(
        QStringLiteral("[Test]"), FolderNotifier::Events::entries,
        [&](bool, const std::stop_token&) {
            if (++looks < 4)
                throw PhotoLibraryError(QStringLiteral("Disk takılı değil"));
            return ChangeWatch::Found{true, false, {}};
        },
        world.change, world.log, quick);
    watch.observe(world.observer);
    EXPECT_TRUE(world.observer.waitFor([&] { return world.observer.calls() >= 1; }));
    watch.unobserve(world.observer);
    EXPECT_EQ(world.lines(QStringLiteral("Disk takılı değil")), 1);
}

TEST(ChangeWatch, EndsAtOnceAndCallsNobodyAfterwards) {
    WatchWorld world;
    const TemporaryFolder folder;
    ChangeWatch watch(QStringLiteral("[Test]"), FolderNotifier::Events::entries,
                      [&](bool, const std::stop_token&) {
                          return ChangeWatch::Found{true, false, {folder.path()}};
                      },
                      world.change, world.log, {60'000ms, 60'000ms, 60'000ms, 60'000ms});
    for (const bool inBurst : {false, true}) {
        const int before = world.observer.calls();
        watch.observe(world.observer);
        watch.observe(world.observer); // the same again changes nothing
        EXPECT_TRUE(world.observer.waitFor([&] { return world.observer.calls() > before; }));
        if (inBurst)
            folder.write("new.jpg", "x");
        const auto began = std::chrono::steady_clock::now();
        watch.unobserve(world.observer);
        EXPECT_LT(std::chrono::steady_clock::now() - began, 5s);
        const int calls = world.observer.calls();
        folder.write("later.jpg", "x");
        EXPECT_EQ(world.observer.calls(), calls);
    }
}

TEST(FolderNotifier, WatchesTheFoldersItWasToldLast) {
    const TemporaryFolder folder;
    folder.write("a/1.jpg", "x");
    folder.write("b/1.jpg", "x");
    FolderNotifier notifier(FolderNotifier::Events::entries);
    using Wake = FolderNotifier::Wake;
    EXPECT_TRUE(notifier.watch({folder / "a"}).gained);
    EXPECT_FALSE(notifier.watch({folder / "a", folder / "gone"}).gained);
    std::filesystem::rename(folder / "a", folder / "c"); // the folder itself is told
    EXPECT_EQ(notifier.wait(5s, {}), Wake::changed);
    EXPECT_FALSE(notifier.watch({folder / "c"}).gained) << "the same folder by another name";
    EXPECT_TRUE(notifier.watch({folder / "b"}).gained);
    notifier.wait(0ms, {}); // the end of the other watch is told
    folder.write("c/2.jpg", "x");
    EXPECT_EQ(notifier.wait(0ms, {}), Wake::timeout);
    folder.write("b/2.jpg", "x");
    EXPECT_EQ(notifier.wait(5s, {}), Wake::changed);
    EXPECT_EQ(notifier.wait(0ms, {}), Wake::timeout) << "a burst is one notification";
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(notifier.wait(60s, stop.get_token()), Wake::stopped);
}

} // namespace quorvane::test

#include "platform/watch/ChangeWatch.h"

#include "ChangeRecorder.h"
#include "library/LiveFetches.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

using namespace std::chrono_literals;

} // namespace

TEST(ChangeWatch, SaysOnceThatTheKernelHasNoRoomAndLooksByItself) {
    const std::filesystem::path unwatchable = "/" + std::string(5000, 'x');
    LiveFetches change;
    RecordingLog log;
    ChangeRecorder observer(nullptr);
    ChangeWatch watch(
        QStringLiteral("[Test]"), FolderNotifier::Events::entries,
        [&](bool, const std::stop_token&) {
            return ChangeWatch::Found{true, false, {unwatchable}};
        },
        change, log, WatchTimes{10ms, 100ms, 20ms, 20ms});
    watch.observe(observer);
    EXPECT_TRUE(observer.waitFor([&] { return observer.calls() >= 4; }));
    watch.unobserve(observer);
    EXPECT_EQ(
        log.messages()
            .filter(QStringLiteral("[Test] ⚠️ Çekirdek 1 klasörün izlenmesini kabul etmedi"))
            .size(),
        1);
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

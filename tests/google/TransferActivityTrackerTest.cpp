#include "google/TransferActivityTracker.h"

#include "support/Fakes.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;

using namespace std::chrono_literals;

ActiveTransferItem item(const char* id, int startedAt) {
    return {QString::fromUtf8(id),
            u"a.jpg"_s,
            false,
            1000,
            0,
            0,
            Date(std::chrono::seconds(startedAt))};
}

struct Tracking : testing::Test {
    test::FakeClock clock;
    int jitter = 0;
    TransferActivityTracker tracker{clock, [this] { return jitter; }};
};

} // namespace

TEST_F(Tracking, SpeedIsSampledEveryQuarterSecondAndNeverNegative) {
    struct Step {
        std::chrono::milliseconds advance;
        std::int64_t sent;
        double speed;
        const char* peakText;
    };
    tracker.add(item("a", 1));
    for (const Step& step : {
             Step{249ms, 500, 0, "0.0 KB/s"},         // too early
             Step{1ms, 512, 2048, "2.0 KB/s"},        // 512 bytes in 0.25 s
             Step{100ms, 9000, 2048, "2.0 KB/s"},     // the last sample again
             Step{900ms, 1'000'512, 1e6, "1.0 MB/s"}, // 1,000,000 bytes in 1 s
             Step{1000ms, 1'000'512, 0, "1.0 MB/s"},  // stalled
             Step{1000ms, 512, 0, "1.0 MB/s"},        // bytes left the total
             Step{1000ms, 1536, 1024, "1.0 MB/s"},
         }) {
        clock.advance(step.advance);
        tracker.updateProgress(u"a"_s, step.sent, 1000);
        const TransferSnapshot snapshot = tracker.getSnapshot();
        EXPECT_DOUBLE_EQ(snapshot.currentSpeed, step.speed);
        EXPECT_EQ(snapshot.currentSpeedText, TransferActivityTracker::formatSpeed(step.speed));
        EXPECT_EQ(snapshot.peakSpeedText, QLatin1String(step.peakText));
    }
    tracker.remove(u"a"_s);
    clock.advance(100ms);
    EXPECT_DOUBLE_EQ(tracker.getSnapshot().currentSpeed, 1024);
}

} // namespace quorvane

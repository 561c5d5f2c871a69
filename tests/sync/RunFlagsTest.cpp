#include "sync/RunFlags.h"

#include <gtest/gtest.h>

namespace quorvane {

TEST(RunFlags, AStopLastsUntilTheNextRunBegins) {
    RunFlags flags;
    flags.cancel();
    EXPECT_TRUE(flags.isCancelled());
    EXPECT_FALSE(flags.isRunning());

    flags.begin();
    EXPECT_TRUE(flags.isRunning());
    EXPECT_FALSE(flags.isCancelled()) << "a stop meant for an earlier run";
    const std::stop_token first = flags.stopToken();
    flags.cancel();
    flags.cancel();
    EXPECT_TRUE(first.stop_requested());
    EXPECT_TRUE(flags.isRunning()) << "it runs until it has returned";
    flags.end();
    EXPECT_FALSE(flags.isRunning());
    EXPECT_TRUE(flags.isCancelled());

    flags.begin();
    EXPECT_FALSE(flags.stopToken().stop_requested());
    EXPECT_TRUE(first.stop_requested());
}

TEST(RunFlags, WhoeverAStopWakesMayAskTheFlags) {
    RunFlags flags;
    flags.begin();
    bool cancelled = false;
    const std::stop_callback onStop(flags.stopToken(), [&] { cancelled = flags.isCancelled(); });
    flags.cancel();
    EXPECT_TRUE(cancelled);
}

} // namespace quorvane

#include "app/gui/SingleInstance.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace quorvane::test {

using namespace Qt::StringLiterals;

TEST(SingleInstanceTest, aLaterStartHandsOverWhatItBrought) {
    const TemporaryFolder folder;
    SingleInstance first(folder.path());
    std::vector<Start> later;
    first.onLaterStart = [&](const Start& start) { later.push_back(start); };
    ASSERT_TRUE(first.claim({}));
    for (const Start& start :
         {Start{{QUrl(u"com.x:/cb?code=4%2F0"_s)}, u"token\nof two lines"_s}, Start{}}) {
        auto second = std::async(std::launch::async,
                                 [&] { return SingleInstance(folder.path()).claim(start); });
        ASSERT_TRUE(waitOnMainThread([&] { return !later.empty(); }));
        EXPECT_FALSE(second.get());
        EXPECT_EQ(later[0].urls, start.urls);
        EXPECT_EQ(later[0].activationToken, start.activationToken);
        later.clear();
    }
}

TEST(SingleInstanceTest, aStartTakesThePlaceOfOneThatDiesWithoutAnAnswer) {
    const TemporaryFolder folder;
    auto dying = std::make_unique<SingleInstance>(folder.path());
    ASSERT_TRUE(dying->claim({}));
    // Its main thread hears no more; the kernel still takes what is said to it.
    auto later = std::async(std::launch::async, [&] {
        SingleInstance second(folder.path());
        return second.claim({});
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    dying.reset();
    EXPECT_TRUE(later.get());
}

} // namespace quorvane::test

#include "app/gui/SingleInstance.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

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
        SingleInstance second(folder.path());
        EXPECT_FALSE(second.claim(start));
        ASSERT_TRUE(waitOnMainThread([&] { return !later.empty(); }));
        EXPECT_EQ(later[0].urls, start.urls);
        EXPECT_EQ(later[0].activationToken, start.activationToken);
        later.clear();
    }
}

} // namespace quorvane::test

#include "google/DailyRequests.h"

#include "google/ScriptedHttp.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane {

TEST(DailyRequests, AreSharedAndCountedByTheServicesDay) {
    using namespace std::chrono_literals;
    test::TemporaryFolder folder;
    test::FakeClock clock;
    DailyRequests requests(folder / "requests", clock);
    EXPECT_FALSE(std::filesystem::exists(folder / "requests"));
    EXPECT_EQ(requests.today().left, 10'000);
    const auto untilMidnight = requests.today().turns - clock.now();
    EXPECT_GT(untilMidnight, 0s);
    EXPECT_LE(untilMidnight, 24h);

    test::ScriptedHttp http;
    http.answerAlways(200, "");
    DailyRequests others(folder / "requests", clock);
    CountedHttp counted(http, requests);
    for (int i = 0; i < 3; ++i)
        counted.send({}, {});
    others.count();
    EXPECT_EQ(requests.today().used, 4);
    EXPECT_EQ(DailyRequests(folder / "requests", clock).today().used, 4) << "after a restart";

    clock.advance(std::chrono::duration_cast<std::chrono::milliseconds>(untilMidnight) - 1s);
    EXPECT_EQ(requests.today().used, 4);
    requests.learnFrom({.status = 200, .date = clock.now() + 2s}); // our clock is slow
    EXPECT_EQ(requests.today().used, 0);
    EXPECT_EQ(requests.today().turns - clock.now(), 24h - 1s);

    http.answerAlways(429, R"({"error":{"message":"limit 'All requests per day'"}})");
    counted.send({}, {});
    EXPECT_EQ(requests.today().left, 0);
}

} // namespace quorvane

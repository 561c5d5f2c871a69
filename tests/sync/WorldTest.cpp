#include "sync/Attempts.h"

#include "support/Fakes.h"

#include <gtest/gtest.h>

#include <future>

namespace quorvane {

namespace {

using namespace std::chrono_literals;
using enum FaultCode;

/// What happened, and what the world makes of it.
struct Step {
    std::optional<FaultCode> fault; ///< none: something passed
    std::chrono::seconds asked{0};  ///< by the service
    bool isItsOwn = true;
    bool beganOutage = false;
    std::chrono::seconds wait{0}; ///< of whoever failed
    std::chrono::seconds left{0}; ///< until the next attempt
};

struct Story {
    const char* name;
    World::Patience patience;
    std::vector<Step> steps; ///< the time moves to the next attempt after each
    std::optional<FaultCode> ending;
};

const Story stories[]{
    {"one fault with successes around is the record's own",
     World::endless,
     {{}, {unreachable, 0s, true, false, 2s}, {}, {serviceBusy, 0s, true, false, 2s}},
     {}},
    {"the third in a row is an outage, which ends by itself",
     World::endless,
     {{serviceBusy, 0s, true, false, 2s},
      {unreachable, 0s, true, false, 4s},
      {unreachable, 0s, false, true, 0s, 8s},
      {unreachable, 0s, false, false, 0s, 16s},
      {},
      {unreachable, 0s, true, false, 2s}},
     {}},
    {"what the service asks for is given",
     World::endless,
     {{rateLimited, 0s, true, false, 30s, 30s},
      {rateLimited, 90s, true, false, 90s, 90s},
      {serviceBusy, 45s, false, true, 0s, 45s}},
     {}},
    {"a refused item is an answer",
     World::endless,
     {{unreachable, 0s, true, false, 2s},
      {itemRefused, 0s, true, false, 4s},
      {unreachable, 0s, true, false, 8s},
      {unreachable, 0s, true, false, 16s}},
     {}},
    {"patience ends with a last attempt",
     20s,
     {{unreachable, 0s, true, false, 2s},
      {unreachable, 0s, true, false, 4s},
      {unreachable, 0s, false, true, 0s, 8s},
      {unreachable, 0s, false, false, 0s, 12s},
      {unreachable, 0s, false, false}},
     unreachable},
    {"without patience an outage ends the run",
     0s,
     {{unreachable, 0s, true, false, 2s},
      {unreachable, 0s, true, false, 4s},
      {unreachable, 0s, false, true}},
     unreachable},
    {"the day's quota is waited for",
     World::endless,
     {{dailyQuota, 0s, false, false, 0s, 3660s}},
     {}},
    {"or not", 600s, {{dailyQuota, 0s, false, false, 0s, 3660s}}, dailyQuota},
    {"a session ends the run", World::endless, {{sessionEnded, 0s, false, false}}, sessionEnded},
    {"so does a full account", World::endless, {{storageFull, 0s, false, false}}, storageFull},
};

} // namespace

TEST(World, DecidesWhoseFaultItWasAndWhenToGoOn) {
    for (const Story& story : stories) {
        SCOPED_TRACE(story.name);
        World world(story.patience);
        const Date date(std::chrono::sys_days{std::chrono::year{2026} / 7 / 2});
        World::Now now{{}, date, date + 1h};
        for (const Step& step : story.steps) {
            if (!step.fault) {
                world.passed();
                EXPECT_FALSE(world.obstacle());
                continue;
            }
            const auto verdict = world.failed(Fault{*step.fault, step.asked}, now);
            EXPECT_EQ(verdict.isItsOwn, step.isItsOwn);
            EXPECT_EQ(verdict.beganOutage, step.beganOutage);
            EXPECT_EQ(verdict.wait, step.wait);
            if (world.ending())
                break;
            const auto left = world.timeLeft(now);
            EXPECT_EQ(left, step.left);
            now = {now.monotonic + left, now.date + left, now.dayTurns};
        }
        EXPECT_EQ(world.ending() ? std::optional(world.ending()->code) : std::nullopt,
                  story.ending);
    }
}

TEST(Attempts, AreNotMadeOnceTheDaysRequestsAreUsedUp) {
    test::FakeClock clock;
    clock.skipSleeps(true);
    DailyRequests requests({}, clock, 500);
    for (int i = 0; i < requests.limit(); ++i)
        requests.count();
    EXPECT_EQ(requests.daysFor(0), 0);
    EXPECT_EQ(requests.daysFor(requests.limit() + 1), 3);
    Attempts attempts(clock, requests);

    attempts.begin(10min);
    EXPECT_FALSE(attempts.enter({}));
    EXPECT_EQ(attempts.ending().value().code, dailyQuota);

    const Date turns = requests.today().turns;
    std::optional<Attempts::Waiting> told;
    attempts.begin(World::endless, [&](const auto& waiting) { told = waiting; });
    auto permit = attempts.enter({});
    ASSERT_TRUE(permit);
    EXPECT_GT(clock.now(), turns);
    EXPECT_EQ(told->obstacle.code, dailyQuota);
    permit->passed();
    EXPECT_FALSE(told);
    EXPECT_EQ(requests.daysFor(requests.limit()), 1);
}

TEST(Attempts, GoOnAtOnceWhenOneThatWasUnderWayPasses) {
    test::FakeClock clock; // stands still: only being woken ends a wait
    DailyRequests requests({}, clock);
    Attempts attempts(clock, requests);
    attempts.begin(World::endless);
    auto slow = attempts.enter({});
    attempts.enter({})->failed(Fault{dailyQuota});
    std::stop_source end;
    auto next =
        std::async(std::launch::async, [&] { return attempts.enter(end.get_token()).has_value(); });
    while (clock.sleeps().empty())
        std::this_thread::yield();
    slow->passed();
    EXPECT_EQ(next.wait_for(10s), std::future_status::ready);
    end.request_stop();
}

} // namespace quorvane

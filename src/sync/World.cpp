#include "sync/World.h"

#include "sync/Backoff.h"

#include <algorithm>

namespace quorvane {

void World::passed() {
    ++era_;
    errors_ = 0;
    streak_ = 0;
    outage_.reset();
    pause_.reset();
    dayTurns_.reset();
}

World::Verdict World::failed(const std::optional<Fault>& fault, Now now) {
    ++errors_;
    Verdict verdict = judged(fault, now);
    verdict.errors = errors_;
    verdict.era = era_;
    return verdict;
}

World::Verdict World::judged(const std::optional<Fault>& fault, Now now) {
    switch (fault ? kindOf(fault->code) : FaultKind::item) {
    case FaultKind::moment:
        return momentFailed(*fault, now);
    case FaultKind::day:
        dayFailed(*fault, now);
        return {.isItsOwn = false};
    case FaultKind::item:
        if (fault && fault->code == FaultCode::itemRefused)
            streak_ = 0; // the service answers
        return {.wait = backoffAfter(errors_)};
    default:
        ending_ = ending_ ? ending_ : fault;
        return {.isItsOwn = false};
    }
}

World::Verdict World::momentFailed(const Fault& fault, Now now) {
    if (++streak_ == 1)
        streakSince_ = now.monotonic;
    const auto asked = fault.code == FaultCode::rateLimited
                           ? std::max(fault.retryAfter, leastAfterRateLimit)
                           : fault.retryAfter;
    const auto wait = std::max(backoffAfter(streak_), asked);
    if (!outage_ && streak_ < faultsToAnOutage) {
        if (asked.count() > 0)
            pauseUntil(now.monotonic + asked, fault);
        return {.wait = std::max(backoffAfter(errors_), asked)};
    }
    const bool begins = !outage_;
    if (begins) {
        outageSince_ = streakSince_;
        outageEra_ = era_;
    }
    if (!dayTurns_ || *dayTurns_ <= now.date) {
        outage_ = fault;
        dayTurns_.reset();
    }
    pauseUntil(now.monotonic + wait, fault);
    if (patience_ != endless) {
        const Clock::Monotonic end = outageSince_ + patience_;
        if (now.monotonic >= end || now.monotonic + asked > end)
            ending_ = ending_ ? ending_ : fault;
        notBefore_ = std::min(notBefore_, end); // one last attempt when the patience ends
    }
    return {.isItsOwn = false, .beganOutage = begins};
}

void World::tryNow() {
    notBefore_ = {};
    dayTurns_.reset();
}

void World::dayUsedUp(Now now) {
    if (!dayTurns_ || *dayTurns_ <= now.date)
        dayFailed({.code = FaultCode::dailyQuota}, now);
}

/// Until the quota is renewed nothing passes.
void World::dayFailed(const Fault& fault, Now now) {
    const Date turn = now.dayTurns + std::chrono::minutes(1);
    outage_ = fault;
    outageSince_ = now.monotonic;
    dayTurns_ = turn;
    if (patience_ != endless && turn - now.date > patience_)
        ending_ = ending_ ? ending_ : fault;
}

void World::pauseUntil(Clock::Monotonic time, const Fault& fault) {
    notBefore_ = std::max(notBefore_, time);
    pause_ = fault;
}

std::chrono::milliseconds World::timeLeft(Now now) const {
    using std::chrono::milliseconds;
    milliseconds left{0};
    if (outage_ || pause_)
        left = std::chrono::ceil<milliseconds>(notBefore_ - now.monotonic);
    if (dayTurns_)
        left = std::max(left, std::chrono::ceil<milliseconds>(*dayTurns_ - now.date));
    return std::max(left, milliseconds{0});
}

} // namespace quorvane

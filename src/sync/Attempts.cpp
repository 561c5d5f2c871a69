#include "sync/Attempts.h"

#include "sync/EitherStop.h"
#include "sync/RunState.h"

#include <utility>

namespace quorvane {

namespace {

/// A long wait is looked at anew now and then: a computer that slept did not count the time.
constexpr std::chrono::minutes longestSleep{1};

} // namespace

Attempts::Permit::Permit(Permit&& other) noexcept
    : attempts_(std::exchange(other.attempts_, nullptr)), isProbe_(other.isProbe_) {}

Attempts::Permit::~Permit() {
    giveBack();
}

void Attempts::Permit::giveBack() {
    Attempts* attempts = std::exchange(attempts_, nullptr);
    if (attempts == nullptr || !isProbe_)
        return;
    attempts->state_.lock()->isProbing = false;
    attempts->changed_.notify_all();
}

void Attempts::Permit::passed() {
    attempts_->learn([](World& world) {
        world.passed();
        return World::Verdict();
    });
    giveBack();
}

World::Verdict Attempts::Permit::failed(const std::optional<Fault>& fault) {
    Attempts& attempts = *attempts_;
    const auto verdict =
        attempts.learn([&](World& world) { return world.failed(fault, attempts.now()); });
    giveBack();
    return verdict;
}

void Attempts::begin(World::Patience patience, Teller teller) {
    const auto told = told_.lock();
    const auto state = state_.lock();
    state->world = World(patience);
    state->isProbing = false;
    state->suspects.clear();
    state->over = std::stop_source();
    *told = {.teller = std::move(teller)};
}

World::Verdict Attempts::learn(const std::function<World::Verdict(World&)>& what) {
    World::Verdict verdict;
    std::stop_source over(std::nostopstate);
    std::stop_source waiting(std::nostopstate);
    bool isClear = false;
    std::vector<std::function<void()>> relieved;
    {
        const auto state = state_.lock();
        const int era = state->world.era();
        const bool wasClear = !state->world.obstacle();
        verdict = what(state->world);
        if (verdict.beganOutage || state->world.era() != era)
            relieved = std::exchange(state->suspects, {});
        if (state->world.ending())
            over = state->over;
        isClear = !state->world.obstacle();
        if (isClear && !wasClear) // nobody waits for what has passed
            waiting = std::exchange(state->waiting, std::stop_source());
        changed_.notify_all();
    }
    // These run the callbacks of whoever waits, so not under the lock.
    over.request_stop(); // NOLINT(clang-analyzer-cplusplus.Move): what was moved away is old
    waiting.request_stop();
    if (verdict.beganOutage)
        for (const auto& relieve : relieved)
            relieve();
    if (isClear)
        tell(std::nullopt);
    return verdict;
}

void Attempts::suspect(int era, std::function<void()> relieve) {
    {
        const auto state = state_.lock();
        if (state->world.outageEra() != era) {
            if (state->world.era() == era)
                state->suspects.push_back(std::move(relieve));
            return;
        }
    }
    relieve(); // the outage began before its record was written down
}

Attempts::Permit Attempts::enterOrThrow(const std::stop_token& stop) {
    if (auto permit = enter(stop))
        return std::move(*permit);
    const Fault fault = *ending();
    throw Error(faultText(fault), fault);
}

/// Called while `error` is handled, which goes on to the caller when no wait mends it. What only a
/// person can mend is the run's end where it keeps records from their way, and not here; but for a
/// session that ended for everybody.
void Attempts::waitOut(const Error& error, Permit permit, const std::stop_token& stop) {
    const auto& fault = error.fault();
    const FaultKind kind = fault ? kindOf(fault->code) : FaultKind::item;
    const bool isWorlds = kind == FaultKind::moment || kind == FaultKind::day ||
                          (fault && fault->code == FaultCode::sessionEnded);
    if (!isWorlds)
        throw;
    const World::Verdict verdict = permit.failed(fault);
    if (ending())
        throw;
    if (!sleep(verdict.wait, stop))
        throw Cancelled();
}

void Attempts::tryNow() {
    if (requests_.today().left == 0)
        requests_.distrust();
    std::stop_source waiting;
    {
        const auto state = state_.lock();
        state->world.tryNow();
        waiting = std::exchange(state->waiting, std::stop_source());
    }
    waiting.request_stop(); // not under the lock, as in `learn`
}

std::optional<Fault> Attempts::ending() const {
    return state_.lock()->world.ending();
}

std::optional<Attempts::Permit> Attempts::enter(const std::stop_token& stop) {
    while (true) {
        if (requests_.today().left == 0)
            learn([this](World& world) {
                world.dayUsedUp(now());
                return World::Verdict();
            });
        auto state = state_.lock();
        const World& world = state->world;
        if (stop.stop_requested())
            throw Cancelled();
        if (world.ending())
            return std::nullopt;
        const bool isOut = world.isOut();
        if (isOut && state->isProbing) {
            state.wait(changed_, stop,
                       [&] { return !state->isProbing || !world.isOut() || world.ending(); });
            continue;
        }
        const auto left = world.timeLeft(now());
        state->isProbing = isOut;
        if (left.count() == 0)
            return Permit(*this, isOut);
        waitFor(state, left, stop);
        if (isOut) {
            state->isProbing = false;
            changed_.notify_all();
        }
    }
}

void Attempts::waitFor(Guarded<State>::Lock& state, std::chrono::milliseconds time,
                       const std::stop_token& stop) {
    const Waiting waiting{*state->world.obstacle(), clock_.now() + time};
    const EitherStop end(stop, state->over.get_token());
    const EitherStop wake(end.token(), state->waiting.get_token());
    state.without([&] {
        tell(waiting);
        clock_.sleep(std::min<std::chrono::milliseconds>(time, longestSleep), wake.token());
    });
}

void Attempts::tell(const std::optional<Waiting>& waiting) {
    const auto told = told_.lock();
    if (!told->teller || (!waiting && !std::exchange(told->hasTold, false)))
        return;
    told->hasTold = waiting.has_value();
    told->teller(waiting);
}

} // namespace quorvane

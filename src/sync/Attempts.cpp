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
    const std::lock_guard lock(attempts->mutex_);
    attempts->isProbing_ = false;
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
    const std::lock_guard telling(telling_);
    const std::lock_guard lock(mutex_);
    world_ = World(patience);
    isProbing_ = false;
    suspects_.clear();
    over_ = std::stop_source();
    teller_ = std::move(teller);
    hasTold_ = false;
}

World::Verdict Attempts::learn(const std::function<World::Verdict(World&)>& what) {
    World::Verdict verdict;
    std::stop_source over(std::nostopstate);
    bool isClear = false;
    std::vector<std::function<void()>> relieved;
    {
        const std::lock_guard lock(mutex_);
        const int era = world_.era();
        verdict = what(world_);
        if (verdict.beganOutage || world_.era() != era)
            relieved = std::exchange(suspects_, {});
        if (world_.ending())
            over = over_;
        isClear = !world_.obstacle();
        changed_.notify_all();
    }
    over.request_stop(); // runs the callbacks of whoever waits, so not under the lock
    if (verdict.beganOutage)
        for (const auto& relieve : relieved)
            relieve();
    if (isClear)
        tell(std::nullopt);
    return verdict;
}

void Attempts::suspect(int era, std::function<void()> relieve) {
    {
        const std::lock_guard lock(mutex_);
        if (world_.outageEra() != era) {
            if (world_.era() == era)
                suspects_.push_back(std::move(relieve));
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
        const std::lock_guard lock(mutex_);
        world_.tryNow();
        waiting = std::exchange(waiting_, std::stop_source());
    }
    waiting.request_stop(); // as in `learn`
}

std::optional<Fault> Attempts::ending() const {
    const std::lock_guard lock(mutex_);
    return world_.ending();
}

std::optional<Attempts::Permit> Attempts::enter(const std::stop_token& stop) {
    while (true) {
        if (requests_.today().left == 0)
            learn([this](World& world) {
                world.dayUsedUp(now());
                return World::Verdict();
            });
        std::unique_lock lock(mutex_);
        if (stop.stop_requested())
            throw Cancelled();
        if (world_.ending())
            return std::nullopt;
        const bool isOut = world_.isOut();
        if (isOut && isProbing_) {
            changed_.wait(lock, stop,
                          [this] { return !isProbing_ || !world_.isOut() || world_.ending(); });
            continue;
        }
        const auto left = world_.timeLeft(now());
        isProbing_ = isOut;
        if (left.count() == 0)
            return Permit(*this, isOut);
        waitFor(lock, left, stop);
        if (isOut) {
            isProbing_ = false;
            changed_.notify_all();
        }
    }
}

void Attempts::waitFor(std::unique_lock<std::mutex>& lock, std::chrono::milliseconds time,
                       const std::stop_token& stop) {
    const Waiting waiting{*world_.obstacle(), clock_.now() + time};
    const EitherStop end(stop, over_.get_token());
    const EitherStop wake(end.token(), waiting_.get_token());
    lock.unlock();
    tell(waiting);
    clock_.sleep(std::min<std::chrono::milliseconds>(time, longestSleep), wake.token());
    lock.lock();
}

void Attempts::tell(const std::optional<Waiting>& waiting) {
    const std::lock_guard telling(telling_);
    if (!teller_ || (!waiting && !std::exchange(hasTold_, false)))
        return;
    hasTold_ = waiting.has_value();
    teller_(waiting);
}

} // namespace quorvane

#pragma once

#include "emulator/Account.h"
#include "emulator/Disturbance.h"
#include "emulator/Exchange.h"
#include "emulator/RequestLog.h"
#include "foundation/Clock.h"

#include <condition_variable>
#include <mutex>
#include <utility>

namespace quorvane::emulator {

/// Carries requests from their arrival to their answer. Any thread. Its one lock is never held
/// while it reads, writes or waits.
class Service {
  public:
    /// All that requests share; reached through `with`, under the lock.
    struct State {
        explicit State(const EmulatorOptions& options)
            : behaviour(options.behaviour), log(options.recordedBytes) {}
        Behaviour behaviour;
        Account account;
        DisturbancePlan faults;
        RequestLog log;
    };

    /// Takes up the state file, if there is one. Throws `Error` when it cannot be read. `clock`
    /// must outlive it.
    Service(const EmulatorOptions& options, const Clock& clock);

    /// Writes the state file, if there is to be one. Throws `FileError`.
    void save();

    /// Reads the request's body and answers it.
    void handle(Exchange& exchange) noexcept;

    template <typename Use>
    decltype(auto) with(Use&& use) {
        const std::lock_guard lock(mutex_);
        return use(state_);
    }
    template <typename Use>
    decltype(auto) with(Use&& use) const {
        const std::lock_guard lock(mutex_);
        return use(std::as_const(state_));
    }

    /// Waits until `count` requests of a kind have arrived, answered or not. False after `limit`.
    bool waitForRequests(RequestKind kind, int count, std::chrono::milliseconds limit) const;

    QJsonObject report() const; ///< see `reportOf`

    Date now() const { return clock_.now(); }

  private:
    struct Plan {
        RequestKind kind = RequestKind::other;
        Behaviour behaviour = {};
        Disturbance fault = {};

        std::chrono::milliseconds latency() const;
    };

    void load();
    void carry(Exchange& exchange);
    Plan arrive(RequestKind kind);
    std::unique_lock<std::mutex> takeSession(Call& call);
    bool readUpload(Exchange& exchange, Call& call, const Plan& plan);
    void record(const Call& call);
    Answer answerTo(const Call& call, const Plan& plan);
    Answer carryOut(const Call& call, const Plan& plan);

    const EmulatorOptions options_;
    const Clock& clock_;
    mutable std::mutex mutex_;
    mutable std::condition_variable arrived_;
    State state_;
    std::mutex saveMutex_; ///< one writer of the state file; taken before `mutex_`
};

} // namespace quorvane::emulator

#pragma once

#include "foundation/Error.h"
#include "foundation/Guarded.h"
#include "google/DailyRequests.h"
#include "sync/World.h"

#include <functional>
#include <mutex>
#include <vector>

namespace quorvane {

/// Where every request of a run that sends or makes something asks before it goes out: when the
/// world is as it should be they all pass, in an outage one at a time and only when its wait is
/// over. When the day's requests are used up, nothing goes out before it turns. Any thread.
class Attempts {
  public:
    Attempts(Clock& clock, DailyRequests& requests) : clock_(clock), requests_(requests) {}

    /// What is waited for, and until when; none when nothing is any more.
    struct Waiting {
        Fault obstacle;
        Date until;
    };
    using Teller = std::function<void(const std::optional<Waiting>&)>;

    /// A new run. `teller` is called on the waiting threads, one call at a time.
    void begin(World::Patience patience, Teller teller = {});

    /// The leave to make one attempt. Given back without a word, nothing was learnt.
    class Permit {
      public:
        ~Permit();
        Permit(Permit&& other) noexcept;
        Permit& operator=(Permit&&) = delete;
        Permit(const Permit&) = delete;
        Permit& operator=(const Permit&) = delete;

        /// See `World`. Each gives the leave back.
        void passed();
        World::Verdict failed(const std::optional<Fault>& fault);

      private:
        friend class Attempts;
        Permit(Attempts& attempts, bool isProbe) : attempts_(&attempts), isProbe_(isProbe) {}
        void giveBack();

        Attempts* attempts_; ///< none once it is given back
        bool isProbe_;
    };

    /// Blocks until an attempt may be made; none when the run is over. Throws `Cancelled`.
    std::optional<Permit> enter(const std::stop_token& stop);

    /// A request that concerns no record: `request` is called again until the world lets it pass.
    /// Throws what it throws when that is no fault that passes, or the run is over; `Cancelled`.
    template <typename Request>
    auto patiently(const std::stop_token& stop, Request&& request) {
        while (true) {
            Permit permit = enterOrThrow(stop);
            try {
                auto answer = request();
                permit.passed();
                return answer;
            } catch (const Error& error) {
                waitOut(error, std::move(permit), stop);
            }
        }
    }

    /// A record failed by a fault of the moment, in the verdict's era. If that turns out to have
    /// been the beginning of an outage, `relieve` is called: once, on the thread that finds out.
    void suspect(int era, std::function<void()> relieve);

    /// A wait of the caller's own. False when it was stopped.
    bool sleep(std::chrono::milliseconds time, const std::stop_token& stop) {
        return clock_.sleep(time, stop);
    }

    /// The wait that is under way is over, also that for another day.
    void tryNow();

    /// Why the run is over; none while it is not.
    std::optional<Fault> ending() const;

  private:
    struct State {
        World world = World();
        bool isProbing = false; ///< somebody waits for the next attempt of an outage, or makes it
        std::vector<std::function<void()>> suspects; ///< of the present era: what relieves them
        std::stop_source over;                       ///< wakes whoever waits when the run is over
        std::stop_source waiting;                    ///< wakes them for one more attempt
    };

    World::Now now() const { return {clock_.monotonic(), clock_.now(), requests_.today().turns}; }
    Permit enterOrThrow(const std::stop_token& stop);
    void waitOut(const Error& error, Permit permit, const std::stop_token& stop);
    void tell(const std::optional<Waiting>& waiting);
    World::Verdict learn(const std::function<World::Verdict(World&)>& what);
    void waitFor(Guarded<State>::Lock& state, std::chrono::milliseconds time,
                 const std::stop_token& stop);

    Clock& clock_;
    DailyRequests& requests_;
    std::condition_variable_any changed_;
    Guarded<State> state_; ///< never locked while waiting
    struct Told {
        Teller teller = {};
        bool hasTold = false;
    };
    Guarded<Told> told_; ///< locked during a call, and before `state_`
};

} // namespace quorvane

#pragma once

#include "foundation/Clock.h"
#include "foundation/Fault.h"

#include <chrono>
#include <optional>

namespace quorvane {

/// What one run knows of the world outside, as far as it decides what the run does next. Pure: what
/// happened and the time come in, what to do comes out.
///
///     all is well -> third fault of the moment in a row, or the day's quota -> outage
///     outage      -> one attempt at a time, each after a longer wait        -> all is well | over
///     any         -> a fault that only a person can mend                    -> over
class World {
  public:
    struct Now {
        Clock::Monotonic monotonic;
        Date date;
        Date dayTurns; ///< when the destination counts its requests anew
    };

    /// How long an outage may last before the run ends.
    using Patience = std::chrono::seconds;
    static constexpr Patience endless = Patience::max();

    explicit World(Patience patience = endless) : patience_(patience) {}

    /// What an attempt's failure means for the record that it was made for.
    struct Verdict {
        bool isItsOwn = true;     ///< else the world's: the record stays pending
        bool beganOutage = false; ///< also those that failed in a row before it were the world's
        std::chrono::seconds wait{0}; ///< for whoever made the attempt, before it makes another
        int errors = 0;               ///< failures in a row, of any kind
        int era = 0;                  ///< grows whenever something passed
    };

    /// The service did what it was asked, or gave its reasons for not doing it.
    void passed();
    /// None: nobody could tell whose fault it was.
    Verdict failed(const std::optional<Fault>& fault, Now now);
    /// The next attempt may begin now; after it all is as it was.
    void tryNow();
    /// By our own count the day's requests are used up: nothing is worth trying before it turns.
    void dayUsedUp(Now now);

    /// Only one attempt at a time.
    bool isOut() const { return outage_.has_value(); }
    int era() const { return era_; }
    /// In which the latest outage began; negative: none did.
    int outageEra() const { return outageEra_; }
    /// Until the next attempt may begin; 0: now.
    std::chrono::milliseconds timeLeft(Now now) const;
    /// What is waited for while `timeLeft` is not over, or in an outage.
    const std::optional<Fault>& obstacle() const { return outage_ ? outage_ : pause_; }
    /// Why no attempt is made any more in this run.
    const std::optional<Fault>& ending() const { return ending_; }

    static constexpr int faultsToAnOutage = 3;
    static constexpr std::chrono::seconds leastAfterRateLimit{30};

  private:
    Verdict judged(const std::optional<Fault>& fault, Now now);
    Verdict momentFailed(const Fault& fault, Now now);
    void dayFailed(const Fault& fault, Now now);
    void pauseUntil(Clock::Monotonic time, const Fault& fault);

    Patience patience_;
    int era_ = 0;
    int outageEra_ = -1;
    int errors_ = 0; ///< of any kind, since something passed
    int streak_ = 0; ///< faults of the moment in a row
    Clock::Monotonic streakSince_;
    std::optional<Fault> outage_;
    Clock::Monotonic outageSince_;
    std::optional<Fault> pause_;
    Clock::Monotonic notBefore_;
    std::optional<Date> dayTurns_;
    std::optional<Fault> ending_;
};

} // namespace quorvane

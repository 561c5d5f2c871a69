#pragma once

#include "foundation/Guarded.h"

#include <optional>

namespace quorvane {

/// What a platform will say once, on a thread of its own, maybe when nobody waits for it any more.
/// Shared between the one who waits and the handler that the platform calls. Any thread.
template <typename T>
class Answer {
  public:
    /// The first one counts. False when nobody waits any more: then it falls to the caller to clean
    /// up what the answer stands for.
    bool give(T value) {
        const auto state = state_.lock();
        if (!state->isGiven && !state->isAbandoned) {
            state->isGiven = true;
            state->value.emplace(std::move(value));
            given_.notify_all();
        }
        return !state->isAbandoned;
    }

    /// None when `stop` was requested first; from then on every answer is too late. Call once.
    std::optional<T> wait(const std::stop_token& stop) {
        auto state = state_.lock();
        state->isAbandoned = !state.wait(given_, stop, [&state] { return state->isGiven; });
        return std::exchange(state->value, std::nullopt);
    }

  private:
    struct State {
        std::optional<T> value;
        bool isGiven = false;
        bool isAbandoned = false; ///< by a wait that was stopped
    };

    Guarded<State> state_;
    std::condition_variable_any given_;
};

} // namespace quorvane

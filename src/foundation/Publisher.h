#pragma once

#include "foundation/Guarded.h"

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace quorvane {

/// Ends its subscription when it goes out of scope. Moveable, owned by the subscriber.
class Subscription {
  public:
    Subscription() = default;
    explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
    Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        std::swap(end_, other.end_);
        return *this;
    }
    ~Subscription() {
        if (end_)
            end_();
    }

  private:
    std::function<void()> end_;
};

/// A pass-through subject: subscribers see only what is sent after they subscribed, on the
/// sender's thread. No lock is held while a subscriber runs.
template <typename Value>
class Publisher {
  public:
    using Handler = std::function<void(const Value&)>;

    [[nodiscard]] Subscription subscribe(Handler handler) {
        const auto now = state_->lock();
        const int id = now->nextId++;
        now->handlers.emplace(id, std::make_shared<Handler>(std::move(handler)));
        return Subscription([weak = std::weak_ptr(state_), id] {
            if (const auto state = weak.lock())
                state->lock()->handlers.erase(id);
        });
    }

    void send(const Value& value) const {
        std::vector<std::shared_ptr<Handler>> handlers;
        {
            const auto now = state_->lock();
            for (const auto& [id, handler] : now->handlers)
                handlers.push_back(handler);
        }
        for (const auto& handler : handlers)
            (*handler)(value);
    }

  private:
    struct State {
        int nextId = 0;
        std::map<int, std::shared_ptr<Handler>> handlers;
    };
    std::shared_ptr<Guarded<State>> state_ = std::make_shared<Guarded<State>>();
};

} // namespace quorvane

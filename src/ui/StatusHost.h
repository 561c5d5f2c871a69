#pragma once

#include <functional>

namespace quorvane {

/// The place on the person's desktop where status items are shown. Main thread.
class StatusHost {
  public:
    virtual ~StatusHost() = default;

    /// Calls `appeared` once, as soon as there is such a place. At the start of a session, or with
    /// an extension switched on later, that may take any time.
    virtual void await(std::function<void()> appeared) = 0;
};

} // namespace quorvane

#pragma once

#include "foundation/Guarded.h"

#include <stop_token>

namespace quorvane {

/// The two flags of a sync run, set by whoever starts and stops it and read by the engine. Setting
/// `isCancelled` also wakes every wait of the run through its stop token. Any thread.
class RunFlags {
  public:
    /// A new run: `isRunning` true, `isCancelled` false, a fresh stop token.
    void begin();

    /// Asks the run to stop. Without a run nothing happens but the flag.
    void cancel();

    /// The run has returned.
    void end();

    bool isRunning() const;
    bool isCancelled() const;

    /// Of the current run; take it after `begin`.
    std::stop_token stopToken() const;

  private:
    struct Run {
        std::stop_source stop;
        bool isUnderWay = false;
    };
    Guarded<Run> run_;
};

} // namespace quorvane

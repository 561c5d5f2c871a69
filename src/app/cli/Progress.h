#pragma once

#include "foundation/Clock.h"
#include "foundation/Console.h"
#include "foundation/Guarded.h"
#include "google/TransferActivityTracker.h"
#include "sync/SyncRun.h"

#include <memory>
#include <thread>

namespace quorvane::cli {

/// "12/40 (%30) · 3.2 MB/s · kalan 0:45 · IMG_0012.JPG, klip.mov". While it waits, the state says
/// for what instead of the pace; before anything is known to be done it says so. `elapsed` is since
/// the start of the uploads; the time left follows from the pace so far and is missing before the
/// first item.
QString progressLine(int completed, int total, std::chrono::seconds elapsed,
                     const TransferSnapshot& transfers, const RunState& state = {});

/// Shows a run while it runs: one live line on a terminal, a plain line now and then elsewhere, or
/// JSON objects. Created and ended by the command; the progress itself comes on the main thread.
class Progress {
  public:
    enum class Form { text, json, none };

    Progress(Form form, Console& console, TransferActivityTracker& tracker, Clock& clock);
    ~Progress();

    void update(int completed, int total);

    /// Shown at once where it changes. Any thread.
    void update(const RunState& state);

  private:
    /// Of the run, as it was told last.
    struct Known {
        int completed = 0;
        int total = 0;
        RunState state;
    };

    void show(std::stop_token stop);
    void showOnce(bool onTerminal);

    const Form form_;
    Console& console_;
    TransferActivityTracker& tracker_;
    Clock& clock_;
    const Clock::Monotonic started_;
    Guarded<Known> known_;
    int lastShown_ = 0; ///< the showing thread's own
    std::jthread thread_;
};

/// What a run tells goes to `progress`, as long as that is kept.
SyncRunCallbacks shownBy(const std::shared_ptr<Progress>& progress);

} // namespace quorvane::cli

#pragma once

#include "ui/MenuBarViewModel.h"

namespace quorvane {

/// The page about the latest run of this process, for the person to keep. Main thread; it is made
/// and written in the background.
class RunReportModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOffered READ isOffered NOTIFY changed)

  public:
    explicit RunReportModel(MenuBarViewModel& model);

    /// A run has ended, and its library is still the one that is open.
    bool isOffered() const;
    /// Asks where the page is to be written.
    Q_INVOKABLE void request() { Q_EMIT requested(); }

    /// Writes the page, and opens it. A failure is shown.
    void save(const std::filesystem::path& file);

    bool isWorking() { return !tasks_.isIdle(); }

  Q_SIGNALS:
    void changed();
    void requested();

  private:
    void runMayHaveBegun();
    void runEnded(const SyncRunOutcome& outcome);

    MenuBarViewModel& model_;
    std::optional<Clock::Monotonic> begun_; ///< of the run that is under way
    FinishedRun run_;                       ///< none: without a session
    TaskRunner tasks_;                      ///< last: its work uses the rest
};

} // namespace quorvane

#pragma once

#include "foundation/Date.h"
#include "foundation/Fault.h"

#include <QJsonObject>

#include <filesystem>
#include <mutex>

namespace quorvane {

/// What a run is doing, or how the last one ended: the one thing that everybody tells of it.
struct RunState {
    enum class Phase { none, running, waiting, ended };
    enum class End {
        complete,
        itemsLeft, ///< some are pending, failed or without a date
        stopped,   ///< by whoever started it
        albumFull,
        world,   ///< `fault` says what would not pass, or what a person has to mend
        machine, ///< `error` says what could not be done here; `fault` the kind, where it has one
    };
    Phase phase = Phase::none;
    End end = End::complete;         ///< while `phase` is `ended`
    std::optional<Fault> fault = {}; ///< waiting: for what; ended: by what
    std::optional<Date> until = {};  ///< waiting: the next attempt
    QString error = {};

    /// One line for a person, in their language; empty when there never was a run.
    QString text() const;
    /// {phase, end?, fault?, reason?, until?, error?, text}; times in ISO 8601, UTC.
    QJsonObject json() const;
    /// Nothing goes on before the person signs in again.
    bool needsSignIn() const;
    /// It ended although the world might have let it go on later.
    bool wasPutOff() const;
};

/// A fault in a person's words, with what they can do about it.
QString faultText(const Fault& fault);

/// Keeps the latest state in a file, for other programs of the same user. Any thread.
class RunStateFile {
  public:
    explicit RunStateFile(std::filesystem::path file) : file_(std::move(file)) {}

    /// A file that cannot be written is left: the state is told elsewhere as well.
    void keep(const RunState& state) noexcept;
    /// Without a readable file there never was a run.
    RunState last() const noexcept;
    /// Somebody signed in: what wanted it does not any more.
    void signedIn() noexcept;

  private:
    const std::filesystem::path file_;
    std::mutex mutex_; ///< one writer at a time
};

} // namespace quorvane

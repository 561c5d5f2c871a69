#pragma once

#include "foundation/Clock.h"
#include "foundation/Console.h"
#include "foundation/File.h"
#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "foundation/LogEntry.h"
#include "foundation/Publisher.h"
#include "foundation/SystemLog.h"

#include <deque>
#include <filesystem>

namespace quorvane {

/// The single log of the program. Each message goes to the system log, the console, the log file
/// and the ring of the latest entries. Any thread. Never fails: a place that cannot be written is
/// left out.
class AppLogger final : public Log {
  public:
    /// Opens (or creates) "quorvane.log" in `folder` and writes the banner. `systemLog` may be
    /// none.
    AppLogger(const std::filesystem::path& folder, Console& console, Clock& clock,
              SystemLog* systemLog = nullptr);

    void log(const QString& message) override { log(message, {}); }
    void logAbout(const QString& identifier, const QString& message) override {
        log(message, identifier);
    }

    /// The latest entries, oldest first, at most 100; among them what only the console was told.
    std::vector<LogEntry> memoryBuffer() const;

    /// Sends each entry on the caller's thread, after no lock is held.
    const Publisher<LogEntry>& logPublisher() const { return publisher_; }
    Publisher<LogEntry>& logPublisher() { return publisher_; }

    const std::filesystem::path& logFile() const { return logFile_; }

  private:
    void log(const QString& text, const QString& about);
    void remember(const LogEntry& entry);

    Console& console_;
    Clock& clock_;
    SystemLog* const systemLog_;
    std::filesystem::path logFile_;
    FileDescriptor file_; ///< opened once; whole lines are appended
    Guarded<std::deque<LogEntry>> memoryBuffer_;
    Publisher<LogEntry> publisher_;
    Subscription notices_; ///< last: it uses the rest
};

} // namespace quorvane

#pragma once

#include <QString>

namespace quorvane {

/// The application log as its users see it: one-line Turkish messages, no level. Any thread.
class Log {
  public:
    virtual ~Log() = default;
    virtual void log(const QString& message) = 0;
    /// The same about one record, named by its asset's identifier: who shows the line can tell the
    /// record's life. A log of words alone leaves the identifier out.
    virtual void logAbout(const QString& /*identifier*/, const QString& message) { log(message); }
};

} // namespace quorvane

#pragma once

#include <QString>

namespace quorvane {

/// The application log as its users see it: one-line Turkish messages, no level. Any thread.
class Log {
  public:
    virtual ~Log() = default;
    virtual void log(const QString& message) = 0;
};

} // namespace quorvane

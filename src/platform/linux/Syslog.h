#pragma once

#include "foundation/SystemLog.h"

namespace quorvane {

/// The system's log by syslog(3), which is the journal where there is one.
class Syslog final : public SystemLog {
  public:
    Syslog();
    void log(const QString& message) override;
};

} // namespace quorvane

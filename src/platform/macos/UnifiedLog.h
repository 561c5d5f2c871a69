#pragma once

#include "foundation/SystemLog.h"

namespace quorvane {

/// The unified log: subsystem "com.quorvane", category "app", the default type, public text. Any
/// thread.
class UnifiedLog final : public SystemLog {
  public:
    UnifiedLog();
    void log(const QString& message) override;

  private:
    void* const log_; ///< lives as long as the process
};

} // namespace quorvane

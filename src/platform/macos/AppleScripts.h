#pragma once

#include "library/PhotosAppScripts.h"

#include <mutex>

namespace quorvane {

/// Programs for the Photos application, run as Apple events. The first one has the system ask the
/// person whether Quorvane may control Photos. On the calling thread, one at a time.
class AppleScripts final : public PhotosAppScripts {
  public:
    QString run(const QString& program) override;

  private:
    std::mutex mutex_; ///< the interpreter is not re-entrant
};

} // namespace quorvane

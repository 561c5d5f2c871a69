#pragma once

#include "emulator/EmulatorTypes.h"
#include "foundation/Date.h"

namespace quorvane::emulator {

/// Counts the requests to the library per day of Pacific time. Not shared between threads.
class Quota {
  public:
    /// One more. Throws `Refusal` beyond what the day allows.
    void spend(const Behaviour& behaviour, Date now);

  private:
    std::int64_t day_ = 0; ///< Julian day
    std::int64_t spent_ = 0;
};

} // namespace quorvane::emulator

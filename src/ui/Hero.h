#pragma once

#include "sync/ProductState.h"
#include "ui/DashboardTypes.h"

namespace quorvane {

/// What the window says of the state, beyond what the state follows from.
struct HeroFacts {
    ProductFacts product;
    int completed = 0; ///< of the run
    int total = 0;
    QString speed;
    std::optional<std::chrono::seconds> timeLeft;
    std::optional<Date> lastSync;
    Date waitingSince{}; ///< while the run waits
    Date now{};
    bool isRetryOffered = false;
    int onlyInCloud = 0; ///< left out until Photos downloads them
    int elsewhere = 0;   ///< left out: their originals are outside the library, and not found
};

/// Pure: the same facts are always drawn alike.
HeroView heroOf(const HeroFacts& facts);

} // namespace quorvane

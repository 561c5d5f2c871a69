#pragma once

#include "foundation/Date.h"

namespace quorvane {

/// The instant at which the day of `now` ends on the American west coast: Google counts requests by
/// those days.
Date nextPacificMidnight(Date now);

} // namespace quorvane

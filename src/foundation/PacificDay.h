#pragma once

#include "foundation/Date.h"

#include <QDate>

namespace quorvane {

/// The days of the American west coast, by which Google counts requests.

/// The day of `instant`.
QDate pacificDate(Date instant);

/// The instant at which that day ends.
Date nextPacificMidnight(Date instant);

} // namespace quorvane

#pragma once

#include "app/Figures.h"

#include <QJsonObject>

namespace quorvane::cli {

/// Rows of a table; nothing for a figure that is not told.
QString rowsOf(const std::vector<Figure>& figures);
QJsonObject jsonOf(const std::vector<Figure>& figures);

} // namespace quorvane::cli

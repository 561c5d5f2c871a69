#pragma once

#include "store/RecordRemainders.h"

#include <QJsonObject>

namespace quorvane::cli {

/// What stays in the library alone: rows of a table, nothing for none, and the same as JSON.
QString remainderRows(const RemainderCounts& counts);
QJsonObject remainderJson(const RemainderCounts& counts);

} // namespace quorvane::cli

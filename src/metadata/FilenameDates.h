#pragma once

#include "foundation/Date.h"

#include <QString>

#include <optional>

/// What the names of files tell. Any thread.
namespace quorvane {

/// A staged file's name without the asset's identifier in front; any other name as it is.
QString stripSafeIDPrefix(const QString& name);

/// The local identifier in front of a staged file's name ("UUID/L0/001", or a bare UUID).
std::optional<QString> identifierOfStagedName(const QString& name);

/// The date that a camera, a messenger or a screen shot wrote into a file's name, as this
/// computer's local time; a day without a time means noon.
std::optional<Date> parseDateFromFilename(const QString& name);

} // namespace quorvane

#pragma once

#include "metadata/MetadataTypes.h"

#include <QString>

#include <optional>

/// What the names of files tell. Any thread.
namespace quorvane {

/// A staged file's name without the asset's identifier in front; any other name as it is.
QString stripSafeIDPrefix(const QString& name);

/// The local identifier in front of a staged file's name ("UUID/L0/001", or a bare UUID).
std::optional<QString> identifierOfStagedName(const QString& name);

/// The date that a camera, a messenger, a screen shot or a person wrote into a file's name, as this
/// computer's local time; a day without a time means noon. A number that may be a Unix time, not
/// after `now`, is a source of its own.
std::optional<ResolvedDate> parseDateFromFilename(const QString& name, Date now);

} // namespace quorvane

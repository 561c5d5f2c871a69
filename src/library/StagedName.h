#pragma once

#include <QString>

#include <filesystem>

/// Names of staged files: "<safeId>_<resourceFilename>".
namespace quorvane {

/// The asset's local identifier with every "/" replaced by "_".
QString safeId(const QString& localIdentifier);

/// The staged name of a resource. The resource's name is kept as it is, except that "/" and NUL
/// become "_" and that a name too long for the file system (and for the hidden sibling a rewrite
/// needs) loses the end of its base; the extension stays.
std::filesystem::path stagedFileName(const QString& localIdentifier,
                                     const QString& resourceFilename);

} // namespace quorvane

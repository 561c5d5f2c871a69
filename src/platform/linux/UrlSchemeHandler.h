#pragma once

#include "platform/linux/DesktopEnvironment.h"

#include <QString>

namespace quorvane {

/// Makes the user's desktop hand URLs of `scheme` to "quorvane-cli handle-url": a desktop entry
/// in the user's applications (freedesktop.org desktop entries) and a default in mimeapps.list
/// (Association between MIME types and applications). Writes only what is missing or outdated.
/// Throws `FileError`.
void installUrlSchemeHandler(const QString& scheme, const DesktopEnvironment& environment);

} // namespace quorvane

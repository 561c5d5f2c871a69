#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane::emulator {

/// The MIME type of a picture or movie by its first bytes; none for anything else. At least 32
/// bytes are wanted of a longer file.
std::optional<QString> mediaFormatOf(QByteArrayView start);

} // namespace quorvane::emulator

#pragma once

#include <QByteArray>

#include <filesystem>

namespace quorvane {

/// The MIME type by the file name's extension, in either case; "application/octet-stream" for one
/// that is not known.
QByteArray mimeType(const std::filesystem::path& file);

} // namespace quorvane

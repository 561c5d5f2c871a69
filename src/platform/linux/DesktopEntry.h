#pragma once

#include <QByteArray>

#include <filesystem>

namespace quorvane {

/// A path as an argument of a desktop entry's Exec line (freedesktop.org desktop entries): quoted,
/// and escaped once as an argument, once as a text.
QByteArray desktopExecArgument(const std::filesystem::path& path);

} // namespace quorvane

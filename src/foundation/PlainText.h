#pragma once

#include <QString>

namespace quorvane {

/// What file names and the network say may hold what a terminal would obey.
enum class Lines { one, several };

/// `text` with every control character but the tab, and of several lines their ends, made visible
/// as U+FFFD.
QString plainText(QString text, Lines lines);

} // namespace quorvane

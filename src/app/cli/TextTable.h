#pragma once

#include <QString>

namespace quorvane::cli {

/// One line of a two-column table: the label in a column of `width` characters, then the value.
inline QString tableRow(const QString& label, const QString& value, int width = 26) {
    return QStringLiteral("  %1 %2\n").arg(label.leftJustified(width), value);
}

} // namespace quorvane::cli

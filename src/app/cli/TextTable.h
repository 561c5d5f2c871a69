#pragma once

#include <QLocale>
#include <QString>

namespace quorvane::cli {

/// One line of a two-column table: the label in a column of `width` characters, then the value.
inline QString tableRow(const QString& label, const QString& value, int width = 26) {
    return QStringLiteral("  %1 %2\n").arg(label.leftJustified(width), value);
}

/// "20.000"
inline QString countText(qint64 count) {
    return QLocale(QLocale::Turkish, QLocale::Turkey).toString(count);
}

inline QString countRow(const QString& label, qint64 count) {
    return tableRow(label, countText(count));
}

} // namespace quorvane::cli

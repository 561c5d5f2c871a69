#pragma once

#include <QJsonObject>
#include <QString>

namespace quorvane::cli {

/// How many assets are left out because their original is not on this machine.
struct AbsenceCounts {
    int onlyInCloud = 0;
    int elsewhere = 0;

    /// Rows of a table with what the person can do; nothing for none.
    QString rows() const;
    QJsonObject json() const;
};

} // namespace quorvane::cli

#pragma once

#include "foundation/Date.h"

#include <QString>
#include <QUuid>

namespace quorvane {

enum class LogLevel { info, network, success, warning, error };

/// The level that a message's words imply: the first matching rule wins.
LogLevel levelOf(const QString& message);

struct LogEntry {
    QUuid id;
    Date timestamp;
    QString message; ///< as the caller wrote it
    LogLevel level = LogLevel::info;
    QString about = {}; ///< the identifier of the asset that it speaks of; empty for none
};

} // namespace quorvane

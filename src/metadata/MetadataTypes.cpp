#include "metadata/MetadataTypes.h"

namespace quorvane {

QString rawValue(DateFallbackMode mode) {
    switch (mode) {
    case DateFallbackMode::fileSaveDate:
        return QStringLiteral("fileSaveDate");
    case DateFallbackMode::today:
        return QStringLiteral("today");
    case DateFallbackMode::strictNone:
        break;
    }
    return QStringLiteral("strictNone");
}

std::optional<DateFallbackMode> dateFallbackModeFrom(const QString& rawValue) {
    for (const auto mode :
         {DateFallbackMode::strictNone, DateFallbackMode::fileSaveDate, DateFallbackMode::today})
        if (rawValue == quorvane::rawValue(mode))
            return mode;
    return std::nullopt;
}

} // namespace quorvane

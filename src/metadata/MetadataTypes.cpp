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

QString rawValue(DateSource source) {
    switch (source) {
    case DateSource::chosen:
        return QStringLiteral("chosen");
    case DateSource::asset:
        return QStringLiteral("asset");
    case DateSource::photosDatabase:
        return QStringLiteral("photosDatabase");
    case DateSource::embedded:
        return QStringLiteral("embedded");
    case DateSource::fileName:
        return QStringLiteral("fileName");
    case DateSource::numberInName:
        return QStringLiteral("numberInName");
    case DateSource::fileSaveDate:
        return QStringLiteral("fileSaveDate");
    case DateSource::today:
        break;
    }
    return QStringLiteral("today");
}

QString sourceText(DateSource source) {
    switch (source) {
    case DateSource::chosen:
        return QStringLiteral("sizin verdiğiniz tarih");
    case DateSource::asset:
        return QStringLiteral("arşivin kendisi");
    case DateSource::photosDatabase:
        return QStringLiteral("Fotoğraflar veritabanı");
    case DateSource::embedded:
        return QStringLiteral("dosyanın içi");
    case DateSource::fileName:
        return QStringLiteral("dosyanın adı");
    case DateSource::numberInName:
        return QStringLiteral("addaki sayı");
    case DateSource::fileSaveDate:
        return QStringLiteral("dosyanın kaydedildiği gün");
    case DateSource::today:
        break;
    }
    return QStringLiteral("yüklendiği gün");
}

std::optional<DateSource> dateSourceFrom(const QString& rawValue) {
    for (const auto source : {DateSource::chosen, DateSource::asset, DateSource::photosDatabase,
                              DateSource::embedded, DateSource::fileName, DateSource::numberInName,
                              DateSource::fileSaveDate, DateSource::today})
        if (rawValue == quorvane::rawValue(source))
            return source;
    return std::nullopt;
}

} // namespace quorvane

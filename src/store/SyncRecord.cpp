#include "store/SyncRecord.h"

#include <algorithm>

namespace quorvane {

namespace {

struct StatusName {
    SyncStatus status;
    const char* name;
};

constexpr std::array statusNames{
    StatusName{SyncStatus::discovered, "DISCOVERED"},
    StatusName{SyncStatus::staged, "STAGED"},
    StatusName{SyncStatus::uploading, "UPLOADING"},
    StatusName{SyncStatus::verified, "VERIFIED"},
    StatusName{SyncStatus::deletedLocally, "DELETED_LOCALLY"},
    StatusName{SyncStatus::failed, "FAILED"},
    StatusName{SyncStatus::excluded, "EXCLUDED"},
    StatusName{SyncStatus::dateUnresolved, "DATE_UNRESOLVED"},
};

FailedCategorySummary categoryOf(const QString& error) {
    const QString lower = error.toLower();
    if (lower.contains(u"cancel"))
        return {QStringLiteral("Durdurulan Aktarımlar"), 0,
                QStringLiteral("Eşitleme durdurulduğu için beklemeye alınan dosyalar"),
                QStringLiteral("pause.circle.fill")};
    if (error.contains(u"limit") || error.contains(u"20.000") ||
        error.contains(u"maximum number of photos"))
        return {QStringLiteral("Albüm Sınırı Aşıldı"), 0,
                QStringLiteral("Google Photos 20.000 albüm kapasitesine ulaşıldı"),
                QStringLiteral("exclamationmark.circle.fill")};
    if (lower.contains(u"offline") || lower.contains(u"connection") || error.contains(u"HTTP"))
        return {QStringLiteral("Geçici Ağ / Sunucu Hatası"), 0,
                QStringLiteral("İnternet kesintisi veya Google sunucu yoğunluğu"),
                QStringLiteral("wifi.exclamationmark")};
    return {QStringLiteral("Diğer Hatalar"), 0, QStringLiteral("Teknik hata nedeniyle yüklenemedi"),
            QStringLiteral("questionmark.circle.fill")};
}

} // namespace

QString rawValue(SyncStatus status) {
    const auto* found = std::ranges::find(statusNames, status, &StatusName::status);
    return QString::fromLatin1(found->name);
}

std::optional<SyncStatus> syncStatusFrom(const QString& rawValue) {
    for (const auto& entry : statusNames)
        if (rawValue == QLatin1String(entry.name))
            return entry.status;
    return std::nullopt;
}

QString rawValue(MediaType type) {
    switch (type) {
    case MediaType::video:
        return QStringLiteral("video");
    case MediaType::livePhoto:
        return QStringLiteral("live_photo");
    case MediaType::photo:
        break;
    }
    return QStringLiteral("photo");
}

std::optional<MediaType> mediaTypeFrom(const QString& rawValue) {
    for (const auto type : {MediaType::photo, MediaType::video, MediaType::livePhoto})
        if (rawValue == quorvane::rawValue(type))
            return type;
    return std::nullopt;
}

std::vector<FailedCategorySummary>
summarizeFailures(const std::vector<std::pair<QString, int>>& countsByError) {
    std::vector<FailedCategorySummary> summaries;
    for (const auto& [error, count] : countsByError) {
        const FailedCategorySummary category = categoryOf(error);
        auto found = std::ranges::find(summaries, category.categoryName,
                                       &FailedCategorySummary::categoryName);
        if (found == summaries.end())
            found = summaries.insert(found, category);
        found->count += count;
    }
    std::ranges::stable_sort(summaries, std::greater(), &FailedCategorySummary::count);
    return summaries;
}

} // namespace quorvane

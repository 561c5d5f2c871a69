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

FailedCategorySummary categoryOf(const QString& name, const QString& explanation,
                                 const QString& symbol) {
    return {name, 0, explanation, symbol};
}

FailedCategorySummary fullAlbum() {
    return categoryOf(QStringLiteral("Albüm Sınırı Aşıldı"),
                      QStringLiteral("Google Photos 20.000 albüm kapasitesine ulaşıldı"),
                      QStringLiteral("exclamationmark.circle.fill"));
}

FailedCategorySummary passingFault() {
    return categoryOf(QStringLiteral("Geçici Ağ / Sunucu Hatası"),
                      QStringLiteral("İnternet kesintisi veya Google sunucu yoğunluğu"),
                      QStringLiteral("wifi.exclamationmark"));
}

FailedCategorySummary thisComputer() {
    return categoryOf(QStringLiteral("Bu Bilgisayar"),
                      QStringLiteral("Disk, arşiv veya durum veritabanı kullanılamadı"),
                      QStringLiteral("exclamationmark.circle.fill"));
}

FailedCategorySummary categoryOf(FaultCode fault) {
    const QString warning = QStringLiteral("exclamationmark.circle.fill");
    if (fault == FaultCode::albumFull)
        return fullAlbum();
    if (fault == FaultCode::tooLarge)
        return categoryOf(QStringLiteral("Çok Büyük Dosyalar"),
                          QStringLiteral("Google Photos bu boyutta dosya kabul etmez"), warning);
    if (fault == FaultCode::fileTrouble)
        return thisComputer();
    switch (kindOf(fault)) {
    case FaultKind::moment:
        return passingFault();
    case FaultKind::day:
        return categoryOf(QStringLiteral("Günlük İstek Sınırı"),
                          QStringLiteral("Google'ın günlük istek sınırı dolmuştu"), warning);
    case FaultKind::session:
        return categoryOf(QStringLiteral("Oturum Sona Erdi"),
                          QStringLiteral("Google oturumu yenilenmeden yüklenemez"), warning);
    case FaultKind::account:
        return categoryOf(QStringLiteral("Google Hesabı"),
                          QStringLiteral("Hesabın alanı dolu veya izni yok"), warning);
    case FaultKind::target:
        return categoryOf(QStringLiteral("Hedef Albüm Yok"),
                          QStringLiteral("Seçili Google Photos albümü bulunamadı"), warning);
    case FaultKind::machine:
        return thisComputer();
    case FaultKind::item:
        break;
    }
    return categoryOf(QStringLiteral("Google'ın Geri Çevirdikleri"),
                      QStringLiteral("Google Photos bu dosyaları kabul etmedi"), warning);
}

/// For a text of which nobody knows the fault.
FailedCategorySummary categoryOf(const QString& error) {
    const QString lower = error.toLower();
    if (lower.contains(u"cancel"))
        return {QStringLiteral("Durdurulan Aktarımlar"), 0,
                QStringLiteral("Eşitleme durdurulduğu için beklemeye alınan dosyalar"),
                QStringLiteral("pause.circle.fill")};
    if (error.contains(u"limit") || error.contains(u"20.000") ||
        error.contains(u"maximum number of photos"))
        return fullAlbum();
    if (lower.contains(u"offline") || lower.contains(u"connection") || error.contains(u"HTTP"))
        return passingFault();
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

FailedCategorySummary categoryOf(const FailureCount& failure) {
    return failure.fault ? categoryOf(*failure.fault) : categoryOf(failure.error);
}

std::vector<FailedCategorySummary> summarizeFailures(const std::vector<FailureCount>& failures) {
    std::vector<FailedCategorySummary> summaries;
    for (const FailureCount& failure : failures) {
        const FailedCategorySummary category = categoryOf(failure);
        auto found = std::ranges::find(summaries, category.categoryName,
                                       &FailedCategorySummary::categoryName);
        if (found == summaries.end())
            found = summaries.insert(found, category);
        found->count += failure.count;
    }
    std::ranges::stable_sort(summaries, std::greater(), &FailedCategorySummary::count);
    return summaries;
}

} // namespace quorvane

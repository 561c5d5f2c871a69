#include "library/SafeDeletionService.h"

#include <algorithm>
#include <map>
#include <set>

namespace quorvane {

namespace {

constexpr int identifiersShown = 20;

bool isSafelyStored(const SyncRecord& record) {
    return record.syncStatus == SyncStatus::verified && record.remoteMediaID &&
           !record.remoteMediaID->isEmpty();
}

/// "A, B, C (+12)"
QString listed(const QStringList& identifiers) {
    QString text = identifiers.mid(0, identifiersShown).join(QStringLiteral(", "));
    if (identifiers.size() > identifiersShown)
        text += QStringLiteral(" (+%1)").arg(identifiers.size() - identifiersShown);
    return text;
}

/// What was backed up is the asset as it was when it was discovered: one that changed later, or
/// another file under the same name, has no copy yet. The store's times are whole seconds, so one
/// that changed in the very second of its discovery counts as changed.
bool changedSince(const PhotoAsset& asset, const std::vector<const SyncRecord*>& records) {
    return asset.modificationDate &&
           std::any_of(records.begin(), records.end(), [&](const SyncRecord* record) {
               return *asset.modificationDate >= record->createdAt;
           });
}

} // namespace

SafeDeletionService::SafeDeletionService(DatabaseManager& database, AssetStagingService& staging,
                                         PhotoLibrary& library, Log& log)
    : database_(database), staging_(staging), library_(library), log_(log) {}

void SafeDeletionService::performDeletion(bool deletionEnabled, std::stop_token stop) noexcept {
    if (!deletionEnabled) {
        log_.log(QStringLiteral("[SafeDeletion] Otomatik silme kapalı, işlem atlandı."));
        return;
    }
    const std::vector<SyncRecord> candidates = deletionCandidates();
    if (candidates.empty()) {
        log_.log(QStringLiteral("[SafeDeletion] Silinecek VERIFIED aday bulunamadı."));
        return;
    }
    log_.log(
        QStringLiteral("[SafeDeletion] %1 silme adayı bulundu, güvenlik doğrulaması yapılıyor...")
            .arg(candidates.size()));
    const QStringList passing = safelyStored(candidates);
    if (passing.isEmpty()) {
        log_.log(QStringLiteral("[SafeDeletion] Güvenlik kontrolünden geçen aday yok "
                                "(Zero-Data-Loss koruması devrede)."));
        return;
    }
    log_.log(QStringLiteral("[SafeDeletion] %1 doğrulanmış medya için Apple Photos sistem onayına "
                            "sunuluyor...")
                 .arg(passing.size()));
    deleteFromPhotoLibrary(passing, candidates, stop);
}

/// A store that fails has no candidates: a broken store never leads to a deletion.
std::vector<SyncRecord> SafeDeletionService::deletionCandidates() {
    try {
        return database_.fetchVerifiedForDeletion();
    } catch (const std::exception&) {
        return {};
    }
}

/// The candidates are only the good records of an asset, so the store is asked for all of them.
QStringList SafeDeletionService::safelyStored(const std::vector<SyncRecord>& candidates) {
    std::set<QString> seen;
    QStringList identifiers;
    for (const SyncRecord& candidate : candidates) {
        const QString& identifier = candidate.assetLocalIdentifier;
        if (!seen.insert(identifier).second)
            continue;
        try {
            const std::vector<SyncRecord> records = database_.fetchRecordsOfAsset(identifier);
            if (!records.empty() && std::all_of(records.begin(), records.end(), isSafelyStored))
                identifiers.append(identifier);
        } catch (const std::exception&) {
            return {}; // a broken store again
        }
    }
    return identifiers;
}

void SafeDeletionService::deleteFromPhotoLibrary(const QStringList& identifiers,
                                                 const std::vector<SyncRecord>& records,
                                                 const std::stop_token& stop) {
    std::map<QString, std::vector<const SyncRecord*>> recordsOfAsset;
    for (const SyncRecord& record : records)
        recordsOfAsset[record.assetLocalIdentifier].push_back(&record);
    QStringList changed;
    try {
        const AssetFetchResult found = library_.fetchAssets(identifiers);
        if (!found || found->empty()) {
            log_.log(QStringLiteral("[SafeDeletion] PHAsset bulunamadı: ") + listed(identifiers));
            return;
        }
        std::vector<PhotoAsset> assets;
        for (const PhotoAsset& asset : *found)
            if (changedSince(asset, recordsOfAsset[asset.localIdentifier]))
                changed += asset.localIdentifier;
            else
                assets.push_back(asset);
        if (!changed.isEmpty())
            log_.log(QStringLiteral(
                         "[SafeDeletion] ⚠️ Yedeklendikten sonra değişmiş, silinmeyecek: ") +
                     listed(changed));
        if (assets.empty() || stop.stop_requested())
            return;
        library_.deleteAssets(assets);
    } catch (const std::exception& error) {
        log_.log(
            QStringLiteral(
                "[SafeDeletion] ℹ️ Sistem silme diyaloğu iptal edildi veya reddedildi: ") +
            describe(error));
        return;
    }
    for (const QString& identifier : identifiers)
        if (!changed.contains(identifier))
            recordDeletion(identifier, recordsOfAsset[identifier]);
}

void SafeDeletionService::recordDeletion(const QString& identifier,
                                         const std::vector<const SyncRecord*>& records) {
    for (const SyncRecord* record : records) {
        try {
            database_.updateStatus(identifier, record->providerID, record->accountID,
                                   SyncStatus::deletedLocally);
        } catch (const std::exception& error) {
            log_.log(QStringLiteral("[SafeDeletion] ⚠️ DB güncelleme hatası: ") +
                     describe(error));
        }
    }
    staging_.removeFromStaging(identifier);
    log_.log(QStringLiteral("[SafeDeletion] ✅ Güvenle silindi ve staging temizlendi: ") +
             identifier);
}

} // namespace quorvane

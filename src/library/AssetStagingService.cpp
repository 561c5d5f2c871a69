#include "library/AssetStagingService.h"

#include "foundation/File.h"
#include "store/StateFacts.h"

#include <algorithm>

namespace quorvane {

namespace {

/// How many pending records one call looks at.
constexpr size_t recordsPerCall = 10;

} // namespace

AssetStagingService::AssetStagingService(Services services, const StatePlace& place,
                                         std::filesystem::path lockFile)
    : s_(services),
      lockFile_(std::move(lockFile)),
      copies_(place, services.database),
      one_(services, copies_) {
    if (!copies_.create())
        s_.console.notice(
            QStringLiteral("[Staging] Geçici klasör bu kullanıcıya özel değil, kullanılmayacak: ") +
            pathText(place.temporaryStaging));
}

void AssetStagingService::stageDiscoveredAssets(std::stop_token stop) {
    std::vector<SyncRecord> records;
    try {
        const std::lock_guard lock(mutex_);
        records = recordsToStage();
    } catch (const DBError& error) {
        s_.console.notice(QStringLiteral("[Staging] Bekleyen kayıtlar okunamadı: ") +
                          error.localizedDescription());
    }
    for (const SyncRecord& record : records) {
        if (stop.stop_requested())
            throw Cancelled();
        try {
            const std::lock_guard lock(mutex_);
            const FileLock processLock(lockFile_, stop);
            const auto source = one_.sourceOf(record.assetLocalIdentifier);
            if (source && !mayBeKnown(source->resource))
                one_.stage(record, stop);
        } catch (const Error& error) {
            one_.printError(record.assetLocalIdentifier, error.localizedDescription());
        }
    }
}

/// Records whose asset was missing would fill the ten places for ever and keep all younger ones
/// from being staged. So they take no place, and at most ten of them, in turn, are tried again.
std::vector<SyncRecord> AssetStagingService::recordsToStage() {
    const std::vector<SyncRecord> pending = s_.database.fetchPendingRecords(
        static_cast<int>(recordsPerCall + one_.unavailable().size()));
    const auto wasMissing = [this](const SyncRecord& record) {
        return one_.unavailable().contains(record.assetLocalIdentifier);
    };
    const auto missingCount =
        static_cast<size_t>(std::count_if(pending.begin(), pending.end(), wasMissing));
    const size_t turns = std::max<size_t>(1, (missingCount + recordsPerCall - 1) / recordsPerCall);
    const size_t turn = passes_++ % turns;
    size_t missingSeen = 0;
    size_t places = recordsPerCall;
    std::vector<SyncRecord> due;
    for (const SyncRecord& record : pending) {
        bool isDue = false;
        if (wasMissing(record)) {
            isDue = missingSeen++ % turns == turn;
        } else if (places > 0) {
            isDue = true;
            --places;
        }
        if (isDue && record.syncStatus == SyncStatus::discovered)
            due.push_back(record);
    }
    return due;
}

bool AssetStagingService::mayBeKnown(const PhotoAssetResource& resource) {
    const auto sample = s_.library.sampleOf(resource);
    return sample && s_.known.hasSample(*sample);
}

std::optional<StagedFile> AssetStagingService::stage(const SyncRecord& record,
                                                     const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    const FileLock processLock(lockFile_, stop);
    if (stop.stop_requested())
        throw Cancelled();
    auto file = one_.stage(record, stop);
    if (file)
        file->caption = captionOf(record.assetLocalIdentifier);
    return file;
}

/// Without its caption an item is still worth sending.
QString AssetStagingService::captionOf(const QString& identifier) {
    try {
        return s_.library.captionOf(identifier);
    } catch (const PhotoLibraryError& error) {
        one_.printError(identifier, error.localizedDescription());
        return {};
    }
}

std::optional<std::filesystem::path>
AssetStagingService::findStagingFile(const QString& identifier) {
    const std::lock_guard lock(mutex_);
    return copies_.find(identifier);
}

void AssetStagingService::removeFromStaging(const QString& identifier) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        const FileLock processLock(lockFile_);
        copies_.removeAll(identifier);
    } catch (const std::exception& error) { // the copy stays a while longer
        one_.printError(identifier, describe(error));
    }
}

bool AssetStagingService::discard(const QString& identifier) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        const FileLock processLock(lockFile_);
        one_.discard(identifier);
        return true;
    } catch (const std::exception& error) { // nothing is lost
        one_.printError(identifier, describe(error));
        return false;
    }
}

void AssetStagingService::wasSent(const QString& identifier) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        copies_.wasSent(identifier);
    } catch (const std::exception& error) { // the copy stays a while longer
        one_.printError(identifier, describe(error));
    }
}

MetadataResult AssetStagingService::ensureMetadata(StagedFile& file, const SyncRecord& record,
                                                   DateFallbackMode fallbackMode,
                                                   const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    const FileLock processLock(lockFile_, stop);
    return one_.redate(file, record, fallbackMode, stop);
}

/// The manner is written down last: a change that was cut short is made again.
void AssetStagingService::settleForm(const QString& form) {
    const std::lock_guard lock(mutex_);
    const FileLock processLock(lockFile_);
    StateFacts facts(s_.database);
    if (facts.form() == form)
        return;
    for (const SyncStatus status : {SyncStatus::staged, SyncStatus::discovered})
        for (const SyncRecord& record : s_.database.fetchRecords(status))
            if (record.sha256Hash) {
                one_.discard(record.assetLocalIdentifier);
                s_.life.requeued(record);
            }
    facts.setForm(form);
}

void AssetStagingService::removeLeftovers(const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    const FileLock processLock(lockFile_, stop);
    copies_.removeLeftovers(stop);
}

} // namespace quorvane

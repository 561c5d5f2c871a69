#include "library/AssetStagingService.h"

#include "foundation/Crypto.h"
#include "foundation/File.h"
#include "library/StagedName.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

/// How many pending records one call looks at.
constexpr size_t recordsPerCall = 10;
constexpr qsizetype chunkSize = 1 << 20;

/// True when a staged file is there. Something else in its place is refused: what a link leads to
/// is not ours to rewrite.
bool isStaged(const std::filesystem::path& file) {
    struct stat info {};
    if (::lstat(file.c_str(), &info) != 0)
        return false;
    if (!S_ISREG(info.st_mode))
        throw FileError(QStringLiteral("Hazırlık dosyası yerinde başka bir şey var"), file, EEXIST);
    return true;
}

} // namespace

std::optional<PhotoAssetResource>
resourceToStage(const std::vector<PhotoAssetResource>& resources) {
    for (const PhotoAssetResource& resource : resources)
        if (resource.type == AssetResourceType::photo ||
            resource.type == AssetResourceType::video ||
            resource.type == AssetResourceType::fullSizePhoto)
            return resource;
    return std::nullopt;
}

AssetStagingService::AssetStagingService(PhotoLibrary& library, DatabaseManager& database,
                                         MediaMetadataService& metadata, const UserFolders& folders,
                                         Console& console)
    : library_(library),
      database_(database),
      metadata_(metadata),
      console_(console),
      permanent_(folders.permanentStaging(), StagingFolder::Access::any),
      temporary_(folders.temporaryStaging, StagingFolder::Access::privateOnly) {
    permanent_.create();
    temporary_.create();
    if (!temporary_.isUsable())
        console_.print(
            QStringLiteral("[Staging] Geçici klasör bu kullanıcıya özel değil, kullanılmayacak: ") +
            pathText(temporary_.path()));
}

void AssetStagingService::stageDiscoveredAssets(std::stop_token stop) {
    std::vector<SyncRecord> records;
    try {
        records = recordsToStage();
    } catch (const DBError& error) {
        console_.print(QStringLiteral("[Staging] Bekleyen kayıtlar okunamadı: ") +
                       error.localizedDescription());
    }
    stageDiscoveredAssets(records, stop);
}

void AssetStagingService::stageDiscoveredAssets(const std::vector<SyncRecord>& records,
                                                std::stop_token stop) {
    for (const SyncRecord& record : records) {
        const std::lock_guard lock(mutex_);
        if (stop.stop_requested())
            throw Cancelled();
        stageAsset(record, stop);
    }
}

/// Records whose asset was missing would fill the ten places for ever and keep all younger ones
/// from being staged. So they take no place, and at most ten of them, in turn, are tried again.
std::vector<SyncRecord> AssetStagingService::recordsToStage() {
    const std::lock_guard lock(mutex_);
    const std::vector<SyncRecord> pending =
        database_.fetchPendingRecords(static_cast<int>(recordsPerCall + unavailable_.size()));
    const auto wasMissing = [this](const SyncRecord& record) {
        return unavailable_.contains(record.assetLocalIdentifier);
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

void AssetStagingService::stageAsset(const SyncRecord& record, const std::stop_token& stop) {
    const QString& identifier = record.assetLocalIdentifier;
    std::optional<Source> source;
    try {
        // Another caller may have staged it since the records were read.
        if (!database_.ifStatusIs(SyncStatus::discovered, record, [] {}))
            return;
        source = sourceOf(identifier);
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception& error) { // the store or the library cannot be read
        printError(identifier, describe(error));
        return; // nothing was tried yet: the record stays as it is
    }
    if (!source)
        return;
    unavailable_.erase(identifier);
    try {
        exportAndRecord(record, *source, stop);
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception& error) {
        printError(identifier, describe(error));
        recordFailure(record, describe(error));
    }
}

std::optional<AssetStagingService::Source>
AssetStagingService::sourceOf(const QString& identifier) {
    const AssetFetchResult assets = library_.fetchAssets(QStringList{identifier});
    if (!assets || assets->empty()) {
        missing(QStringLiteral("Asset"), identifier);
        return std::nullopt;
    }
    const auto resource = resourceToStage(library_.assetResources(assets->front()));
    if (!resource) {
        missing(QStringLiteral("Resource"), identifier);
        return std::nullopt;
    }
    return Source{assets->front(), *resource};
}

void AssetStagingService::exportAndRecord(const SyncRecord& record, const Source& source,
                                          const std::stop_token& stop) {
    StagingFolder& folder = folderForStaging();
    const std::filesystem::path name =
        stagedFileName(record.assetLocalIdentifier, source.resource.originalFilename);
    const std::filesystem::path file = folder.path() / name;
    const StagingFolder::OwnChange change(folder, name);
    try {
        if (!isStaged(file))
            library_.writeData(source.resource, file, stop);
        // Without a fallback: whether a file with no date may be uploaded is decided by the sync.
        metadata_.ensureMetadata(file, source.asset.facts(), std::nullopt,
                                 DateFallbackMode::strictNone);
        const HashAndSize content = computeHashAndSize(file, stop);
        console_.print(
            QStringLiteral("[Staging] Tamamlandı (Metadata Enjekte Edildi): %1 (%2 bytes)")
                .arg(source.resource.originalFilename, QString::number(content.sizeBytes)));
        SyncRecord staged = record;
        staged.sha256Hash = content.sha256;
        staged.fileSizeBytes = content.sizeBytes;
        staged.uploadToken.reset();
        staged.syncStatus = SyncStatus::staged;
        // A record that was cleared or moved on meanwhile must not be brought back to this state.
        database_.ifStatusIs(SyncStatus::discovered, record,
                             [&] { database_.upsertRecord(staged); });
    } catch (const Cancelled&) {
        throw;
    } catch (...) {
        ::unlink(file.c_str());
        throw;
    }
}

void AssetStagingService::recordFailure(const SyncRecord& record, const QString& reason) {
    try {
        database_.ifStatusIs(SyncStatus::discovered, record, [&] {
            database_.updateStatus(record.assetLocalIdentifier, record.providerID, record.accountID,
                                   SyncStatus::failed, std::nullopt, std::nullopt, reason);
        });
    } catch (const DBError& error) {
        printError(record.assetLocalIdentifier, error.localizedDescription());
    }
}

void AssetStagingService::missing(const QString& what, const QString& identifier) {
    unavailable_.insert(identifier);
    console_.print(QStringLiteral("[Staging] %1 bulunamadı: ").arg(what) + identifier);
}

void AssetStagingService::printError(const QString& identifier, const QString& reason) {
    console_.print(QStringLiteral("[Staging] Hata ") + identifier + QStringLiteral(": ") + reason);
}

StagingFolder& AssetStagingService::folderForStaging() {
    if (permanent_.isUsable())
        return permanent_;
    if (temporary_.isUsable())
        return temporary_;
    throw Error(QStringLiteral("Hazırlık klasörü yok: ") + pathText(permanent_.path()));
}

bool AssetStagingService::isUnavailable(const QString& identifier) const {
    const std::lock_guard lock(mutex_);
    return unavailable_.contains(identifier);
}

std::optional<std::filesystem::path>
AssetStagingService::findStagingFile(const QString& identifier) {
    const std::lock_guard lock(mutex_);
    const QString prefix = safeId(identifier);
    auto file = permanent_.find(prefix);
    return file ? file : temporary_.find(prefix);
}

void AssetStagingService::removeFromStaging(const QString& identifier) {
    const std::lock_guard lock(mutex_);
    const QString prefix = safeId(identifier);
    permanent_.removeAll(prefix);
    temporary_.removeAll(prefix);
}

MetadataResult AssetStagingService::ensureMetadata(const std::filesystem::path& stagedFile,
                                                   const QString& identifier,
                                                   DateFallbackMode fallbackMode) {
    const std::lock_guard lock(mutex_);
    StagingFolder& folder = stagedFile.parent_path() == temporary_.path() ? temporary_ : permanent_;
    const StagingFolder::OwnChange change(folder, stagedFile.filename());
    return metadata_.ensureMetadata(stagedFile, std::nullopt, identifier, fallbackMode);
}

void AssetStagingService::removeLeftovers(const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    permanent_.removeLeftovers(stop);
    temporary_.removeLeftovers(stop);
}

HashAndSize AssetStagingService::computeHashAndSize(const std::filesystem::path& file,
                                                    std::stop_token stop) {
    const FileDescriptor descriptor = openFile(file, O_RDONLY);
    QByteArray chunk(chunkSize, Qt::Uninitialized);
    Sha256 hash;
    HashAndSize result;
    while (true) {
        if (stop.stop_requested())
            throw Cancelled();
        const ssize_t n = ::read(descriptor.get(), chunk.data(), static_cast<size_t>(chunkSize));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw FileError(QStringLiteral("Dosya okunamadı"), file, errno);
        if (n == 0)
            break;
        hash.add(QByteArrayView(chunk.constData(), n));
        result.sizeBytes += n;
    }
    result.sha256 = QString::fromLatin1(hash.finish().toHex());
    return result;
}

} // namespace quorvane

#include "library/PhotoLibraryObserver.h"

#include "foundation/File.h"
#include "foundation/MainThread.h"
#include "library/Absences.h"
#include "metadata/FilenameDates.h"
#include "store/KnownAssets.h"
#include "store/RecordAbsences.h"

#include <algorithm>

namespace quorvane {

namespace {

const QString wholeLibraryTitle = QStringLiteral("Tüm Kütüphane");

/// None for what is neither a photo nor a video.
std::optional<MediaType> mediaTypeOf(const PhotoAsset& asset) {
    switch (asset.mediaType) {
    case AssetMediaType::video:
        return MediaType::video;
    case AssetMediaType::image:
        return (asset.mediaSubtypes & mediaSubtypePhotoLive) != 0 ? MediaType::livePhoto
                                                                  : MediaType::photo;
    case AssetMediaType::unknown:
    case AssetMediaType::audio:
        break;
    }
    return std::nullopt;
}

bool isRecorded(const PhotoAsset& asset) {
    return mediaTypeOf(asset).has_value();
}

/// A DISCOVERED record; none where none is kept. Its time stamps are the store's.
std::optional<SyncRecord> recordOf(const PhotoAsset& asset) {
    const std::optional<MediaType> type = mediaTypeOf(asset);
    if (!type)
        return std::nullopt;
    SyncRecord record;
    record.assetLocalIdentifier = asset.localIdentifier;
    record.mediaType = *type;
    return record;
}

/// A file in the staging folder, and the asset that it is of.
struct RecoveredFile {
    std::string name;
    AssetIdentifier identifier;
};

/// A STAGED record. Only the still or the movie survives, so a Live Photo comes back as a photo.
SyncRecord recordOf(const RecoveredFile& file, const std::filesystem::path& folder) {
    SyncRecord record;
    record.assetLocalIdentifier = file.identifier;
    const std::filesystem::path path = folder / file.name;
    const QString extension = pathText(path.extension()).toLower();
    const bool isVideo = extension == QLatin1String(".mov") || extension == QLatin1String(".mp4");
    record.mediaType = isVideo ? MediaType::video : MediaType::photo;
    record.syncStatus = SyncStatus::staged;
    if (const auto version = fileVersion(path))
        record.fileSizeBytes = version->size;
    return record;
}

/// What a folder holds of staged files. Hidden temporary files have no staged name; folders and
/// links are not ours. Throws `FileError`.
std::vector<RecoveredFile> recoveredFilesIn(const std::filesystem::path& folder) {
    std::vector<RecoveredFile> files;
    const int error = visitFiles(folder, [&](const std::string& name) {
        if (auto identifier = identifierOfStagedName(pathText(name)))
            files.push_back({name, *std::move(identifier)});
    });
    if (error != 0)
        throw FileError(QStringLiteral("Klasör okunamadı"), folder, error);
    return files;
}

/// Yields the records, as `recordOf` makes them of the items, of those that have none yet. `items`
/// must outlive it.
template <typename Item, typename RecordOf>
DatabaseManager::RecordSource newRecordsOf(const std::vector<Item>& items,
                                           const AssetIdentifier Item::*identifier,
                                           DatabaseManager& database, RecordOf recordOf) {
    std::vector<const AssetIdentifier*> identifiers;
    identifiers.reserve(items.size());
    for (const Item& item : items)
        identifiers.push_back(&(item.*identifier));
    return [&items, recordOf, known = areKnown(identifiers, database),
            next = std::size_t(0)]() mutable {
        std::optional<SyncRecord> record;
        for (; !record && next < items.size(); ++next)
            if (!known[next])
                record = recordOf(items[next]);
        return record;
    };
}

QStringList identifiersOf(const std::vector<PhotoAsset>& assets) {
    QStringList identifiers;
    identifiers.reserve(static_cast<qsizetype>(assets.size()));
    for (const PhotoAsset& asset : assets)
        identifiers += asset.localIdentifier;
    return identifiers;
}

} // namespace

PhotoLibraryObserver::PhotoLibraryObserver(PhotoLibrary& library, DatabaseManager& database,
                                           RecordLife& life, AssetStagingService& staging,
                                           PhotoAlbumService& albums,
                                           const Preferences& preferences, Console& console)
    : library_(library),
      database_(database),
      life_(life),
      staging_(staging),
      albums_(albums),
      preferences_(preferences),
      console_(console),
      alive_(std::make_shared<PhotoLibraryObserver*>(this)) {}

PhotoLibraryObserver::~PhotoLibraryObserver() {
    stopOnMainThread();
}

void PhotoLibraryObserver::start() {
    isMainThread() ? startOnMainThread()
                   : onMainThreadWhileAlive(&PhotoLibraryObserver::startOnMainThread);
}

void PhotoLibraryObserver::stop() {
    isMainThread() ? stopOnMainThread()
                   : onMainThreadWhileAlive(&PhotoLibraryObserver::stopOnMainThread);
}

void PhotoLibraryObserver::onMainThreadWhileAlive(void (PhotoLibraryObserver::*operation)()) {
    onMainThread([observer = std::weak_ptr(alive_), operation] {
        if (const auto self = observer.lock())
            ((*self)->*operation)();
    });
}

void PhotoLibraryObserver::startOnMainThread() {
    library_.registerChangeObserver(*this);
    isRegistered_ = true;
    console_.print(QStringLiteral("[PhotoKit] Observer kayıt edildi"));
    performInitialScan();
}

void PhotoLibraryObserver::stopOnMainThread() {
    if (!isRegistered_)
        return;
    library_.unregisterChangeObserver(*this);
    isRegistered_ = false;
}

void PhotoLibraryObserver::performInitialScan() {
    tasks_.post([this](const std::stop_token& stop) {
        try {
            initialScan(stop);
        } catch (const DBError&) {
            return; // told by then
        } catch (const Error& error) {
            console_.notice(QStringLiteral("[PhotoKit] İlk tarama kitaplık hatası: ") +
                            error.localizedDescription());
        }
    });
}

/// Before the recovery of staged files, which would bring them back.
void PhotoLibraryObserver::discardLeft() {
    try {
        for (const QString& identifier : life_.left())
            if (staging_.discard(identifier))
                life_.discarded(identifier);
    } catch (const DBError& error) { // the next scan asks again
        console_.notice(QStringLiteral("[PhotoKit] Kuyruktan çıkan dosyalar okunamadı: ") +
                        error.localizedDescription());
    }
}

void PhotoLibraryObserver::initialScan(std::stop_token stop) {
    discardLeft();
    reconcilePermanentStagingAssets();
    // A library that cannot be read throws here: the last result stays.
    const auto album = albums_.selectedSourceAlbumID();
    const auto [fetched, assets] = albums_.fetchAssets(album, stop);
    try {
        database_.limitTo(album ? std::optional(identifiersOf(*assets)) : std::nullopt);
    } catch (const DBError& error) {
        tellRefusal(error);
        throw;
    }
    *fetchResult_.lock() = fetched;
    const QString title =
        album ? preferences_.string(preferenceKeys::sourceAlbumTitle).value_or(wholeLibraryTitle)
              : wholeLibraryTitle;
    console_.print(QStringLiteral("[PhotoKit] İlk tarama: %1 medya (%2)")
                       .arg(QString::number(assets->size()), title));
    processInitialAssets(*assets, stop);
}

void PhotoLibraryObserver::tellRefusal(const DBError& error) {
    console_.notice(QStringLiteral("[PhotoKit] İlk tarama DB hatası: ") +
                    error.localizedDescription());
}

/// What it cannot settle now is settled record by record, when it is staged.
void PhotoLibraryObserver::settle(const std::vector<PhotoAsset>& assets,
                                  const std::stop_token& stop) {
    try {
        const int returned = settleAbsences(assets, library_, database_, life_, stop);
        if (returned > 0)
            console_.print(
                QStringLiteral("[PhotoKit] %1 medyanın özgün dosyası artık burada, sıraya alındı")
                    .arg(returned));
    } catch (const Error& error) {
        console_.notice(QStringLiteral("[PhotoKit] Eksik özgün dosyalar ayrılamadı: ") +
                        error.localizedDescription());
    }
}

void PhotoLibraryObserver::reconcilePermanentStagingAssets() {
    std::error_code unreachable;
    if (!std::filesystem::exists(staging_.permanentFolder(), unreachable) && !unreachable)
        return;
    try {
        const std::filesystem::path& folder = staging_.permanentFolder();
        const auto files = recoveredFilesIn(folder);
        if (files.empty())
            return;
        database_.insertStagedBatch(
            newRecordsOf(files, &RecoveredFile::identifier, database_,
                         [&folder](const RecoveredFile& file) { return recordOf(file, folder); }));
        console_.print(QStringLiteral("[PhotoKit] 🔄 Kalıcı staging uzlaştırması: %1 kurtarılmış "
                                      "dosya STAGED olarak korundu")
                           .arg(files.size()));
    } catch (const Error& error) {
        console_.notice(
            QStringLiteral("[PhotoKit] ⚠️ Kalıcı staging uzlaştırma hatası: ") +
            error.localizedDescription());
    }
}

void PhotoLibraryObserver::processInitialAssets(const std::vector<PhotoAsset>& assets,
                                                std::stop_token stop) {
    std::size_t recorded = 0;
    std::optional<DBError> refusal;
    try {
        database_.insertDiscoveredBatch(
            newRecordsOf(assets, &PhotoAsset::localIdentifier, database_,
                         [](const PhotoAsset& asset) { return recordOf(asset); }));
        recorded = static_cast<std::size_t>(std::ranges::count_if(assets, isRecorded));
        console_.print(
            QStringLiteral("[PhotoKit] %1 medya veritabanına atomik olarak eklendi").arg(recorded));
    } catch (const DBError& error) {
        tellRefusal(error);
        refusal = error;
    }
    settle(assets, stop);
    discardLeft();
    assetsRecorded.send({RecordedAssets::Cause::scan, recorded});
    staging_.stageDiscoveredAssets(stop);
    if (refusal)
        throw DBError(*refusal);
}

void PhotoLibraryObserver::processNewAssets(const std::vector<PhotoAsset>& assets,
                                            std::stop_token stop) {
    for (const PhotoAsset& asset : assets) {
        const std::optional<SyncRecord> record = recordOf(asset);
        if (!record)
            continue;
        try {
            database_.insertIfNotExists(*record);
            database_.extendLimit(asset.localIdentifier);
        } catch (const DBError& error) {
            console_.notice(QStringLiteral("[PhotoKit] Kayıt hatası ") + asset.localIdentifier +
                                QStringLiteral(": ") + error.localizedDescription(),
                            asset.localIdentifier);
        }
    }
    settle(assets, stop);
    discardLeft();
    assetsRecorded.send({RecordedAssets::Cause::change, assets.size()});
    staging_.stageDiscoveredAssets(stop);
}

/// The arrival of an original changes no asset.
bool PhotoLibraryObserver::awaitsOriginals() {
    try {
        return !RecordAbsences(database_).counts().empty();
    } catch (const DBError&) {
        return false;
    }
}

void PhotoLibraryObserver::photoLibraryDidChange(const LibraryChange& change) {
    std::vector<PhotoAsset> inserted;
    {
        const auto fetchResult = fetchResult_.lock();
        if (!*fetchResult)
            return;
        auto details = change.changeDetails(*fetchResult);
        if (!details && !awaitsOriginals())
            return;
        if (details) {
            *fetchResult = std::move(details->fetchResultAfterChanges);
            inserted = std::move(details->insertedObjects);
        }
    }
    if (inserted.empty()) {
        assetsRecorded.send({RecordedAssets::Cause::change, 0});
        return;
    }
    console_.print(QStringLiteral("[PhotoKit] %1 yeni medya algılandı").arg(inserted.size()));
    tasks_.post([this, inserted = std::move(inserted)](const std::stop_token& stop) {
        processNewAssets(inserted, stop);
    });
}

} // namespace quorvane

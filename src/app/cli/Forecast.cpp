#include "app/cli/Forecast.h"

#include "app/cli/FigureRows.h"
#include "app/cli/SyncReport.h"
#include "app/cli/TextTable.h"
#include "foundation/File.h"
#include "store/RecordAbsences.h"

#include <algorithm>
#include <map>
#include <set>

namespace quorvane::cli {

namespace {

/// The assets that a run would not touch, with what they are. One that was left out is looked for
/// again.
std::map<QString, SyncStatus> settledAssets(DatabaseManager& db) {
    std::map<QString, SyncStatus> settled;
    const auto absent = RecordAbsences(db).all();
    for (const auto& [identifier, status] : db.fetchStatuses())
        if (status != SyncStatus::discovered && status != SyncStatus::staged &&
            !absent.contains(identifier))
            settled.emplace(identifier, status);
    return settled;
}

bool isHeld(SyncStatus status) {
    return status == SyncStatus::failed || status == SyncStatus::dateUnresolved;
}

void countKind(Forecast& forecast, const PhotoAsset& asset) {
    if (asset.mediaType == AssetMediaType::video)
        ++forecast.videos;
    else if ((asset.mediaSubtypes & mediaSubtypePhotoLive) != 0)
        ++forecast.livePhotos;
    else
        ++forecast.photos;
}

/// The file that would be sent, if any.
std::optional<PhotoAssetResource> countFile(Forecast& forecast, SourceServices& library,
                                            const PhotoAsset& asset, DateFallbackMode fallbackMode,
                                            const std::stop_token& stop) {
    const auto resources = library.library->assetResources(asset);
    auto resource = resourceToStage(resources);
    if (!resource || !resource->fileSize) {
        ++forecast.unavailable;
        return std::nullopt;
    }
    const auto choice = RecordDates(library.state.db).choiceOf(asset.localIdentifier);
    AssetFacts facts = asset.facts();
    if (choice)
        facts.chosenDate = choice->date;
    const std::filesystem::path file = library.path / resource->location;
    MetadataForecast metadata;
    try {
        metadata = library.metadata.wouldEnsureMetadata(
            file, facts, asset.localIdentifier, fallbackMode, resource->originalFilename, stop);
    } catch (const FileError&) {
        ++forecast.unavailable;
        return std::nullopt;
    }
    const bool isSentAsItIs = choice && !choice->date;
    if (metadata.carriesDate || isSentAsItIs) {
        const auto movie = movieToJoin(resources);
        forecast.bytes += *resource->fileSize + (movie ? movie->fileSize.value_or(0) : 0);
        forecast.behind.add(remainderOf(resources));
        return resource;
    }
    ++forecast.undated;
    if (library.metadata.isUndatable(file, resource->originalFilename, stop))
        ++forecast.undatable;
    return std::nullopt;
}

/// How many of the files have the bytes of another, or of what was sent. One is read whole only
/// when its beginning and end are known.
int duplicatesAmong(const std::vector<PhotoAssetResource>& files, SourceServices& library,
                    const std::stop_token& stop) {
    std::map<std::int64_t, std::vector<const PhotoAssetResource*>> bySample;
    for (const PhotoAssetResource& file : files)
        if (const auto sample = library.library->sampleOf(file))
            bySample[*sample].push_back(&file);
    int duplicates = 0;
    for (const auto& [sample, alike] : bySample) {
        if (alike.size() == 1 && !library.state.known.hasSample(sample))
            continue;
        std::set<QString> digests;
        for (const PhotoAssetResource* file : alike) {
            const QString digest = library.library->readContent(*file, stop).sha256;
            const bool isKnown = !library.state.known.find(sample, digest, {}).remoteIDs.isEmpty();
            duplicates += !digests.insert(digest).second || isKnown ? 1 : 0;
        }
    }
    return duplicates;
}

} // namespace

bool Forecast::overflowsTarget() const {
    return targetTitle && targetCount + toUpload() > GoogleAlbum::capacity;
}

Forecast forecast(SourceServices& library, GoogleServices& google, DateFallbackMode fallbackMode,
                  std::stop_token stop) {
    Forecast result;
    const auto settled = settledAssets(library.state.db);
    const auto assets =
        library.albums.fetchAssets(library.albums.selectedSourceAlbumID()).oldestFirst;
    result.leftOut = library.library->leftOut();
    result.behind = RecordRemainders(library.state.db).counts();
    std::vector<PhotoAssetResource> files;
    const auto absent = library.library->absentOriginals(*assets, stop);
    for (const PhotoAsset& asset : *assets) {
        if (stop.stop_requested())
            throw Cancelled();
        if (asset.mediaType != AssetMediaType::image && asset.mediaType != AssetMediaType::video)
            continue;
        if (const auto known = settled.find(asset.localIdentifier); known != settled.end()) {
            ++(isHeld(known->second) ? result.held : result.alreadyDone);
            continue;
        }
        if (const auto absence = absent.find(asset.localIdentifier); absence != absent.end()) {
            ++(absence->second.why == AbsentOriginal::Why::onlyInCloud ? result.absent.onlyInCloud
                                                                       : result.absent.elsewhere);
            continue;
        }
        countKind(result, asset);
        if (auto file = countFile(result, library, asset, fallbackMode, stop))
            files.push_back(std::move(*file));
    }
    result.behind.duplicates += duplicatesAmong(files, library, stop);
    result.days = daysUnderQuota(result.toUpload(), google.requests);
    const auto target = google.albums.targetAlbumID();
    if (!target || !google.oauth.isSignedIn())
        return result;
    const auto albums = google.albums.listAlbums(stop);
    const auto album = std::ranges::find(albums, *target, &GoogleAlbum::id);
    if (album != albums.end()) {
        result.targetTitle = album->title.value_or(album->id);
        result.targetCount = album->itemCount();
    }
    return result;
}

QString Forecast::table() const {
    QString text = QStringLiteral("Deneme: hiçbir şey yüklenmedi, hiçbir kayıt yazılmadı\n");
    text += countRow(QStringLiteral("Fotoğraf"), photos);
    text += countRow(QStringLiteral("Video"), videos);
    text += countRow(QStringLiteral("Live Photo"), livePhotos);
    text += countRow(QStringLiteral("Daha önce yüklenen"), alreadyDone);
    text += countRow(QStringLiteral("Arşivde dosyası olmayan"), unavailable);
    text += absent.rows();
    text += countRow(QStringLiteral("Tarihsiz, bekletilecek"), undated);
    if (undatable > 0)
        text += countRow(QStringLiteral("  tarih yazılamayan biçim"), undatable);
    text += countRow(QStringLiteral("Daha önce bekletilen"), held);
    text += rowsOf(figuresOf(behind));
    text += rowsOf(figuresOf(leftOut));
    text += countRow(QStringLiteral("Yüklenecek"), toUpload());
    text += tableRow(QStringLiteral("Boyut"), byteText(bytes));
    text += tableRow(QStringLiteral("Günlük sınırla süre"), daysText(days));
    if (targetTitle)
        text += tableRow(QStringLiteral("Hedef albüm"),
                         QStringLiteral("%1 (%2 öğe)%3")
                             .arg(*targetTitle)
                             .arg(countText(targetCount))
                             .arg(overflowsTarget()
                                      ? QStringLiteral(" ⚠️ 20.000 öğe sınırı aşılacak")
                                      : QString()));
    return text.chopped(1);
}

QJsonObject Forecast::json() const {
    QJsonObject object{{QStringLiteral("event"), QStringLiteral("forecast")},
                       {QStringLiteral("photos"), photos},
                       {QStringLiteral("videos"), videos},
                       {QStringLiteral("livePhotos"), livePhotos},
                       {QStringLiteral("alreadyDone"), alreadyDone},
                       {QStringLiteral("unavailable"), unavailable},
                       {QStringLiteral("absent"), absent.json()},
                       {QStringLiteral("behind"), jsonOf(figuresOf(behind))},
                       {QStringLiteral("undated"), undated},
                       {QStringLiteral("undatable"), undatable},
                       {QStringLiteral("held"), held},
                       {QStringLiteral("leftOut"), jsonOf(figuresOf(leftOut))},
                       {QStringLiteral("toUpload"), toUpload()},
                       {QStringLiteral("days"), days},
                       {QStringLiteral("bytes"), qint64(bytes)}};
    if (targetTitle) {
        object[QStringLiteral("targetAlbum")] = *targetTitle;
        object[QStringLiteral("targetCount")] = qint64(targetCount);
        object[QStringLiteral("overflowsTarget")] = overflowsTarget();
    }
    return object;
}

} // namespace quorvane::cli

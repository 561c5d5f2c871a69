#include "ui/HeldItems.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHash>
#include <QLocale>

namespace quorvane {

namespace {

QDateTime localTime(Date date) {
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count());
}

/// "Son deneme 14:20, 3 kez denendi."
QString attemptsText(const SyncRecord& record, Date now) {
    const QDateTime last = localTime(record.updatedAt);
    const bool isToday = last.date() == localTime(now).date();
    const QString text =
        QStringLiteral("Son deneme ") +
        QLocale(QLocale::Turkish, QLocale::Turkey)
            .toString(last, isToday ? QStringLiteral("HH:mm") : QStringLiteral("d MMMM HH:mm"));
    return record.retryCount > 1 ? text + QStringLiteral(", %1 kez denendi.").arg(record.retryCount)
                                 : text + u'.';
}

QString adviceOn(FaultCode fault) {
    if (fault == FaultCode::tooLarge)
        return QStringLiteral(" Küçültülmüş bir sürümünü kitaplığa ekleyin.");
    switch (kindOf(fault)) {
    case FaultKind::item:
        return QStringLiteral(" Dosya açılıyorsa bir kez daha deneyin.");
    case FaultKind::moment:
    case FaultKind::day:
        return QStringLiteral(" Dosya sağlam; yeniden deneyin.");
    default:
        return {}; // the fault's own text says what is to be done
    }
}

QString reasonOf(const HeldRecord& held, const QString& name, Date now) {
    const SyncRecord& record = held.record;
    if (record.syncStatus != SyncStatus::failed)
        return QStringLiteral("%1 dosyasında çekim tarihine yer yok.")
            .arg(QFileInfo(name).suffix().toUpper());
    const QString error = record.lastError.value_or(QString());
    const QString attempts = u' ' + attemptsText(record, now);
    if (held.fault)
        return faultText(*held.fault) + u'.' + adviceOn(held.fault->code) + attempts;
    const QString why = categoryOf(FailureCount{error}).explanation;
    return (error.isEmpty() ? why : QStringLiteral("%1 (%2)").arg(why, error)) + u'.' + attempts;
}

/// What is to be sent of each asset; nothing while the library is away.
QHash<QString, PhotoAssetResource> resourcesOf(PhotoLibrary& library,
                                               const QStringList& identifiers) {
    QHash<QString, PhotoAssetResource> resources;
    try {
        const AssetFetchResult assets = library.fetchAssets(identifiers);
        for (const PhotoAsset& asset : *assets)
            if (const auto resource = resourceToStage(library.assetResources(asset)))
                resources.insert(asset.localIdentifier, *resource);
    } catch (const PhotoLibraryError&) { // NOLINT(bugprone-empty-catch)
        // The items are shown all the same.
    }
    return resources;
}

} // namespace

std::map<std::int64_t, HeldItem> readHeldItems(const LibrarySession& session,
                                               const std::vector<std::int64_t>& places, Date now) {
    std::map<std::int64_t, HeldItem> items;
    std::map<std::int64_t, HeldRecord> records = HeldRecords(session.run.db).at(places);
    QStringList identifiers;
    for (const auto& [place, held] : records)
        identifiers += held.record.assetLocalIdentifier;
    const auto resources = resourcesOf(session.run.library, identifiers);
    for (auto& [place, held] : records) {
        HeldItem& item = items[place];
        item.name = held.record.assetLocalIdentifier;
        item.isMovie = held.record.mediaType == MediaType::video;
        if (const auto found = resources.constFind(item.name); found != resources.constEnd()) {
            item.name = found->originalFilename;
            if (found->fileSize)
                item.file = session.root / found->location;
        }
        item.reason = reasonOf(held, item.name, now);
        item.held = std::move(held);
    }
    return items;
}

} // namespace quorvane

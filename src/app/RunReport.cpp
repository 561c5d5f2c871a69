#include "app/RunReport.h"

#include "metadata/LocalCalendar.h"
#include "store/RecordDates.h"

namespace quorvane {

namespace {

bool isSent(SyncStatus status) {
    return status == SyncStatus::verified || status == SyncStatus::deletedLocally;
}

/// The names that a person knows the assets by, and which of them are movies.
struct Listing {
    std::map<QString, QString> names;
    std::set<QString> movies;

    QString nameOf(const QString& identifier) const {
        const auto known = names.find(identifier);
        return known == names.end() ? identifier : known->second;
    }
};

Listing listed(PhotoLibrary& library, const std::set<QString>& named, const std::stop_token& stop) {
    Listing listing;
    const AssetFetchResult assets = library.fetchAssets(stop);
    for (const PhotoAsset& asset : *assets) {
        if (stop.stop_requested())
            throw Cancelled();
        if (asset.mediaType == AssetMediaType::video)
            listing.movies.insert(asset.localIdentifier);
        if (!named.contains(asset.localIdentifier))
            continue;
        if (const auto resource = resourceToStage(library.assetResources(asset)))
            listing.names[asset.localIdentifier] = resource->originalFilename;
    }
    return listing;
}

} // namespace

QString reasonOf(const SyncRecord& record, RecordFaults& faults) {
    const QString text = record.lastError.value_or(QString());
    const auto fault = faults.of(record);
    const bool saysMore = record.syncStatus == SyncStatus::failed && fault &&
                          !fault->reason.isEmpty() && !text.contains(fault->reason);
    return saysMore ? text + QStringLiteral(" (Google: %1)").arg(fault->reason) : text;
}

RunReport RunReport::of(const SyncRunServices& services, const SyncRunOutcome& outcome,
                        const std::stop_token& stop) {
    RunReport report;
    report.run = outcome;
    report.now = StoreCounts::of(services.db);
    report.pending = services.db.countPendingRecords();
    report.behind = RecordRemainders(services.db).counts();

    const std::vector<SyncRecord> unfinished = services.db.fetchUnfinishedRecords(mostItems);
    const std::vector<Misdating> misdatings = RecordDates(services.db).misdated();
    std::set<QString> named;
    for (const SyncRecord& record : unfinished)
        named.insert(record.assetLocalIdentifier);
    for (const Misdating& item : misdatings)
        named.insert(item.identifier);
    const Listing listing = listed(services.library, named, stop);

    RecordFaults faults(services.db);
    for (const SyncRecord& record : unfinished) {
        auto& list = record.syncStatus == SyncStatus::failed ? report.failed : report.heldBack;
        list.push_back({listing.nameOf(record.assetLocalIdentifier), reasonOf(record, faults)});
    }
    const QString format = QStringLiteral("dd.MM.yyyy HH:mm:ss");
    for (const Misdating& item : misdatings)
        if (std::ssize(report.misdated) < mostItems)
            report.misdated.push_back(
                {listing.nameOf(item.identifier),
                 QStringLiteral("bizde %1, Google'da %2 (UTC)")
                     .arg(utcText(item.ours, format), utcText(item.theirs, format))});

    std::set<QString> sent;
    for (const auto& [identifier, status] : services.db.fetchStatuses())
        if (isSent(status))
            sent.insert(identifier);
    for (const auto& [identifier, dated] : RecordDates(services.db).all()) {
        if (!sent.contains(identifier))
            continue;
        ++report.dateSources[dated.source];
        Month& month = report.months[utcText(dated.date, u"yyyy-MM")];
        ++(listing.movies.contains(identifier) ? month.movies : month.pictures);
    }
    return report;
}

} // namespace quorvane

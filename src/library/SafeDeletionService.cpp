#include "library/SafeDeletionService.h"

#include "store/RecordAbsences.h"
#include "store/RecordRemainders.h"

#include <algorithm>
#include <set>

namespace quorvane {

namespace {

constexpr int identifiersShown = 20;

const QString cannotAskText =
    QStringLiteral("Google hesabı okuma izni vermediği için öğelerin Google Photos'ta durduğu "
                   "yeniden sorulamadı.");

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

} // namespace

QStringList SafeDeletionService::remoteIDsOf(const std::vector<DeletionCandidate>& candidates,
                                             const RecordsOf& records) {
    QStringList ids;
    for (const DeletionCandidate& candidate : candidates)
        for (const SyncRecord& record : records.at(candidate.asset.localIdentifier))
            ids += record.remoteMediaID.value_or(QString());
    return ids;
}

/// What stands between the person's answer and each removal.
class SafeDeletionService::Guard final : public DeletionGuard {
  public:
    /// `mayAssume`: the person was told that the destination cannot be asked.
    Guard(SafeDeletionService& service, const RecordsOf& records, DeletionSummary& summary,
          bool mayAssume, std::stop_token stop)
        : service_(service),
          records_(records),
          summary_(summary),
          mayAssume_(mayAssume),
          stop_(std::move(stop)) {}

    std::vector<DeletionCandidate>
    stillSafe(const std::vector<DeletionCandidate>& candidates) override {
        const auto leaveAll = [&](const QString& reason) {
            for (const DeletionCandidate& candidate : candidates)
                leftOut(candidate, reason);
            return std::vector<DeletionCandidate>();
        };
        std::optional<std::set<QString>> existing;
        try {
            existing = service_.existing(remoteIDsOf(candidates, records_), stop_);
        } catch (const Error& error) {
            return leaveAll(QStringLiteral("Google Photos'a sorulamadı: ") +
                            error.localizedDescription());
        }
        if (!existing)
            return mayAssume_ ? candidates : leaveAll(cannotAskText);
        std::vector<DeletionCandidate> safe;
        for (const DeletionCandidate& candidate : candidates)
            if (std::ranges::all_of(remoteIDsOf({candidate}, records_),
                                    [&](const QString& id) { return existing->contains(id); }))
                safe.push_back(candidate);
            else
                leftOut(candidate, QStringLiteral("Google Photos'ta artık yok"));
        return safe;
    }

    void willDelete(const DeletionCandidate& candidate) override {
        service_.requireMovieAsSent(candidate.asset);
        for (const SyncRecord& record : recordsOf(candidate))
            if (!service_.s_.life.deleting(record))
                throw Error(QStringLiteral("kaydı bu arada değişti"));
    }

    void didDelete(const DeletionCandidate& candidate) override {
        ++summary_.deleted;
        service_.recordDeletion(recordsOf(candidate));
    }

    void leftOut(const DeletionCandidate& candidate, const QString& reason) override {
        try {
            for (const SyncRecord& record : recordsOf(candidate))
                service_.s_.life.kept(record);
        } catch (const DBError& error) { // the next run finds the original in its place
            service_.s_.log.log(QStringLiteral("[SafeDeletion] ⚠️ DB güncelleme hatası: ") +
                                error.localizedDescription());
        }
        service_.leaveOut(summary_, service_.nameOf(candidate.asset), reason);
    }

  private:
    const std::vector<SyncRecord>& recordsOf(const DeletionCandidate& candidate) const {
        return records_.at(candidate.asset.localIdentifier);
    }

    SafeDeletionService& service_;
    const RecordsOf& records_;
    DeletionSummary& summary_;
    const bool mayAssume_;
    std::stop_token stop_;
};

DeletionSummary SafeDeletionService::performDeletion(bool deletionEnabled,
                                                     std::stop_token stop) noexcept {
    DeletionSummary summary;
    if (!deletionEnabled) {
        s_.log.log(QStringLiteral("[SafeDeletion] Otomatik silme kapalı, işlem atlandı."));
        return summary;
    }
    if (!s_.life.account().isKnown()) {
        s_.log.log(QStringLiteral("[SafeDeletion] ⚠️ Google hesabı bilinmiyor, hiçbir şey "
                                  "silinmeyecek."));
        return summary;
    }
    const std::vector<SyncRecord> candidates = deletionCandidates();
    if (candidates.empty()) {
        s_.log.log(QStringLiteral("[SafeDeletion] Silinecek VERIFIED aday bulunamadı."));
        return summary;
    }
    s_.log.log(
        QStringLiteral("[SafeDeletion] %1 silme adayı bulundu, güvenlik doğrulaması yapılıyor...")
            .arg(candidates.size()));
    const QStringList passing = safelyStored(candidates);
    if (passing.isEmpty()) {
        s_.log.log(QStringLiteral("[SafeDeletion] Güvenlik kontrolünden geçen aday yok "
                                  "(Zero-Data-Loss koruması devrede)."));
        return summary;
    }
    s_.log.log(
        QStringLiteral("[SafeDeletion] %1 doğrulanmış medya için Apple Photos sistem onayına "
                       "sunuluyor...")
            .arg(passing.size()));
    deleteFromPhotoLibrary(passing, candidates, summary, stop);
    return summary;
}

/// A store that fails has no candidates: a broken store never leads to a deletion.
std::vector<SyncRecord> SafeDeletionService::deletionCandidates() {
    try {
        return s_.database.fetchVerifiedForDeletion();
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
            const std::vector<SyncRecord> records = s_.database.fetchRecordsOfAsset(identifier);
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
                                                 DeletionSummary& summary,
                                                 const std::stop_token& stop) {
    RecordsOf recordsOf;
    for (const SyncRecord& record : records)
        recordsOf[record.assetLocalIdentifier].push_back(record);
    try {
        const AssetFetchResult found = s_.library.fetchAssets(identifiers);
        if (!found || found->empty()) {
            s_.log.log(QStringLiteral("[SafeDeletion] PHAsset bulunamadı: ") + listed(identifiers));
            return;
        }
        DeletionQuestion question;
        const std::vector<DeletionCandidate> offered = choose(*found, question, summary, stop);
        if (offered.empty() || stop.stop_requested())
            return;
        countKept(question);
        question.warning = warningFor(offered, recordsOf, stop);
        Guard guard(*this, recordsOf, summary, !question.warning.isEmpty(), stop);
        s_.library.deleteAssets(offered, question, guard, stop);
    } catch (const Cancelled&) {
        s_.log.log(QStringLiteral("[SafeDeletion] ℹ️ Silme durduruldu, kalanlar yerinde."));
    } catch (const std::exception& error) {
        s_.log.log(
            QStringLiteral(
                "[SafeDeletion] ℹ️ Sistem silme diyaloğu iptal edildi veya reddedildi: ") +
            describe(error));
    }
}

std::vector<DeletionCandidate> SafeDeletionService::choose(const std::vector<PhotoAsset>& assets,
                                                           DeletionQuestion& question,
                                                           DeletionSummary& summary,
                                                           const std::stop_token& stop) {
    std::vector<DeletionCandidate> offered;
    for (const PhotoAsset& asset : assets) {
        const auto source = s_.life.sourceOf(asset.localIdentifier);
        if (const auto kept = obstacle(s_.library.assetResources(asset), source, stop)) {
            ++question.kept[*kept];
            const KeptText text = textOf(*kept);
            leaveOut(summary, nameOf(asset), text.title + QStringLiteral(": ") + text.note);
        } else {
            offered.push_back({asset, {source->sha256, source->version}});
        }
    }
    return offered;
}

/// What keeps an asset here whose records are all safe.
std::optional<KeptReason>
SafeDeletionService::obstacle(const std::vector<PhotoAssetResource>& resources,
                              const std::optional<RecordSource>& source,
                              const std::stop_token& stop) {
    const auto sent = resourceToStage(resources);
    if (!sent)
        return KeptReason::notHere;
    const auto isUnsent = [&](const PhotoAssetResource& resource) {
        const bool isJoined =
            source && source->movie && resource.type == AssetResourceType::pairedVideo;
        return resource.type != AssetResourceType::adjustmentData && !isJoined;
    };
    if (std::ranges::count_if(resources, isUnsent) > 1)
        return remainderOf(resources, source && source->movie) & RecordRemainders::edit
                   ? KeptReason::edited
                   : KeptReason::partlySent;
    if (!source)
        return KeptReason::unproven;
    return isChanged(*sent, *source, stop) ? std::optional(KeptReason::changed) : std::nullopt;
}

/// Reads only an original of another time: every one is proven before it goes, but the question
/// must not wait for a whole library.
bool SafeDeletionService::isChanged(const PhotoAssetResource& sent, const RecordSource& source,
                                    const std::stop_token& stop) {
    const auto now = s_.library.versionOf(sent);
    if (!now || now->size != source.version.size)
        return now.has_value();
    try {
        return now->modified != source.version.modified &&
               s_.library.readContent(sent, stop).sha256 != source.sha256;
    } catch (const Error&) { // told by the removal
        return false;
    }
}

void SafeDeletionService::countKept(DeletionQuestion& question) {
    const auto count = [&](KeptReason reason, int number) {
        if (number > 0)
            question.kept[reason] += number;
    };
    count(KeptReason::notVerified, s_.database.countNotVerified());
    const std::map<QString, int> absent = RecordAbsences(s_.database).counts();
    if (const auto inCloud = absent.find(RecordAbsences::onlyInCloud); inCloud != absent.end())
        count(KeptReason::notHere, inCloud->second);
}

/// The library proves the still before it goes; the movie that went up inside it is proven here.
void SafeDeletionService::requireMovieAsSent(const PhotoAsset& asset) {
    const auto source = s_.life.sourceOf(asset.localIdentifier);
    if (!source || !source->movie)
        return;
    for (const PhotoAssetResource& resource : s_.library.assetResources(asset))
        if (resource.type == AssetResourceType::pairedVideo &&
            s_.library.readContent(resource, {}).sha256 == source->movie->sha256)
            return;
    throw Error(QStringLiteral("canlı fotoğrafın videosu yüklendiğinden beri değişti"));
}

/// What the person has to know before the answer. Found out with the first of the candidates.
QString SafeDeletionService::warningFor(const std::vector<DeletionCandidate>& candidates,
                                        const RecordsOf& records, const std::stop_token& stop) {
    try {
        const QStringList ids = remoteIDsOf({candidates.front()}, records);
        return existing(ids, stop) ? QString() : cannotAskText;
    } catch (const Error&) {
        return {}; // asked again when it matters
    }
}

/// Those of any number of items that are still there.
std::optional<std::set<QString>> SafeDeletionService::existing(const QStringList& remoteIDs,
                                                               const std::stop_token& stop) {
    std::set<QString> all;
    for (qsizetype from = 0; from < remoteIDs.size(); from += RemoteItems::atOnce) {
        auto some = s_.remote.existing(remoteIDs.mid(from, RemoteItems::atOnce), stop);
        if (!some)
            return std::nullopt;
        all.merge(*some);
    }
    return all;
}

void SafeDeletionService::settleInterrupted() {
    RecordsOf records;
    for (SyncRecord& record : s_.life.unfinishedDeletions())
        records[record.assetLocalIdentifier].push_back(std::move(record));
    for (const auto& [identifier, ofAsset] : records) {
        const auto found = s_.library.fetchAssets(QStringList{identifier});
        if (!found || found->empty())
            recordDeletion(ofAsset);
        else
            s_.life.kept(ofAsset.front());
    }
}

void SafeDeletionService::recordDeletion(const std::vector<SyncRecord>& records) {
    for (const SyncRecord& record : records) {
        try {
            s_.life.deleted(record);
        } catch (const std::exception& error) {
            s_.log.log(QStringLiteral("[SafeDeletion] ⚠️ DB güncelleme hatası: ") +
                       describe(error));
        }
    }
    const QString& identifier = records.front().assetLocalIdentifier;
    s_.staging.removeFromStaging(identifier);
    s_.log.logAbout(identifier,
                    QStringLiteral("[SafeDeletion] ✅ Güvenle silindi ve staging temizlendi: ") +
                        identifier);
}

QString SafeDeletionService::nameOf(const PhotoAsset& asset) {
    const auto resource = resourceToStage(s_.library.assetResources(asset));
    return resource ? resource->originalFilename : asset.localIdentifier.text();
}

void SafeDeletionService::leaveOut(DeletionSummary& summary, const QString& name,
                                   const QString& reason) {
    s_.log.log(QStringLiteral("[SafeDeletion] ⚠️ Silinmedi: %1 (%2)").arg(name, reason));
    summary.leftOut.push_back({name, reason});
}

} // namespace quorvane

#include "sync/Recognition.h"

#include "foundation/File.h"

#include <algorithm>

namespace quorvane {

Recognition::Result Recognition::examine(const std::vector<SyncRecord>& records,
                                         const std::stop_token& stop) {
    Result result;
    if (destination_.hasTargetAlbum())
        return result;
    std::vector<Original> originals;
    std::map<std::int64_t, int> samples;
    for (const SyncRecord& record : records) {
        if (record.syncStatus != SyncStatus::discovered)
            continue;
        const auto resources = resourcesOf(record);
        if (movieToJoin(resources)) // the bytes of its still alone are not what is wanted
            continue;
        auto resource = resourceToStage(resources);
        const auto sample = resource ? library_.sampleOf(*resource) : std::nullopt;
        if (!sample)
            continue;
        ++samples[*sample];
        originals.push_back({&record, std::move(*resource), *sample, remainderOf(resources)});
    }
    std::map<QString, SourceContent> contents;
    std::set<QString> seen; // digests
    std::vector<Candidate> candidates;
    for (const auto& [record, resource, sample, behind] : originals) {
        if (samples[sample] == 1 && !known_.hasSample(sample))
            continue;
        const auto content = contentOf(*record, resource, stop);
        if (!content)
            continue;
        const QString& identifier = record->assetLocalIdentifier;
        contents.emplace(identifier, *content);
        const auto found = known_.find(content->sample, content->sha256, identifier);
        if (!found.remoteIDs.isEmpty())
            candidates.push_back({record, *content, found.remoteIDs.front(), behind});
        else if (!seen.insert(content->sha256).second || found.isUnderWay)
            result.waiting.insert(identifier);
    }
    contents_ = std::move(contents);
    result.recognised = confirm(candidates, stop);
    return result;
}

std::vector<PhotoAssetResource> Recognition::resourcesOf(const SyncRecord& record) {
    try {
        const auto assets = library_.fetchAssets(QStringList{record.assetLocalIdentifier});
        if (assets && !assets->empty())
            return library_.assetResources(assets->front());
    } catch (const PhotoLibraryError&) { // the staging tells
    }
    return {};
}

std::optional<SourceContent> Recognition::contentOf(const SyncRecord& record,
                                                    const PhotoAssetResource& resource,
                                                    const std::stop_token& stop) {
    const auto known = contents_.find(record.assetLocalIdentifier);
    if (known != contents_.end() && library_.versionOf(resource) == known->second.version)
        return known->second;
    try {
        return library_.readContent(resource, stop);
    } catch (const PhotoLibraryError&) {
        return std::nullopt;
    } catch (const FileError&) {
        return std::nullopt;
    }
}

/// Only an item that is still there stands for the original.
int Recognition::confirm(const std::vector<Candidate>& candidates, const std::stop_token& stop) {
    int recognised = 0;
    for (auto next = candidates.begin(); next != candidates.end();) {
        const auto end =
            next + std::min<std::ptrdiff_t>(candidates.end() - next, RemoteItems::atOnce);
        QStringList ids;
        for (auto candidate = next; candidate != end; ++candidate)
            ids += candidate->remoteID;
        std::optional<std::set<QString>> existing;
        try {
            existing = remote_.existing(ids, stop);
        } catch (const Error& error) {
            log_.log(
                QStringLiteral("[Sync] ⚠️ Google Photos'taki kopyalar sorulamadı, dosyalar "
                               "yüklenecek: ") +
                error.localizedDescription());
        }
        for (; next != end; ++next) {
            if (!existing || !existing->contains(next->remoteID))
                continue;
            const RecordSource source{next->content.sha256, next->content.version,
                                      next->content.sample};
            if (!life_.recognised(*next->record, source, next->remoteID))
                continue;
            life_.leavesBehind(*next->record, next->behind);
            ++recognised;
        }
    }
    if (recognised > 0)
        log_.log(QStringLiteral("[Sync] %1 medya Google Photos'ta zaten var, yeniden yüklenmedi")
                     .arg(recognised));
    return recognised;
}

} // namespace quorvane

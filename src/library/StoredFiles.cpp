#include "library/StoredFiles.h"

#include "store/LibraryFiles.h"

#include <set>

namespace quorvane {

namespace {

const QString replacedText =
    QStringLiteral("Dosyanın yerinde artık başka bir sürümü var; bu sürüm yüklenmeden değişti.");

} // namespace

std::vector<KnownFile> StoredFiles::files() {
    std::vector<KnownFile> files;
    for (LibraryFile& file : LibraryFiles(database_).all())
        files.push_back({std::move(file.path), file.identifier.uuid(), file.version});
    return files;
}

std::optional<QString> StoredFiles::contentOf(const QUuid& identifier) {
    const auto source = life_.sourceOf(AssetIdentifier(identifier));
    return source ? std::optional(source->sha256) : std::nullopt;
}

void StoredFiles::update(const std::vector<KnownFile>& changed,
                         const std::vector<std::string>& gone,
                         const std::vector<QUuid>& superseded) {
    std::vector<LibraryFile> rows;
    rows.reserve(changed.size());
    for (const KnownFile& file : changed)
        rows.push_back({file.path, AssetIdentifier(file.identifier), file.version});
    database_.transaction([&](sqlite::Connection&) {
        LibraryFiles(database_).update(rows, gone);
        for (const QUuid& identifier : superseded)
            for (const SyncRecord& record :
                 database_.fetchRecordsOfAsset(AssetIdentifier(identifier)))
                life_.superseded(record, replacedText);
        const std::vector<SyncRecord> excluded = database_.fetchRecords(SyncStatus::excluded);
        if (excluded.empty())
            return;
        std::set<AssetIdentifier> present;
        for (const LibraryFile& file : rows)
            present.insert(file.identifier);
        for (const SyncRecord& record : excluded)
            if (present.contains(record.assetLocalIdentifier))
                life_.returned(record);
    });
}

} // namespace quorvane

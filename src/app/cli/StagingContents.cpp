#include "app/cli/StagingContents.h"

#include "foundation/File.h"
#include "foundation/FileVersion.h"
#include "library/StagingFolder.h"
#include "metadata/FilenameDates.h"

#include <algorithm>

#include <unistd.h>

namespace quorvane::cli {

namespace {

using StatusesOfAsset = std::map<QString, std::vector<SyncStatus>>;

bool isDone(SyncStatus status) {
    return status == SyncStatus::verified || status == SyncStatus::deletedLocally;
}

bool isSafe(const SyncRecord& record) {
    return record.syncStatus == SyncStatus::deletedLocally ||
           (record.syncStatus == SyncStatus::verified && record.remoteMediaID &&
            !record.remoteMediaID->isEmpty());
}

StagingContents contentsOf(const std::filesystem::path& folder, const StatusesOfAsset& statuses) {
    StagingContents contents;
    contents.folder = folder;
    visitFiles(folder, [&](const std::string& name) {
        const std::filesystem::path file = folder / name;
        const auto version = fileVersion(file);
        if (!version)
            return; // it went meanwhile
        const std::int64_t size = version->size;
        const auto identifier = identifierOfStagedName(pathText(name));
        const auto found = identifier ? statuses.find(*identifier) : statuses.end();
        if (found == statuses.end()) {
            contents.unknown.add(size);
            return;
        }
        // Of several records the one that still has work to do counts.
        const std::vector<SyncStatus>& all = found->second;
        const auto undone = std::ranges::find_if_not(all, isDone);
        contents.byStatus[undone == all.end() ? all.front() : *undone].add(size);
        if (undone == all.end())
            contents.removable.push_back({file, size, *identifier});
    });
    return contents;
}

} // namespace

FilesAndBytes StagingContents::total() const {
    FilesAndBytes total = unknown;
    for (const auto& [status, count] : byStatus) {
        total.files += count.files;
        total.bytes += count.bytes;
    }
    return total;
}

std::vector<StagingContents> stagingContents(const StatePlace& place, DatabaseManager& db) {
    StatusesOfAsset statuses;
    for (const auto& [identifier, status] : db.fetchStatuses())
        statuses[identifier].push_back(status);
    const StagingFolder all[] = {
        {place.permanentStaging, StagingFolder::Access::any},
        {place.temporaryStaging, StagingFolder::Access::privateOnly},
    };
    std::vector<StagingContents> contents;
    for (const StagingFolder& folder : all)
        if (folder.isUsable())
            contents.push_back(contentsOf(folder.path(), statuses));
    return contents;
}

FilesAndBytes removeSafeCopies(const StagingContents& contents, DatabaseManager& db) {
    FilesAndBytes removed;
    for (const StagingContents::File& file : contents.removable) {
        const std::vector<SyncRecord> records = db.fetchRecordsOfAsset(file.identifier);
        if (!records.empty() && std::ranges::all_of(records, isSafe) &&
            ::unlink(file.path.c_str()) == 0)
            removed.add(file.bytes);
    }
    return removed;
}

} // namespace quorvane::cli

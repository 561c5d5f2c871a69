#pragma once

#include "store/StateCatalogue.h"

#include <map>

namespace quorvane::cli {

struct FilesAndBytes {
    int files = 0;
    std::int64_t bytes = 0;
    void add(std::int64_t size) { ++files, bytes += size; }
};

/// What one staging folder holds.
struct StagingContents {
    std::filesystem::path folder;
    std::map<SyncStatus, FilesAndBytes> byStatus;
    FilesAndBytes unknown; ///< no record has them

    struct File {
        std::filesystem::path path;
        std::int64_t bytes = 0;
        QString identifier;
    };
    /// Not needed any more, as far as the statuses say.
    std::vector<File> removable;

    FilesAndBytes total() const;
};

/// Of the staging folders that are there, the permanent one first. Nothing is created. Throws
/// `DBError`.
std::vector<StagingContents> stagingContents(const StatePlace& place, DatabaseManager& db);

/// Deletes the removable files of assets all of whose records are, now, verified with a name at
/// Google or deleted locally after that. Throws `DBError`.
FilesAndBytes removeSafeCopies(const StagingContents& contents, DatabaseManager& db);

} // namespace quorvane::cli

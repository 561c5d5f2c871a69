#include "store/StoreCounts.h"

namespace quorvane {

StoreCounts StoreCounts::of(DatabaseManager& db) {
    StoreCounts counts;
    for (const auto& [status, count] : db.countByStatus()) {
        switch (status) {
        case SyncStatus::verified:
        case SyncStatus::deletedLocally:
            counts.verified += count;
            break;
        case SyncStatus::failed:
            counts.failed += count;
            break;
        case SyncStatus::dateUnresolved:
            counts.undated += count;
            break;
        case SyncStatus::discovered:
        case SyncStatus::staged:
            counts.pending += count;
            break;
        case SyncStatus::uploading:
        case SyncStatus::excluded:
            break;
        }
    }
    return counts;
}

} // namespace quorvane

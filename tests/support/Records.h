#pragma once

#include "store/DatabaseManager.h"

namespace quorvane::test {

/// A batch of records that are already there.
inline DatabaseManager::RecordSource batchOf(std::vector<SyncRecord> records) {
    return [records = std::move(records), next = std::size_t(0)]() mutable {
        return next == records.size() ? std::nullopt : std::optional(records[next++]);
    };
}

} // namespace quorvane::test

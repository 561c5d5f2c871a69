#pragma once

#include "store/DatabaseManager.h"

namespace quorvane::test {

/// A batch of records that are already there.
inline DatabaseManager::RecordSource batchOf(std::vector<SyncRecord> records) {
    return [records = std::move(records), next = std::size_t(0)]() mutable {
        return next == records.size() ? std::nullopt : std::optional(records[next++]);
    };
}

/// A batch of records named "0", "1"...
inline DatabaseManager::RecordSource numberedBatch(int count) {
    return [count, next = 0]() mutable -> std::optional<SyncRecord> {
        if (next == count)
            return std::nullopt;
        SyncRecord record;
        record.assetLocalIdentifier = QString::number(next++);
        return record;
    };
}

} // namespace quorvane::test

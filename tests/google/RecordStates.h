#pragma once

#include "store/DatabaseManager.h"

#include <map>

namespace quorvane::test {

inline SyncRecord stagedRecord(const QString& identifier) {
    SyncRecord record;
    record.assetLocalIdentifier = identifier;
    record.syncStatus = SyncStatus::staged;
    return record;
}

/// Every record's status by its identifier, with its media item or its error.
inline std::map<QString, QString> recordStates(DatabaseManager& database) {
    std::map<QString, QString> states;
    for (const SyncRecord& record : database.fetchPendingRecords(1000))
        states[record.assetLocalIdentifier] = rawValue(record.syncStatus);
    for (const SyncRecord& record : database.fetchVerifiedForDeletion())
        states[record.assetLocalIdentifier] =
            QStringLiteral("VERIFIED ") + record.remoteMediaID.value();
    for (const SyncRecord& record : database.fetchUnfinishedRecords(1000))
        states[record.assetLocalIdentifier] = QStringLiteral("FAILED ") + record.lastError.value();
    return states;
}

} // namespace quorvane::test

#include "store/RecordFaults.h"

namespace quorvane {

void RecordFaults::keep(const SyncRecord& record, const std::optional<Fault>& fault) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              fault ? "INSERT OR REPLACE INTO record_faults VALUES (?, ?, ?)"
                                    : "DELETE FROM record_faults WHERE asset_local_identifier = ?");
        row.bind(1, record.assetLocalIdentifier);
        if (fault) {
            row.bind(2, rawValue(fault->code));
            row.bind(3, fault->reason);
        }
        row.step();
    });
}

std::optional<Fault> RecordFaults::of(const SyncRecord& record) {
    return db_.onConnection([&](sqlite::Connection& database) -> std::optional<Fault> {
        sqlite::Statement row(
            database, "SELECT code, reason FROM record_faults WHERE asset_local_identifier = ?");
        row.bind(1, record.assetLocalIdentifier);
        const auto code = row.step() ? faultCodeFrom(row.text(0)) : std::nullopt;
        if (!code)
            return std::nullopt;
        return Fault{.code = *code, .reason = row.text(1)};
    });
}

std::vector<SyncRecord> RecordFaults::failedBy(const std::function<bool(FaultCode)>& isWanted) {
    std::vector<SyncRecord> records = db_.fetchRecords(SyncStatus::failed);
    std::erase_if(records, [&](const SyncRecord& record) {
        const auto fault = of(record);
        return !fault || !isWanted(fault->code);
    });
    return records;
}

} // namespace quorvane

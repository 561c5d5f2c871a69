#pragma once

#include "foundation/Fault.h"
#include "store/DatabaseManager.h"

namespace quorvane {

/// What FAILED records failed by, where that is known. Any thread. Throws `DBError`.
class RecordFaults {
  public:
    explicit RecordFaults(DatabaseManager& database) : db_(database) {}

    /// None: nobody knows what the record failed by.
    void keep(const SyncRecord& record, const std::optional<Fault>& fault);

    std::optional<Fault> of(const SyncRecord& record);

    /// The FAILED records whose fault is known, and wanted.
    std::vector<SyncRecord> failedBy(const std::function<bool(FaultCode)>& isWanted);

  private:
    DatabaseManager& db_;
};

} // namespace quorvane

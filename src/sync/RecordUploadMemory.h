#pragma once

#include "google/UploadSource.h"
#include "library/StagedCopies.h"
#include "store/UploadSessions.h"

namespace quorvane {

/// The upload of one record's staged bytes, remembered in the state. Refers to its arguments.
class RecordUploadMemory final : public UploadMemory {
  public:
    RecordUploadMemory(UploadSessions& sessions, const SyncRecord& record,
                       const HashAndSize& content)
        : sessions_(sessions), record_(record), bytes_{content.sha256, content.sizeBytes} {}

    std::optional<QString> address() override { return sessions_.find(record_, bytes_); }
    void remember(const QString& address) override { sessions_.keep(record_, bytes_, address); }
    void forget() override { sessions_.forget(record_); }

  private:
    UploadSessions& sessions_;
    const SyncRecord& record_;
    const UploadSessions::Bytes bytes_;
};

} // namespace quorvane

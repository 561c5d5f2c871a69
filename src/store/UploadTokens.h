#pragma once

#include "foundation/Clock.h"
#include "store/DatabaseManager.h"

namespace quorvane {

/// The tokens of bytes that the destination has and of which no item was made yet, so that nothing
/// is sent twice because a program ended in between. Any thread, any process. Throws `DBError`.
class UploadTokens {
  public:
    /// Google forgets uploaded bytes after a day.
    static constexpr std::chrono::hours lifetime{23};

    UploadTokens(DatabaseManager& database, Clock& clock) : db_(database), clock_(clock) {}

    /// The staged file with this digest was sent, just now.
    void keep(const SyncRecord& record, const QString& sha256, const QString& token);

    /// None when no bytes of this digest were sent for the record, or too long ago.
    std::optional<QString> find(const SyncRecord& record, const QString& sha256);

    /// The destination does not know the record's token any more.
    void forget(const SyncRecord& record);

    /// Those that are too old go.
    void forgetExpired();

  private:
    DatabaseManager& db_;
    Clock& clock_;
};

} // namespace quorvane

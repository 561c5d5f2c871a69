#pragma once

#include "foundation/Clock.h"
#include "store/DatabaseManager.h"

namespace quorvane {

/// Where the uploads that are under way go on: an address for each record, good for exactly the
/// bytes and the account that it was begun with. The address is a secret. Any thread, any process.
/// Throws `DBError`.
class UploadSessions {
  public:
    /// The staged file that is sent.
    struct Bytes {
        QString sha256;
        std::int64_t size = 0;
    };

    static constexpr std::chrono::days lifetime{7};

    /// `accountID` as the destination identifies it; empty when it is not known.
    UploadSessions(DatabaseManager& database, Clock& clock, QString accountID)
        : db_(database), clock_(clock), accountID_(std::move(accountID)) {}

    void keep(const SyncRecord& record, const Bytes& bytes, const QString& address);

    /// None when the upload was begun with other bytes, by another account, or too long ago.
    std::optional<QString> find(const SyncRecord& record, const Bytes& bytes);

    void forget(const SyncRecord& record);

    /// Those that are too old go.
    void forgetExpired();

  private:
    std::int64_t oldest() const;

    DatabaseManager& db_;
    Clock& clock_;
    const QString accountID_;
};

} // namespace quorvane

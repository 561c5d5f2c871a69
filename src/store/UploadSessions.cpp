#include "store/UploadSessions.h"

namespace quorvane {

std::int64_t UploadSessions::oldest() const {
    return wholeUnixSeconds(clock_.now() - lifetime);
}

void UploadSessions::keep(const SyncRecord& record, const Bytes& bytes, const QString& address) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              "INSERT OR REPLACE INTO upload_sessions VALUES (?, ?, ?, ?, ?, ?)");
        row.bind(1, record.assetLocalIdentifier);
        row.bind(2, bytes.sha256);
        row.bind(3, bytes.size);
        row.bind(4, accountID_);
        row.bind(5, address);
        row.bind(6, wholeUnixSeconds(clock_.now()));
        row.step();
    });
}

std::optional<QString> UploadSessions::find(const SyncRecord& record, const Bytes& bytes) {
    return db_.onConnection([&](sqlite::Connection& database) -> std::optional<QString> {
        sqlite::Statement row(database,
                              "SELECT address FROM upload_sessions WHERE asset_local_identifier "
                              "= ? AND sha256 = ? AND size = ? AND account = ? AND made > ?");
        row.bind(1, record.assetLocalIdentifier);
        row.bind(2, bytes.sha256);
        row.bind(3, bytes.size);
        row.bind(4, accountID_);
        row.bind(5, oldest());
        return row.step() ? std::optional(row.text(0)) : std::nullopt;
    });
}

void UploadSessions::forget(const SyncRecord& record) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              "DELETE FROM upload_sessions WHERE asset_local_identifier = ?");
        row.bind(1, record.assetLocalIdentifier);
        row.step();
    });
}

void UploadSessions::forgetExpired() {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "DELETE FROM upload_sessions WHERE made <= ?");
        row.bind(1, oldest());
        row.step();
    });
}

} // namespace quorvane

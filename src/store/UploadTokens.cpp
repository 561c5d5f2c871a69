#include "store/UploadTokens.h"

namespace quorvane {

namespace {

constexpr std::int64_t lifetimeSeconds = std::chrono::seconds(UploadTokens::lifetime).count();

} // namespace

void UploadTokens::keep(const SyncRecord& record, const QString& sha256, const QString& token) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR REPLACE INTO upload_tokens VALUES (?, ?, ?, ?)");
        row.bind(1, record.assetLocalIdentifier);
        row.bind(2, sha256);
        row.bind(3, token);
        row.bind(4, wholeUnixSeconds(clock_.now()));
        row.step();
    });
}

std::optional<QString> UploadTokens::find(const SyncRecord& record, const QString& sha256) {
    return db_.onConnection([&](sqlite::Connection& database) -> std::optional<QString> {
        sqlite::Statement row(database,
                              "SELECT token FROM upload_tokens WHERE asset_local_identifier = ? "
                              "AND sha256 = ? AND made BETWEEN ? AND ?");
        const std::int64_t now = wholeUnixSeconds(clock_.now());
        row.bind(1, record.assetLocalIdentifier);
        row.bind(2, sha256);
        row.bind(3, now - lifetimeSeconds);
        row.bind(4, now);
        return row.step() ? std::optional(row.text(0)) : std::nullopt;
    });
}

void UploadTokens::forget(const SyncRecord& record) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              "DELETE FROM upload_tokens WHERE asset_local_identifier = ?");
        row.bind(1, record.assetLocalIdentifier);
        row.step();
    });
}

void UploadTokens::forgetExpired() {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "DELETE FROM upload_tokens WHERE made < ?");
        row.bind(1, wholeUnixSeconds(clock_.now()) - lifetimeSeconds);
        row.step();
    });
}

} // namespace quorvane

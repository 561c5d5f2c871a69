#pragma once

/// The texts of the state store's statements, as SQLite sees them.
namespace quorvane::statements {

inline constexpr const char* schema =
    R"sql(CREATE TABLE IF NOT EXISTS sync_records (
    asset_local_identifier TEXT NOT NULL,
    provider_id            TEXT NOT NULL,
    account_id             TEXT NOT NULL,
    media_type             TEXT NOT NULL,
    sha256_hash            TEXT,
    file_size_bytes        INTEGER,
    upload_token           TEXT,
    remote_media_id        TEXT,
    sync_status            TEXT NOT NULL DEFAULT 'DISCOVERED',
    retry_count            INTEGER NOT NULL DEFAULT 0,
    last_error             TEXT,
    created_at             DATETIME NOT NULL DEFAULT (datetime('now')),
    updated_at             DATETIME NOT NULL DEFAULT (datetime('now')),
    PRIMARY KEY (asset_local_identifier, provider_id, account_id)
);
CREATE INDEX IF NOT EXISTS idx_sync_status ON sync_records(sync_status);
CREATE INDEX IF NOT EXISTS idx_updated_at  ON sync_records(updated_at);)sql";

inline constexpr const char* insertDiscovered =
    R"sql(INSERT OR IGNORE INTO sync_records
    (asset_local_identifier, provider_id, account_id, media_type,
     sync_status, retry_count, created_at, updated_at)
VALUES (?, ?, ?, ?, 'DISCOVERED', 0, datetime('now'), datetime('now')))sql";

inline constexpr const char* insertStaged =
    R"sql(INSERT OR IGNORE INTO sync_records
    (asset_local_identifier, provider_id, account_id, media_type,
     file_size_bytes, sync_status, retry_count, created_at, updated_at)
VALUES (?, ?, ?, ?, ?, 'STAGED', 0, datetime('now'), datetime('now')))sql";

inline constexpr const char* upsert =
    R"sql(INSERT INTO sync_records
    (asset_local_identifier, provider_id, account_id, media_type,
     sha256_hash, file_size_bytes, upload_token, remote_media_id,
     sync_status, retry_count, last_error, created_at, updated_at)
VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, datetime('now'), datetime('now'))
ON CONFLICT(asset_local_identifier, provider_id, account_id) DO UPDATE SET
    media_type      = excluded.media_type,
    sha256_hash     = excluded.sha256_hash,
    file_size_bytes = excluded.file_size_bytes,
    upload_token    = excluded.upload_token,
    remote_media_id = excluded.remote_media_id,
    sync_status     = excluded.sync_status,
    retry_count     = excluded.retry_count,
    last_error      = excluded.last_error,
    updated_at      = datetime('now'))sql";

inline constexpr const char* updateStatus =
    R"sql(UPDATE sync_records
SET sync_status     = ?,
    upload_token    = COALESCE(?, upload_token),
    remote_media_id = COALESCE(?, remote_media_id),
    last_error      = ?,
    retry_count     = CASE WHEN ? = 'FAILED' THEN retry_count + 1 ELSE retry_count END,
    updated_at      = datetime('now')
WHERE asset_local_identifier = ?
  AND provider_id = ?
  AND account_id  = ?)sql";

inline constexpr const char* statusOf =
    R"sql(SELECT sync_status FROM sync_records
WHERE asset_local_identifier = ? AND provider_id = ? AND account_id = ?)sql";

inline constexpr const char* fetchPending =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE sync_status IN ('DISCOVERED', 'STAGED')
ORDER BY created_at ASC
LIMIT ?)sql";

inline constexpr const char* fetchVerified =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE sync_status = 'VERIFIED'
  AND remote_media_id IS NOT NULL
  AND remote_media_id != ''
ORDER BY updated_at ASC)sql";

inline constexpr const char* fetchOfAsset =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE asset_local_identifier = ?)sql";

inline constexpr const char* countPending =
    R"sql(SELECT COUNT(*) FROM sync_records WHERE sync_status IN ('DISCOVERED', 'STAGED');)sql";

inline constexpr const char* countFailed =
    R"sql(SELECT COUNT(*) FROM sync_records WHERE sync_status = 'FAILED';)sql";

inline constexpr const char* countDateUnresolved =
    R"sql(SELECT COUNT(*) FROM sync_records WHERE sync_status = 'DATE_UNRESOLVED';)sql";

inline constexpr const char* failuresByError =
    R"sql(SELECT last_error, COUNT(*) FROM sync_records WHERE sync_status = 'FAILED' GROUP BY last_error;)sql";

inline constexpr const char* clearPending =
    R"sql(DELETE FROM sync_records WHERE sync_status IN ('DISCOVERED', 'STAGED');)sql";

inline constexpr const char* retryFailed =
    R"sql(UPDATE sync_records SET sync_status = 'DISCOVERED', last_error = NULL, retry_count = CASE WHEN ? = 1 THEN 0 ELSE retry_count END, updated_at = datetime('now') WHERE sync_status = 'FAILED';)sql";

inline constexpr const char* retryDateUnresolved =
    R"sql(UPDATE sync_records SET sync_status = 'DISCOVERED', last_error = NULL, updated_at = datetime('now') WHERE sync_status = 'DATE_UNRESOLVED';)sql";

inline constexpr const char* countByStatus =
    R"sql(SELECT sync_status, COUNT(*) FROM sync_records GROUP BY sync_status;)sql";

inline constexpr const char* fetchStatuses =
    R"sql(SELECT asset_local_identifier, sync_status FROM sync_records;)sql";

inline constexpr const char* fetchUnfinished =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE sync_status IN ('FAILED', 'DATE_UNRESOLVED')
ORDER BY updated_at DESC
LIMIT ?)sql";

inline constexpr const char* begin = "BEGIN IMMEDIATE TRANSACTION;";
inline constexpr const char* commit = "COMMIT;";
inline constexpr const char* rollback = "ROLLBACK;";

} // namespace quorvane::statements

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

/// A commit is safe from a crash of the program at once, and from a power cut at the next
/// checkpoint. What a power cut takes back is made good by the next run: an asset is discovered,
/// staged (its file is reused) or uploaded (the service knows the same bytes) once more. A flush of
/// the disk per record would buy nothing for several milliseconds each.
inline constexpr const char* synchronous = "PRAGMA synchronous=NORMAL;";

/// KiB. Identifiers are in no order: beyond some ten thousand records, with SQLite's own 2 MiB,
/// each insertion would read a page of the index and write another.
inline constexpr const char* cacheSize = "PRAGMA cache_size=-8000;";

/// Serve the queries that are asked again and again over a few of very many records.
inline constexpr const char* partialIndexes =
    R"sql(CREATE INDEX IF NOT EXISTS idx_pending ON sync_records(created_at)
    WHERE sync_status IN ('DISCOVERED', 'STAGED');
CREATE INDEX IF NOT EXISTS idx_failed ON sync_records(sync_status, last_error)
    WHERE sync_status = 'FAILED';
CREATE INDEX IF NOT EXISTS idx_unfinished ON sync_records(updated_at)
    WHERE sync_status IN ('FAILED', 'DATE_UNRESOLVED');)sql";

/// What is remembered beside the records: the bytes that each was staged from, the removals that
/// have begun, the assets whose staged files are nobody's any more, the dates of the staged files
/// (milliseconds since 1970 UTC), what a person chose where there was none, the assets whose
/// original is not on this machine and why, what of an asset is not in its staged file, the albums
/// that mirror the library's, the bytes that were sent and are no item yet, what FAILED records
/// failed by, when what happened to a record (seconds since 1970 UTC), the files of a folder
/// library, and whose state this is.
inline constexpr const char* besides =
    R"sql(CREATE TABLE IF NOT EXISTS record_sources (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    sha256                 TEXT NOT NULL,
    size                   INTEGER NOT NULL,
    modified               INTEGER NOT NULL,
    changed                INTEGER NOT NULL,
    inode                  INTEGER NOT NULL,
    sample                 INTEGER NOT NULL
) WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS idx_source_sample ON record_sources(sample, sha256);
CREATE TABLE IF NOT EXISTS record_movies (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    sha256                 TEXT NOT NULL,
    size                   INTEGER NOT NULL,
    modified               INTEGER NOT NULL,
    changed                INTEGER NOT NULL,
    inode                  INTEGER NOT NULL
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_deletions (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_leavings (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_misdatings (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    date                   INTEGER NOT NULL
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS upload_sessions (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    sha256                 TEXT NOT NULL,
    size                   INTEGER NOT NULL,
    account                TEXT NOT NULL,
    address                TEXT NOT NULL,
    made                   INTEGER NOT NULL
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_dates (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    date                   INTEGER NOT NULL,
    source                 TEXT NOT NULL
) WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS idx_dated_by_number ON record_dates(source)
    WHERE source = 'numberInName';
CREATE TABLE IF NOT EXISTS record_choices (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    date                   INTEGER
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_undatable (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_absences (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    code                   TEXT NOT NULL
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS upload_tokens (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    sha256                 TEXT NOT NULL,
    token                  TEXT NOT NULL,
    made                   INTEGER NOT NULL
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_faults (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    code                   TEXT NOT NULL,
    reason                 TEXT NOT NULL
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_times (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    staged                 INTEGER NOT NULL,
    uploaded               INTEGER
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS record_remainders (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY,
    behind                 INTEGER NOT NULL
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS mirror_albums (
    album     TEXT NOT NULL,
    part      INTEGER NOT NULL,
    remote_id TEXT NOT NULL,
    title     TEXT NOT NULL,
    state     INTEGER NOT NULL,
    PRIMARY KEY (album, part)
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS mirror_items (
    album      TEXT NOT NULL,
    media_item TEXT NOT NULL,
    part       INTEGER NOT NULL,
    PRIMARY KEY (album, media_item)
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS library_files (
    path       BLOB NOT NULL PRIMARY KEY,
    identifier TEXT NOT NULL,
    size       INTEGER NOT NULL,
    modified   INTEGER NOT NULL,
    changed    INTEGER NOT NULL,
    inode      INTEGER NOT NULL
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS state_facts (
    name  TEXT NOT NULL PRIMARY KEY,
    value TEXT NOT NULL
) WITHOUT ROWID;)sql";

inline constexpr const char* hasPlanStatistics =
    R"sql(SELECT 1 FROM sqlite_stat1 WHERE idx = 'idx_unfinished')sql";

/// Without numbers SQLite takes a status for rare and sorts all records that have it. These say
/// what a full store looks like, nearly every record in one status, so that the plans are the same
/// from the first record to the last; an ANALYZE of a young store would say otherwise. Each number:
/// rows in the index, then rows per value of its first column, of its first two, and so on.
inline constexpr const char* planStatistics =
    R"sql(BEGIN IMMEDIATE;
ANALYZE sqlite_schema;
DELETE FROM sqlite_stat1 WHERE tbl = 'sync_records';
INSERT INTO sqlite_stat1(tbl, idx, stat) VALUES
    ('sync_records', 'sqlite_autoindex_sync_records_1', '200000 1 1 1'),
    ('sync_records', 'idx_sync_status', '200000 200000'),
    ('sync_records', 'idx_updated_at', '200000 20'),
    ('sync_records', 'idx_pending', '100000 1000'),
    ('sync_records', 'idx_failed', '10000 10000 1000'),
    ('sync_records', 'idx_unfinished', '10000 10');
COMMIT;
ANALYZE sqlite_schema;)sql";

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

inline constexpr const char* fetchOne =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE asset_local_identifier = ? AND provider_id = ? AND account_id = ?)sql";

inline constexpr const char* statusOf =
    R"sql(SELECT sync_status FROM sync_records
WHERE asset_local_identifier = ? AND provider_id = ? AND account_id = ?)sql";

/// The assets that `DatabaseManager::limitTo` speaks of, for one connection.
inline constexpr const char* makeLimit =
    R"sql(CREATE TEMP TABLE IF NOT EXISTS asset_limit (
    asset_local_identifier TEXT NOT NULL PRIMARY KEY
) WITHOUT ROWID;
DELETE FROM temp.asset_limit;)sql";

inline constexpr const char* addToLimit =
    R"sql(INSERT OR IGNORE INTO temp.asset_limit VALUES (?))sql";

inline constexpr const char* fetchPending =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE sync_status IN ('DISCOVERED', 'STAGED')
ORDER BY created_at ASC
LIMIT ? OFFSET ?)sql";

inline constexpr const char* fetchPendingLimited =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE sync_status IN ('DISCOVERED', 'STAGED')
  AND asset_local_identifier IN temp.asset_limit
ORDER BY created_at ASC
LIMIT ? OFFSET ?)sql";

inline constexpr const char* fetchVerified =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE sync_status = 'VERIFIED'
  AND remote_media_id IS NOT NULL
  AND remote_media_id != ''
ORDER BY updated_at ASC)sql";

inline constexpr const char* fetchVerifiedLimited =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE sync_status = 'VERIFIED'
  AND remote_media_id IS NOT NULL
  AND remote_media_id != ''
  AND asset_local_identifier IN temp.asset_limit
ORDER BY updated_at ASC)sql";

inline constexpr const char* countNotVerified =
    R"sql(SELECT COUNT(DISTINCT asset_local_identifier) FROM sync_records
WHERE sync_status NOT IN ('DELETED_LOCALLY', 'EXCLUDED')
  AND (sync_status != 'VERIFIED' OR COALESCE(remote_media_id, '') = ''))sql";

inline constexpr const char* fetchOfAsset =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE asset_local_identifier = ?)sql";

inline constexpr const char* fetchOfStatus =
    R"sql(SELECT asset_local_identifier, provider_id, account_id, media_type,
       sha256_hash, file_size_bytes, upload_token, remote_media_id,
       sync_status, retry_count, last_error, created_at, updated_at
FROM sync_records
WHERE sync_status = ?)sql";

inline constexpr const char* countPending =
    R"sql(SELECT COUNT(*) FROM sync_records WHERE sync_status IN ('DISCOVERED', 'STAGED');)sql";

inline constexpr const char* countPendingLimited =
    R"sql(SELECT COUNT(*) FROM sync_records WHERE sync_status IN ('DISCOVERED', 'STAGED')
  AND asset_local_identifier IN temp.asset_limit;)sql";

inline constexpr const char* countFailed =
    R"sql(SELECT COUNT(*) FROM sync_records WHERE sync_status = 'FAILED';)sql";

inline constexpr const char* countDateUnresolved =
    R"sql(SELECT COUNT(*) FROM sync_records WHERE sync_status = 'DATE_UNRESOLVED';)sql";

inline constexpr const char* failuresByError =
    R"sql(SELECT last_error, COUNT(*) FROM sync_records WHERE sync_status = 'FAILED' GROUP BY last_error;)sql";

/// The same, of those whose fault is known.
inline constexpr const char* failuresByFault =
    R"sql(SELECT last_error, COUNT(*), code
FROM record_faults CROSS JOIN sync_records USING (asset_local_identifier)
WHERE sync_status = 'FAILED' GROUP BY last_error, code;)sql";

inline constexpr const char* clearPending =
    R"sql(DELETE FROM sync_records WHERE sync_status IN ('DISCOVERED', 'STAGED');)sql";

inline constexpr const char* retryFailed =
    R"sql(UPDATE sync_records SET sync_status = 'DISCOVERED', last_error = NULL, retry_count = CASE WHEN ? = 1 THEN 0 ELSE retry_count END, updated_at = datetime('now') WHERE sync_status = 'FAILED';)sql";

inline constexpr const char* retryDateUnresolved =
    R"sql(UPDATE sync_records SET sync_status = 'DISCOVERED', last_error = NULL, updated_at = datetime('now') WHERE sync_status = 'DATE_UNRESOLVED';)sql";

inline constexpr const char* countByStatus =
    R"sql(SELECT sync_status, COUNT(*) FROM sync_records GROUP BY sync_status;)sql";

/// CROSS: SQLite takes a table without statistics for a large one and would ask it about every
/// record, where what stands beside the records is little.
inline constexpr const char* heldUndatable =
    R"sql(SELECT asset_local_identifier
FROM record_undatable CROSS JOIN sync_records USING (asset_local_identifier)
WHERE sync_status = 'DATE_UNRESOLVED')sql";

inline constexpr const char* countHeldUndatable =
    R"sql(SELECT COUNT(*) FROM record_undatable CROSS JOIN sync_records USING (asset_local_identifier)
WHERE sync_status = 'DATE_UNRESOLVED')sql";

inline constexpr const char* countDatedByNumber =
    R"sql(SELECT COUNT(*) FROM record_dates CROSS JOIN sync_records USING (asset_local_identifier)
WHERE source = 'numberInName' AND sync_status IN ('VERIFIED', 'DELETED_LOCALLY'))sql";

inline constexpr const char* misdated =
    R"sql(SELECT asset_local_identifier, record_dates.date, record_misdatings.date
FROM record_misdatings
CROSS JOIN record_dates USING (asset_local_identifier)
CROSS JOIN sync_records USING (asset_local_identifier)
WHERE sync_status IN ('VERIFIED', 'DELETED_LOCALLY')
ORDER BY asset_local_identifier)sql";

inline constexpr const char* countMisdated =
    R"sql(SELECT COUNT(*) FROM record_misdatings CROSS JOIN sync_records USING (asset_local_identifier)
WHERE sync_status IN ('VERIFIED', 'DELETED_LOCALLY'))sql";

inline constexpr const char* datesSent =
    R"sql(SELECT strftime('%Y-%m', d.date / 1000, 'unixepoch') AS month, d.source,
       r.media_type = 'video', COUNT(*)
FROM record_dates d JOIN sync_records r USING (asset_local_identifier)
WHERE r.sync_status IN ('VERIFIED', 'DELETED_LOCALLY')
GROUP BY 1, 2, 3)sql";

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

/// What waits for a person, with all that decides in which group.
inline constexpr const char* heldPlaces =
    R"sql(SELECT sync_records.rowid, sync_status, code, record_undatable.asset_local_identifier,
       last_error
FROM sync_records
LEFT JOIN record_faults USING (asset_local_identifier)
LEFT JOIN record_undatable USING (asset_local_identifier)
WHERE sync_status IN ('FAILED', 'DATE_UNRESOLVED')
ORDER BY updated_at DESC, sync_records.rowid DESC)sql";

inline constexpr const char* heldAt =
    R"sql(SELECT asset_local_identifier, provider_id, account_id FROM sync_records
WHERE rowid = ? AND sync_status IN ('FAILED', 'DATE_UNRESOLVED'))sql";

} // namespace quorvane::statements

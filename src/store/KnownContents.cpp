#include "store/KnownContents.h"

namespace quorvane {

namespace {

constexpr const char* anyOfSample =
    R"sql(SELECT 1 FROM record_sources WHERE sample = ? LIMIT 1)sql";

constexpr const char* ofSameBytes =
    R"sql(SELECT s.asset_local_identifier, r.sync_status, r.remote_media_id
FROM record_sources s JOIN sync_records r USING (asset_local_identifier)
WHERE s.sample = ? AND s.sha256 = ?)sql";

bool hasSourceOf(sqlite::Connection& database, std::int64_t sample) {
    sqlite::Statement row(database, anyOfSample);
    row.bind(1, sample);
    return row.step();
}

bool isSent(const QString& status) {
    return status == rawValue(SyncStatus::verified) ||
           status == rawValue(SyncStatus::deletedLocally);
}

} // namespace

KnownContents::KnownContents(DatabaseManager& own, const std::vector<std::filesystem::path>& others)
    : own_(own) {
    for (const auto& file : others) {
        try {
            others_.lock()->push_back(
                std::make_unique<sqlite::Connection>(file, sqlite::Connection::Mode::readOnly));
        } catch (const sqlite::SqliteError&) {
            continue;
        }
    }
}

bool KnownContents::hasSample(std::int64_t sample) {
    if (own_.onConnection(
            [&](sqlite::Connection& database) { return hasSourceOf(database, sample); }))
        return true;
    const auto others = others_.lock();
    for (const auto& other : *others) {
        try {
            if (hasSourceOf(*other, sample))
                return true;
        } catch (const sqlite::SqliteError&) {
            continue;
        }
    }
    return false;
}

KnownContents::Found KnownContents::find(std::int64_t sample, const QString& sha256,
                                         const QString& identifier) {
    Found found;
    const auto look = [&](sqlite::Connection& database, bool isOwn) {
        sqlite::Statement row(database, ofSameBytes);
        row.bind(1, sample);
        row.bind(2, sha256);
        while (row.step()) {
            const QString status = row.text(1);
            if (isSent(status) && !row.text(2).isEmpty())
                found.remoteIDs += row.text(2);
            else if (isOwn && status == rawValue(SyncStatus::staged) && row.text(0) != identifier)
                found.isUnderWay = true;
        }
    };
    own_.onConnection([&](sqlite::Connection& database) { look(database, true); });
    const auto others = others_.lock();
    for (const auto& other : *others) {
        try {
            look(*other, false);
        } catch (const sqlite::SqliteError&) {
            continue;
        }
    }
    return found;
}

} // namespace quorvane

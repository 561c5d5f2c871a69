#include "library/Absences.h"

#include "store/RecordAbsences.h"

namespace quorvane {

QString codeOf(const AbsentOriginal& absence) {
    return absence.why == AbsentOriginal::Why::onlyInCloud ? RecordAbsences::onlyInCloud
                                                           : RecordAbsences::elsewhere;
}

int settleAbsences(const std::vector<PhotoAsset>& assets, PhotoLibrary& library,
                   DatabaseManager& database, RecordLife& life, const std::stop_token& stop) {
    const auto absent = library.absentOriginals(assets, stop);
    const auto known = RecordAbsences(database).all();
    if (absent.empty() && known.empty())
        return 0;
    return database.transaction([&](sqlite::Connection&) {
        int returned = 0;
        for (const PhotoAsset& asset : assets) {
            const QString& identifier = asset.localIdentifier;
            const auto now = absent.find(identifier);
            const auto before = known.find(identifier);
            const QString code = now == absent.end() ? QString() : codeOf(now->second);
            if (code == (before == known.end() ? QString() : before->second))
                continue;
            if (before != known.end())
                for (const SyncRecord& record : database.fetchRecordsOfAsset(identifier))
                    returned += life.returned(record) ? 1 : 0;
            if (now == absent.end())
                continue;
            for (const SyncRecord& record : database.fetchRecordsOfAsset(identifier))
                if (!record.sha256Hash)
                    life.absent(record, code, now->second.reason);
        }
        return returned;
    });
}

} // namespace quorvane

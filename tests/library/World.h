#pragma once

#include "FakePhotoLibrary.h"
#include "library/AssetStagingService.h"
#include "library/RemoteItems.h"
#include "sample/SampleMedia.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane::test {

/// "00000007-0000-4000-8000-000000000000/L0/001"
inline QString assetID(int number) {
    return QStringLiteral("%1-0000-4000-8000-000000000000/L0/001").arg(number, 8, 16, QChar(u'0'));
}

/// The console lines that `work` prints.
template <typename Work>
QStringList printedBy(Work&& work) {
    testing::internal::CaptureStdout();
    work();
    return QString::fromStdString(testing::internal::GetCapturedStdout())
        .split(u'\n', Qt::SkipEmptyParts);
}

/// The items at the destination.
class FakeRemoteItems final : public RemoteItems {
  public:
    std::set<QString> items;
    bool mayAsk = true;
    std::optional<QString> failure; ///< thrown instead of an answer
    std::vector<QStringList> asked;

    std::optional<std::set<QString>> existing(const QStringList& remoteIDs,
                                              std::stop_token) override {
        asked.push_back(remoteIDs);
        if (failure)
            throw Error(*failure);
        if (!mayAsk)
            return std::nullopt;
        std::set<QString> found;
        for (const QString& id : remoteIDs)
            if (items.contains(id))
                found.insert(id);
        return found;
    }
};

/// A staging service over a real store and real folders.
struct World {
    TemporaryFolder folder;
    UserFolders folders{folder.path(), folder / "Pictures", folder / "temporary/QuorvaneStaging"};
    std::filesystem::path permanent = folders.permanentStaging();
    Console console;
    RecordingLog log;
    FakeClock clock;
    StatePlace place = StateCatalogue(folders).first();
    DatabaseManager database{place.database, console};
    RecordLife life{database, {QStringLiteral("1"), QStringLiteral("a@example.com")}};
    KnownContents known{database, {}};
    FakePhotoLibrary library;
    MediaMetadataService metadata{library, folders.pictures, log, clock};
    AssetStagingService::Services services{library, database, life, known, metadata, console};
    AssetStagingService staging{services, place, folders.stagingLock()};

    /// Adds an asset to the library and its DISCOVERED record to the store.
    void discover(const QString& identifier, const QString& filename = QStringLiteral("a.bin")) {
        library.add(identifier, filename);
        discoverRecord(identifier);
    }
    /// A live photo of 2021-03-05 16:22:10 UTC whose movie, an entry of its own by the name of
    /// "movie", is to be sent inside its still.
    void discoverLive(const QString& identifier, const QByteArray& movie) {
        FakePhotoLibrary::Entry still, film;
        still.asset.localIdentifier = identifier;
        still.asset.creationDate = Date(std::chrono::seconds(1614961330));
        still.bytes = sample::jpeg(1, {});
        still.resources = {{AssetResourceType::photo, QStringLiteral("a.jpg"), {}, {}},
                           {AssetResourceType::pairedVideo, QStringLiteral("a.mov"), {}, "movie"}};
        still.resources[1].joinsStill = true;
        film.asset.localIdentifier = QStringLiteral("movie");
        film.bytes = movie;
        library.add(still);
        library.add(film);
        discoverRecord(identifier);
    }
    void discoverRecord(const QString& identifier) {
        SyncRecord record;
        record.assetLocalIdentifier = identifier;
        database.insertIfNotExists(record);
    }
    void setStatus(const QString& identifier, SyncStatus status,
                   const std::optional<QString>& remoteMediaID = {}) {
        database.updateStatus(identifier, googlePhotosProvider, pendingAccount, status, {},
                              remoteMediaID);
    }
    /// The asset's record with the standard account; none when there is none.
    std::optional<SyncRecord> record(const QString& identifier) {
        for (const SyncRecord& record : database.fetchRecordsOfAsset(identifier))
            if (record.accountID == pendingAccount)
                return record;
        return std::nullopt;
    }
    std::optional<SyncStatus> status(const QString& identifier) {
        const auto found = record(identifier);
        return found ? std::optional(found->syncStatus) : std::nullopt;
    }
    /// Names in a folder, sorted.
    static QStringList names(const std::filesystem::path& folder) {
        QStringList names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.append(pathText(entry.path().filename()));
        names.sort();
        return names;
    }
    QStringList stagedNames() const { return names(permanent); }
};

} // namespace quorvane::test

#include "World.h"

#include "library/SafeDeletionService.h"
#include "store/Sqlite.h"

namespace quorvane::test {

namespace {

const QString prefix = QStringLiteral("[SafeDeletion] ");

struct DeletionWorld : World {
    SafeDeletionService deletion{database, staging, library, log};

    /// A staged asset whose copy is safe.
    void verify(int number) {
        discover(assetID(number));
        staging.stageDiscoveredAssets();
        setStatus(assetID(number), SyncStatus::verified, QStringLiteral("remote"));
    }
};

} // namespace

TEST(SafeDeletionService, RemovesVerifiedOriginalsAfterConsent) {
    DeletionWorld world;
    world.verify(1);
    world.discover(assetID(2));
    world.staging.stageDiscoveredAssets();
    world.deletion.performDeletion(true);

    EXPECT_EQ(
        world.log.messages().filter(prefix),
        (QStringList{
            prefix + QStringLiteral("1 silme adayı bulundu, güvenlik doğrulaması yapılıyor..."),
            prefix + QStringLiteral("1 doğrulanmış medya için Apple Photos sistem onayına "
                                    "sunuluyor..."),
            prefix + QStringLiteral("✅ Güvenle silindi ve staging temizlendi: ") + assetID(1),
        }));
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::deletedLocally);
    EXPECT_EQ(world.record(assetID(1))->remoteMediaID, QStringLiteral("remote"));
    EXPECT_FALSE(world.staging.findStagingFile(assetID(1)));
    ASSERT_EQ(world.library.assets().size(), 1U);
    EXPECT_EQ(world.library.assets().front().localIdentifier, assetID(2));
    EXPECT_TRUE(world.staging.findStagingFile(assetID(2)));

    world.deletion.performDeletion(true);
    EXPECT_EQ(world.log.messages().last(),
              prefix + QStringLiteral("Silinecek VERIFIED aday bulunamadı."));
}

TEST(SafeDeletionService, KeepsWhatChangedSinceItWasBackedUp) {
    DeletionWorld world;
    world.verify(1);
    PhotoAsset replaced = world.library.assets().front();
    world.library.remove(replaced.localIdentifier);
    replaced.modificationDate = world.record(assetID(1))->createdAt;
    world.library.add({replaced, {}, {}});
    world.deletion.performDeletion(true);
    EXPECT_EQ(world.log.messages().last(),
              prefix + QStringLiteral("⚠️ Yedeklendikten sonra değişmiş, silinmeyecek: ") +
                  assetID(1));
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::verified);
    EXPECT_EQ(world.library.assets().size(), 1U);
}

TEST(SafeDeletionService, SwitchedOffDoesNothing) {
    DeletionWorld world;
    world.verify(1);
    world.deletion.performDeletion(false);
    EXPECT_EQ(world.log.messages().filter(prefix),
              QStringList{prefix + QStringLiteral("Otomatik silme kapalı, işlem atlandı.")});
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::verified);
    EXPECT_EQ(world.library.assets().size(), 1U);
}

TEST(SafeDeletionService, EveryRecordOfTheAssetMustBeSafe) {
    const struct {
        SyncStatus status;
        std::optional<QString> remoteMediaID;
        bool isDeleted;
    } cases[] = {
        {SyncStatus::verified, QStringLiteral("remote too"), true},
        {SyncStatus::verified, QString(QLatin1String("")), false},
        {SyncStatus::verified, std::nullopt, false},
        {SyncStatus::staged, QStringLiteral("remote too"), false},
        {SyncStatus::failed, std::nullopt, false},
    };
    for (const auto& each : cases) {
        DeletionWorld world;
        world.verify(1);
        SyncRecord other;
        other.assetLocalIdentifier = assetID(1);
        other.accountID = QStringLiteral("second");
        other.syncStatus = each.status;
        other.remoteMediaID = each.remoteMediaID;
        world.database.upsertRecord(other);
        world.deletion.performDeletion(true);

        EXPECT_EQ(world.library.assets().empty(), each.isDeleted);
        for (const SyncRecord& record : world.database.fetchRecordsOfAsset(assetID(1)))
            EXPECT_EQ(record.syncStatus == SyncStatus::deletedLocally, each.isDeleted);
        if (!each.isDeleted) {
            EXPECT_EQ(world.log.messages().last(),
                      prefix + QStringLiteral("Güvenlik kontrolünden geçen aday yok "
                                              "(Zero-Data-Loss koruması devrede)."));
        }
    }
}

TEST(SafeDeletionService, ARefusalLeavesEverything) {
    DeletionWorld world;
    world.verify(1);
    world.library.onDelete = [] { throw PhotoLibraryError(QStringLiteral("Vazgeçildi")); };
    world.deletion.performDeletion(true);
    EXPECT_EQ(world.log.messages().last(),
              prefix + QStringLiteral("ℹ️ Sistem silme diyaloğu iptal edildi veya reddedildi: "
                                      "Vazgeçildi"));
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::verified);
    EXPECT_TRUE(world.staging.findStagingFile(assetID(1)));
    EXPECT_EQ(world.library.assets().size(), 1U);
}

TEST(SafeDeletionService, DoesNotAskForAssetsThatAreGoneNorAfterAStop) {
    DeletionWorld world;
    world.verify(1);
    world.verify(2);
    bool wasAsked = false;
    world.library.onDelete = [&] { wasAsked = true; };
    std::stop_source stop;
    stop.request_stop();
    world.deletion.performDeletion(true, stop.get_token());

    world.library.remove(assetID(1));
    world.library.remove(assetID(2));
    world.deletion.performDeletion(true);
    EXPECT_EQ(world.log.messages().last(), prefix + QStringLiteral("PHAsset bulunamadı: ") +
                                               assetID(1) + QStringLiteral(", ") + assetID(2));
    EXPECT_FALSE(wasAsked);
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::verified);
}

TEST(SafeDeletionService, ABrokenStoreHasNoCandidates) {
    DeletionWorld world;
    DatabaseManager broken(world.folder.path(), world.console);
    SafeDeletionService deletion(broken, world.staging, world.library, world.log);
    deletion.performDeletion(true);
    EXPECT_EQ(world.log.messages().filter(prefix),
              QStringList{prefix + QStringLiteral("Silinecek VERIFIED aday bulunamadı.")});
}

TEST(SafeDeletionService, CleansUpAlsoWhenTheStoreFailsAfterTheDeletion) {
    DeletionWorld world;
    world.verify(1);
    world.library.onDelete = [&] {
        sqlite::Connection other(world.folders.database(),
                                 sqlite::Connection::Mode::readWriteCreate);
        other.execute("CREATE TRIGGER refuse BEFORE UPDATE ON sync_records "
                      "BEGIN SELECT RAISE(ABORT, 'refused'); END;");
    };
    world.deletion.performDeletion(true);
    EXPECT_TRUE(world.log.contains(
        prefix + QStringLiteral("⚠️ DB güncelleme hatası: [DB] Step failed: refused")));
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::verified);
    EXPECT_FALSE(world.staging.findStagingFile(assetID(1)));
    EXPECT_EQ(world.log.messages().last(),
              prefix + QStringLiteral("✅ Güvenle silindi ve staging temizlendi: ") + assetID(1));
}

} // namespace quorvane::test

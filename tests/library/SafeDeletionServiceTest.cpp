#include "World.h"

#include "library/SafeDeletionService.h"
#include "store/Sqlite.h"

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

const QString prefix = u"[SafeDeletion] "_s;

struct DeletionWorld : World {
    SafeDeletionService deletion{database, staging, library, log};

    /// A staged asset whose copy is safe.
    void verify(int number) {
        discover(assetID(number));
        staging.stageDiscoveredAssets();
        setStatus(assetID(number), SyncStatus::verified, u"remote"_s);
    }
};

class SafeDeletionServiceTest : public testing::Test, protected DeletionWorld {};

} // namespace

TEST_F(SafeDeletionServiceTest, RemovesVerifiedOriginalsAfterConsent) {
    verify(1);
    discover(assetID(2));
    staging.stageDiscoveredAssets();
    deletion.performDeletion(true);

    EXPECT_EQ(log.messages().filter(prefix),
              (QStringList{
                  prefix + u"1 silme adayı bulundu, güvenlik doğrulaması yapılıyor..."_s,
                  prefix + u"1 doğrulanmış medya için Apple Photos sistem onayına "
                           "sunuluyor..."_s,
                  prefix + u"✅ Güvenle silindi ve staging temizlendi: "_s + assetID(1),
              }));
    EXPECT_EQ(status(assetID(1)), SyncStatus::deletedLocally);
    EXPECT_EQ(record(assetID(1))->remoteMediaID, u"remote"_s);
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
    ASSERT_EQ(library.assets().size(), 1U);
    EXPECT_EQ(library.assets().front().localIdentifier, assetID(2));
    EXPECT_TRUE(staging.findStagingFile(assetID(2)));

    deletion.performDeletion(true);
    EXPECT_EQ(log.messages().last(), prefix + u"Silinecek VERIFIED aday bulunamadı."_s);
}

TEST(SafeDeletionService, LeavesEverythingWhereItMayNotDelete) {
    const auto refuse = [](DeletionWorld& world) {
        world.library.onDelete = [] { throw PhotoLibraryError(u"Vazgeçildi"_s); };
    };
    const auto changeOriginal = [](DeletionWorld& world) {
        PhotoAsset changed = world.library.assets().front();
        world.library.remove(changed.localIdentifier);
        changed.modificationDate = world.record(assetID(1))->createdAt;
        world.library.add({changed, {}, {}});
    };
    const struct {
        std::function<void(DeletionWorld&)> prepare;
        bool isEnabled;
        QString line;
    } cases[] = {
        {[](auto&) {}, false, u"Otomatik silme kapalı, işlem atlandı."_s},
        {refuse, true,
         u"ℹ️ Sistem silme diyaloğu iptal edildi veya reddedildi: Vazgeçildi"_s},
        {changeOriginal, true,
         u"⚠️ Yedeklendikten sonra değişmiş, silinmeyecek: "_s + assetID(1)},
    };
    for (const auto& each : cases) {
        DeletionWorld world;
        world.verify(1);
        each.prepare(world);
        world.deletion.performDeletion(each.isEnabled);
        EXPECT_EQ(world.log.messages().last(), prefix + each.line);
        EXPECT_EQ(world.status(assetID(1)), SyncStatus::verified);
        EXPECT_TRUE(world.staging.findStagingFile(assetID(1)));
        EXPECT_EQ(world.library.assets().size(), 1U);
    }
}

TEST(SafeDeletionService, EveryRecordOfTheAssetMustBeSafe) {
    const struct {
        SyncStatus status;
        std::optional<QString> remoteMediaID;
        bool isDeleted;
    } cases[] = {
        {SyncStatus::verified, u"remote too"_s, true},
        {SyncStatus::verified, QString(QLatin1String("")), false},
        {SyncStatus::verified, std::nullopt, false},
        {SyncStatus::staged, u"remote too"_s, false},
        {SyncStatus::failed, std::nullopt, false},
    };
    for (const auto& each : cases) {
        DeletionWorld world;
        world.verify(1);
        SyncRecord other;
        other.assetLocalIdentifier = assetID(1);
        other.accountID = u"second"_s;
        other.syncStatus = each.status;
        other.remoteMediaID = each.remoteMediaID;
        world.database.upsertRecord(other);
        world.deletion.performDeletion(true);

        EXPECT_EQ(world.library.assets().empty(), each.isDeleted);
        for (const SyncRecord& record : world.database.fetchRecordsOfAsset(assetID(1)))
            EXPECT_EQ(record.syncStatus == SyncStatus::deletedLocally, each.isDeleted);
        if (!each.isDeleted) {
            EXPECT_EQ(world.log.messages().last(), prefix + u"Güvenlik kontrolünden geçen aday yok "
                                                            "(Zero-Data-Loss koruması devrede)."_s);
        }
    }
}

TEST_F(SafeDeletionServiceTest, DoesNotAskForAssetsThatAreGoneNorAfterAStop) {
    verify(1);
    verify(2);
    bool wasAsked = false;
    library.onDelete = [&] { wasAsked = true; };
    std::stop_source stop;
    stop.request_stop();
    deletion.performDeletion(true, stop.get_token());

    library.remove(assetID(1));
    library.remove(assetID(2));
    deletion.performDeletion(true);
    EXPECT_EQ(log.messages().last(),
              prefix + u"PHAsset bulunamadı: "_s + assetID(1) + u", "_s + assetID(2));
    EXPECT_FALSE(wasAsked);
    EXPECT_EQ(status(assetID(1)), SyncStatus::verified);
}

TEST_F(SafeDeletionServiceTest, ABrokenStoreHasNoCandidates) {
    DatabaseManager broken(folder.path(), console);
    SafeDeletionService helpless(broken, staging, library, log);
    helpless.performDeletion(true);
    EXPECT_EQ(log.messages().filter(prefix),
              QStringList{prefix + u"Silinecek VERIFIED aday bulunamadı."_s});
}

TEST_F(SafeDeletionServiceTest, CleansUpAlsoWhenTheStoreFailsAfterTheDeletion) {
    verify(1);
    library.onDelete = [&] {
        sqlite::Connection other(folders.database(), sqlite::Connection::Mode::readWriteCreate);
        other.execute("CREATE TRIGGER refuse BEFORE UPDATE ON sync_records "
                      "BEGIN SELECT RAISE(ABORT, 'refused'); END;");
    };
    deletion.performDeletion(true);
    EXPECT_TRUE(
        log.contains(prefix + u"⚠️ DB güncelleme hatası: [DB] Step failed: refused"_s));
    EXPECT_EQ(status(assetID(1)), SyncStatus::verified);
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
    EXPECT_EQ(log.messages().last(),
              prefix + u"✅ Güvenle silindi ve staging temizlendi: "_s + assetID(1));
}

} // namespace quorvane::test

#include "World.h"

#include "library/SafeDeletionService.h"

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

const QString prefix = u"[SafeDeletion] "_s;

struct DeletionWorld : World {
    FakeRemoteItems remote;
    SafeDeletionService deletion{{database, life, staging, library, remote, log}};

    /// A staged asset whose copy is safe.
    void verify(int number) {
        discover(assetID(number));
        staging.stageDiscoveredAssets();
        const QString remoteID = u"remote-%1"_s.arg(number);
        setStatus(assetID(number), SyncStatus::verified, remoteID);
        remote.items.insert(remoteID);
    }
    void execute(const char* sql) {
        database.onConnection([&](sqlite::Connection& connection) { connection.execute(sql); });
    }
};

using Kept = std::map<KeptReason, int>;

class SafeDeletionServiceTest : public testing::Test, protected DeletionWorld {};

} // namespace

TEST_F(SafeDeletionServiceTest, RemovesVerifiedOriginalsAfterConsent) {
    verify(1);
    discover(assetID(2));
    staging.stageDiscoveredAssets();
    library.replace(assetID(1), "bytes of a.bin"); // another version of the same bytes
    EXPECT_EQ(deletion.performDeletion(true).deleted, 1);

    EXPECT_EQ(log.messages().filter(prefix),
              (QStringList{
                  prefix + u"1 silme adayı bulundu, güvenlik doğrulaması yapılıyor..."_s,
                  prefix + u"1 doğrulanmış medya için Apple Photos sistem onayına "
                           "sunuluyor..."_s,
                  prefix + u"✅ Güvenle silindi ve staging temizlendi: "_s + assetID(1),
              }));
    EXPECT_EQ(library.asked.warning, QString());
    EXPECT_EQ(library.asked.kept, (Kept{{KeptReason::notVerified, 1}}));
    EXPECT_EQ(status(assetID(1)), SyncStatus::deletedLocally);
    EXPECT_EQ(record(assetID(1))->remoteMediaID, u"remote-1"_s);
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
    ASSERT_EQ(library.assets().size(), 1U);
    EXPECT_EQ(library.assets().front().localIdentifier, assetID(2));
    EXPECT_TRUE(staging.findStagingFile(assetID(2)));

    deletion.performDeletion(true);
    EXPECT_EQ(log.messages().last(), prefix + u"Silinecek VERIFIED aday bulunamadı."_s);
}

TEST(SafeDeletionService, LeavesOutWhatCannotBeProvenAndRemovesTheRest) {
    const auto duringTheQuestion = [](auto change) {
        return [change](DeletionWorld& world) { world.library.onDelete = [&] { change(world); }; };
    };
    const auto add = [](AssetResourceType type) {
        return [type](DeletionWorld& world) {
            FakePhotoLibrary::Entry entry;
            entry.asset = world.library.assets().front();
            entry.resources = {{AssetResourceType::photo, u"a.bin"_s, std::nullopt, {}},
                               {type, u"a.too"_s, std::nullopt, {}}};
            entry.bytes = "bytes of a.bin";
            world.library.remove(assetID(1));
            world.library.add(entry);
        };
    };
    const struct {
        std::function<void(DeletionWorld&)> change;
        QString reason;
        Kept kept = {}; ///< what the question tells
        SyncStatus status = SyncStatus::verified;
    } cases[] = {
        {[](auto& world) { world.library.replace(assetID(1), "edited since"); },
         u"Eşitlemeden sonra değişti: Yeni hâli yüklenmeyi bekliyor"_s,
         {{KeptReason::changed, 1}}},
        {duringTheQuestion([](auto& world) { world.library.replace(assetID(1), "edited now"); }),
         u"değişmiş"_s},
        {duringTheQuestion([](auto& world) { world.setStatus(assetID(1), SyncStatus::failed); }),
         u"kaydı bu arada değişti"_s,
         {},
         SyncStatus::failed},
        {[](auto& world) { world.remote.items.erase(u"remote-1"_s); },
         u"Google Photos'ta artık yok"_s},
        {duringTheQuestion([](auto& world) { world.remote.items.erase(u"remote-1"_s); }),
         u"Google Photos'ta artık yok"_s},
        {[](auto& world) {
             world.execute("DELETE FROM record_sources WHERE asset_local_identifier LIKE '%1-0000-"
                           "4000-8000-000000000000/L0/001'");
         },
         u"Hangi özgünden yüklendiği bilinmiyor: Google kopyasıyla karşılaştırılamıyor"_s,
         {{KeptReason::unproven, 1}}},
        {add(AssetResourceType::pairedVideo),
         u"Yalnızca bir parçası yüklendi: Canlı fotoğrafın filmi veya RAW eşi yüklenmedi"_s,
         {{KeptReason::partlySent, 1}}},
        {add(AssetResourceType::fullSizePhoto),
         u"Düzenlenmiş: Yalnızca özgün sürüm yüklendi"_s,
         {{KeptReason::edited, 1}}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason.toStdString());
        DeletionWorld world;
        world.verify(1);
        world.verify(2);
        each.change(world);
        const DeletionSummary summary = world.deletion.performDeletion(true);
        EXPECT_EQ(summary.deleted, 1);
        ASSERT_EQ(summary.leftOut.size(), 1U);
        EXPECT_EQ(summary.leftOut.front().name, u"a.bin"_s);
        EXPECT_EQ(summary.leftOut.front().reason, each.reason);
        EXPECT_EQ(world.library.asked.kept, each.kept);
        EXPECT_EQ(world.status(assetID(1)), each.status);
        EXPECT_EQ(world.status(assetID(2)), SyncStatus::deletedLocally);
        EXPECT_TRUE(world.staging.findStagingFile(assetID(1)));
        ASSERT_EQ(world.library.assets().size(), 1U);
        EXPECT_EQ(world.library.assets().front().localIdentifier, assetID(1));
        EXPECT_TRUE(world.life.unfinishedDeletions().empty());
    }
}

TEST(SafeDeletionService, AMotionPhotoGoesOnlyAsTheWholePairThatWasSent) {
    const QByteArray whole = sample::movie(1, sample::MovieBrand::quickTime, 7);
    const struct {
        QByteArray sent, now;
        QString reason;
    } cases[] = {{whole, whole, {}},
                 {whole, whole + '\0', u"videosu yüklendiğinden beri değişti"_s},
                 {whole.chopped(1), whole.chopped(1), u"Yalnızca bir parçası yüklendi"_s}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason.toStdString());
        DeletionWorld world;
        world.discoverLive(assetID(1), each.sent);
        world.staging.stageDiscoveredAssets();
        world.setStatus(assetID(1), SyncStatus::verified, u"remote"_s);
        world.remote.items.insert(u"remote"_s);
        world.library.replace(u"movie"_s, each.now);
        const DeletionSummary summary = world.deletion.performDeletion(true);
        EXPECT_EQ(summary.deleted, each.reason.isEmpty() ? 1 : 0);
        ASSERT_EQ(summary.leftOut.size(), each.reason.isEmpty() ? 0U : 1U);
        for (const auto& left : summary.leftOut)
            EXPECT_TRUE(left.reason.contains(each.reason)) << left.reason.toStdString();
    }
}

TEST(SafeDeletionService, LeavesEverythingWhereItMayNotDelete) {
    const struct {
        std::function<void(DeletionWorld&)> prepare;
        bool isEnabled;
        QString line;
    } cases[] = {
        {[](auto&) {}, false, u"Otomatik silme kapalı, işlem atlandı."_s},
        {[](auto& world) {
             world.library.onDelete = [] { throw PhotoLibraryError(u"Vazgeçildi"_s); };
         },
         true, u"ℹ️ Sistem silme diyaloğu iptal edildi veya reddedildi: Vazgeçildi"_s},
        {[](auto& world) { world.remote.failure = u"yanıt yok"_s; }, true,
         u"⚠️ Silinmedi: a.bin (Google Photos'a sorulamadı: yanıt yok)"_s},
        {[](auto& world) { // nobody told the person that it would not be asked
             world.library.onDelete = [&] { world.remote.mayAsk = false; };
         },
         true,
         u"⚠️ Silinmedi: a.bin (Google hesabı okuma izni vermediği için öğelerin Google "
         "Photos'ta durduğu yeniden sorulamadı.)"_s},
    };
    for (const auto& each : cases) {
        DeletionWorld world;
        world.verify(1);
        each.prepare(world);
        EXPECT_EQ(world.deletion.performDeletion(each.isEnabled).deleted, 0);
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
        {SyncStatus::verified, u"gone"_s, false},
        {SyncStatus::verified, QString(QLatin1String("")), false},
        {SyncStatus::verified, std::nullopt, false},
        {SyncStatus::staged, u"remote too"_s, false},
        {SyncStatus::failed, std::nullopt, false},
    };
    for (const auto& each : cases) {
        DeletionWorld world;
        world.verify(1);
        world.remote.items.insert(u"remote too"_s);
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

TEST(SafeDeletionService, TheNextRunFindsOutHowARemovalEnded) {
    struct Killed : std::exception {};
    const struct {
        std::function<void(DeletionWorld&, const QString&)> end;
        int gone;
    } cases[] = {
        {[](auto&, auto&) { throw Killed(); }, 1},
        {[](auto& world, auto& identifier) {
             world.library.remove(identifier);
             throw Killed();
         },
         2},
        {[](auto& world, auto&) { // the store fails after the removal
             world.execute("CREATE TRIGGER refuse BEFORE UPDATE ON sync_records "
                           "BEGIN SELECT RAISE(ABORT, 'refused'); END;");
         },
         3},
    };
    for (const auto& each : cases) {
        DeletionWorld world;
        for (const int number : {1, 2, 3})
            world.verify(number);
        world.library.onRemoval = [&](const QString& identifier) {
            if (identifier == assetID(2))
                each.end(world, identifier);
        };
        world.deletion.performDeletion(true);
        EXPECT_EQ(world.status(assetID(2)), SyncStatus::verified);
        world.execute("DROP TRIGGER IF EXISTS refuse");
        for (int run = 0; run < 2; ++run)
            world.deletion.settleInterrupted();

        EXPECT_TRUE(world.life.unfinishedDeletions().empty());
        int gone = 0;
        for (const int number : {1, 2, 3}) {
            const bool isThere = !world.library.fetchAssets(QStringList{assetID(number)})->empty();
            EXPECT_EQ(world.status(assetID(number)),
                      isThere ? SyncStatus::verified : SyncStatus::deletedLocally);
            EXPECT_EQ(world.staging.findStagingFile(assetID(number)).has_value(), isThere);
            gone += !isThere;
        }
        EXPECT_EQ(gone, each.gone);
    }
}

} // namespace quorvane::test

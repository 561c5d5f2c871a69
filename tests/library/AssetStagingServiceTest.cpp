#include "World.h"

#include "foundation/Crypto.h"

#include <cerrno>
#include <thread>

#include <sys/stat.h>

namespace quorvane::test {

namespace {

QString sha256Of(const QByteArray& bytes) {
    return QString::fromLatin1(Sha256::digest(bytes).toHex());
}

QString stagedName(const QString& identifier, const QString& filename) {
    return QString(identifier).replace(u'/', u'_') + u'_' + filename;
}

PhotoAssetResource resource(AssetResourceType type, const QString& filename) {
    return {type, filename, std::nullopt, {}};
}

} // namespace

TEST(AssetStagingService, StagesADiscoveredAssetUnderItsSafeName) {
    World world;
    world.discover(assetID(1), QStringLiteral("IMG 1%2.BIN"));
    const QStringList lines = printedBy([&] { world.staging.stageDiscoveredAssets(); });

    const QByteArray bytes = "bytes of IMG 1%2.BIN";
    EXPECT_EQ(lines,
              QStringList{QStringLiteral(
                  "[Staging] Tamamlandı (Metadata Enjekte Edildi): IMG 1%2.BIN (20 bytes)")});
    EXPECT_EQ(world.stagedNames(), QStringList{QStringLiteral(
                                       "00000001-0000-4000-8000-000000000000_L0_001_IMG 1%2.BIN")});
    const SyncRecord record = world.record(assetID(1)).value();
    EXPECT_EQ(record.syncStatus, SyncStatus::staged);
    EXPECT_EQ(record.sha256Hash, sha256Of(bytes));
    EXPECT_EQ(record.fileSizeBytes, bytes.size());
    const auto file = world.staging.findStagingFile(assetID(1));
    ASSERT_TRUE(file);
    EXPECT_EQ(readFile(*file), bytes);
    struct stat folder {};
    ASSERT_EQ(::stat(world.folders.permanentStaging().c_str(), &folder), 0);
    EXPECT_EQ(folder.st_mode & 0777, 0700U);
}

TEST(AssetStagingService, TakesTheFirstResourceThatIsAPhotoAVideoOrAFullSizePhoto) {
    using Type = AssetResourceType;
    const struct {
        std::vector<Type> resources;
        int chosen; ///< none: -1
    } cases[] = {
        {{Type::photo, Type::pairedVideo}, 0},
        {{Type::photo, Type::fullSizePhoto}, 0},
        {{Type::adjustmentData, Type::fullSizePhoto, Type::photo}, 1},
        {{Type::alternatePhoto, Type::video}, 1},
        {{Type::pairedVideo, Type::fullSizeVideo, Type::audio}, -1},
        {{}, -1},
    };
    int number = 0;
    for (const auto& each : cases) {
        SCOPED_TRACE(++number);
        World world;
        FakePhotoLibrary::Entry entry;
        entry.asset.localIdentifier = assetID(number);
        entry.bytes = "x";
        for (const Type type : each.resources)
            entry.resources.push_back(
                resource(type, QStringLiteral("%1.bin").arg(entry.resources.size())));
        world.library.add(entry);
        world.discoverRecord(assetID(number));
        const QStringList lines = printedBy([&] { world.staging.stageDiscoveredAssets(); });
        if (each.chosen >= 0) {
            EXPECT_EQ(world.stagedNames(),
                      QStringList{
                          stagedName(assetID(number), QStringLiteral("%1.bin").arg(each.chosen))});
        } else {
            EXPECT_EQ(lines, QStringList{QStringLiteral("[Staging] Resource bulunamadı: ") +
                                         assetID(number)});
            EXPECT_EQ(world.status(assetID(number)), SyncStatus::discovered);
            EXPECT_TRUE(world.staging.isUnavailable(assetID(number)));
        }
    }
}

TEST(AssetStagingService, ReusesAWholeFileOfAnEarlierRunButNotAPart) {
    World world;
    world.discover(assetID(1));
    world.discover(assetID(2));
    const auto folder = world.folders.permanentStaging();
    replaceFile(folder / pathFrom(stagedName(assetID(1), QStringLiteral("a.bin"))), "kept");
    replaceFile(folder / pathFrom(u'.' + stagedName(assetID(2), QStringLiteral("a.bin.part"))),
                "tor");
    world.staging.stageDiscoveredAssets();

    EXPECT_EQ(world.library.exported(), QStringList{assetID(2)});
    EXPECT_EQ(world.record(assetID(1))->sha256Hash, sha256Of("kept"));
    EXPECT_EQ(world.record(assetID(2))->sha256Hash, sha256Of("bytes of a.bin"));
}

TEST(AssetStagingService, RecordsAFailedExportAndLeavesNoFile) {
    const struct {
        std::function<void()> fail;
        QString reason;
    } cases[] = {
        {[] { throw PhotoLibraryError(QStringLiteral("Özgün dosya bu bilgisayarda değil")); },
         QStringLiteral("Özgün dosya bu bilgisayarda değil")},
        {[] { throw FileError(QStringLiteral("Dosyaya yazılamadı"), "/x", ENOSPC); },
         QStringLiteral("Dosyaya yazılamadı: /x (diskte yer kalmadı)")},
    };
    for (const auto& each : cases) {
        World world;
        world.discover(assetID(1));
        world.library.onExport = each.fail;
        const QStringList lines = printedBy([&] { world.staging.stageDiscoveredAssets(); });
        EXPECT_EQ(lines, QStringList{
                             QStringLiteral("[Staging] Hata %1: %2").arg(assetID(1), each.reason)});
        const SyncRecord record = world.record(assetID(1)).value();
        EXPECT_EQ(record.syncStatus, SyncStatus::failed);
        EXPECT_EQ(record.lastError, each.reason);
        EXPECT_EQ(record.retryCount, 1);
        EXPECT_EQ(world.stagedNames(), QStringList());
    }
}

TEST(AssetStagingService, RefusesALinkInPlaceOfAStagedFile) {
    World world;
    const auto original = world.folder.write("original.bin", "only copy");
    world.discover(assetID(1));
    const auto staged = world.folders.permanentStaging() /
                        pathFrom(stagedName(assetID(1), QStringLiteral("a.bin")));
    std::filesystem::create_symlink(original, staged);
    EXPECT_FALSE(world.staging.findStagingFile(assetID(1)));
    world.staging.stageDiscoveredAssets();
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::failed);
    EXPECT_EQ(readFile(original), "only copy");
}

TEST(AssetStagingService, AStopLeavesTheRecordAsItWas) {
    World world;
    world.discover(assetID(1));
    world.discover(assetID(2));
    std::stop_source stop;
    world.library.onExport = [&] { stop.request_stop(); };
    EXPECT_THROW(world.staging.stageDiscoveredAssets(stop.get_token()), Cancelled);
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::discovered);
    EXPECT_EQ(world.library.exported().size(), 1);
    EXPECT_EQ(world.stagedNames(), QStringList());

    world.library.onExport = nullptr;
    world.staging.stageDiscoveredAssets();
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::staged);
    EXPECT_EQ(world.status(assetID(2)), SyncStatus::staged);
}

TEST(AssetStagingService, NeverTakesBackARecordThatMovedOnMeanwhile) {
    const struct {
        std::function<void(World&)> meanwhile;
        std::optional<SyncStatus> expected;
    } cases[] = {
        {[](World& world) {
             world.setStatus(assetID(1), SyncStatus::verified, QStringLiteral("remote"));
         },
         SyncStatus::verified},
        {[](World& world) { world.database.clearPendingRecords(); }, std::nullopt},
        {[](World& world) {
             world.setStatus(assetID(1), SyncStatus::verified, QStringLiteral("remote"));
             throw PhotoLibraryError(QStringLiteral("x"));
         },
         SyncStatus::verified},
    };
    for (const auto& each : cases) {
        World world;
        world.discover(assetID(1));
        world.library.onExport = [&] { each.meanwhile(world); };
        world.staging.stageDiscoveredAssets();
        EXPECT_EQ(world.status(assetID(1)), each.expected);
    }
}

TEST(AssetStagingService, LooksAtTheOldestTenAndIsNotHeldUpByMissingAssets) {
    World world;
    for (int i = 0; i < 25; ++i)
        world.discoverRecord(assetID(i)); // none of them is in the library
    for (int i = 25; i < 40; ++i)
        world.discover(assetID(i));
    QStringList lines = printedBy([&] { world.staging.stageDiscoveredAssets(); });
    EXPECT_EQ(lines.filter(QStringLiteral("[Staging] Asset bulunamadı: ")).size(), 10);
    EXPECT_TRUE(world.staging.isUnavailable(assetID(0)));
    EXPECT_FALSE(world.staging.isUnavailable(assetID(30)));
    for (int i = 0; i < 6; ++i) {
        lines = printedBy([&] { world.staging.stageDiscoveredAssets(); });
        EXPECT_LE(lines.filter(QStringLiteral("Asset bulunamadı")).size(), 20);
    }
    EXPECT_GE(world.library.exported().size(), 10);

    world.library.add(assetID(3), QStringLiteral("back.bin"));
    for (int i = 0; i < 3; ++i) // twenty-five missing ones are tried again in three turns
        world.staging.stageDiscoveredAssets();
    EXPECT_EQ(world.status(assetID(3)), SyncStatus::staged);
    EXPECT_FALSE(world.staging.isUnavailable(assetID(3)));
}

TEST(AssetStagingService, LeavesRecordsAloneWhenTheLibraryOrTheStoreCannotBeRead) {
    World world;
    world.discover(assetID(1));
    world.library.unreadable = QStringLiteral("Kitaplık yok");
    EXPECT_EQ(printedBy([&] { world.staging.stageDiscoveredAssets(); }),
              QStringList{QStringLiteral("[Staging] Hata %1: Kitaplık yok").arg(assetID(1))});
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::discovered);
    EXPECT_FALSE(world.staging.isUnavailable(assetID(1)));

    DatabaseManager broken(world.folder.path(), world.console);
    AssetStagingService staging(world.library, broken, world.metadata, world.folders,
                                world.console);
    EXPECT_EQ(printedBy([&] { staging.stageDiscoveredAssets(); })
                  .filter(QStringLiteral("[Staging] Bekleyen kayıtlar okunamadı: "))
                  .size(),
              1);
}

TEST(AssetStagingService, ConcurrentCallersExportEachAssetOnce) {
    World world;
    for (int i = 0; i < 10; ++i)
        world.discover(assetID(i));
    {
        std::vector<std::jthread> callers;
        for (int i = 0; i < 4; ++i)
            callers.emplace_back([&] {
                world.staging.stageDiscoveredAssets();
                for (int asset = 0; asset < 10; ++asset)
                    EXPECT_TRUE(world.staging.findStagingFile(assetID(asset)));
            });
    }
    EXPECT_EQ(world.library.exported().size(), 10);
    EXPECT_EQ(world.stagedNames().size(), 10);
}

TEST(AssetStagingService, UsesTheTemporaryFolderWithoutAPermanentOneAndOnlyWhenItIsPrivate) {
    World world;
    world.discover(assetID(1));
    std::filesystem::remove(world.folders.permanentStaging());
    world.staging.stageDiscoveredAssets();
    const auto file = world.staging.findStagingFile(assetID(1));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->parent_path(), world.folders.temporaryStaging);

    std::filesystem::permissions(world.folders.temporaryStaging, std::filesystem::perms(0755));
    EXPECT_FALSE(world.staging.findStagingFile(assetID(1)));
    world.discover(assetID(2));
    world.staging.stageDiscoveredAssets();
    EXPECT_EQ(world.status(assetID(2)), SyncStatus::failed);

    std::filesystem::permissions(world.folders.temporaryStaging, std::filesystem::perms(0700));
    const auto elsewhere = world.folder / "elsewhere";
    std::filesystem::rename(world.folders.temporaryStaging, elsewhere);
    std::filesystem::create_symlink(elsewhere, world.folders.temporaryStaging);
    EXPECT_EQ(
        printedBy([&] {
            const AssetStagingService other(world.library, world.database, world.metadata,
                                            world.folders, world.console);
        }),
        QStringList{
            QStringLiteral("[Staging] Geçici klasör bu kullanıcıya özel değil, kullanılmayacak: ") +
            pathText(world.folders.temporaryStaging)});
    EXPECT_FALSE(world.staging.findStagingFile(assetID(1)));
}

TEST(AssetStagingService, FindsThePermanentFileFirstAndRemovesBoth) {
    World world;
    const auto name = pathFrom(stagedName(assetID(1), QStringLiteral("a.bin")));
    replaceFile(world.folders.temporaryStaging / name, "temporary");
    EXPECT_EQ(world.staging.findStagingFile(assetID(1)), world.folders.temporaryStaging / name);
    replaceFile(world.folders.permanentStaging() / name, "permanent");
    EXPECT_EQ(world.staging.findStagingFile(assetID(1)), world.folders.permanentStaging() / name);
    replaceFile(world.folders.permanentStaging() /
                    pathFrom(stagedName(assetID(2), QStringLiteral("b"))),
                "another");

    world.staging.removeFromStaging(QString()); // begins every name
    world.staging.removeFromStaging(assetID(1));
    EXPECT_FALSE(world.staging.findStagingFile(assetID(1)));
    EXPECT_TRUE(world.staging.findStagingFile(assetID(2)));
}

TEST(AssetStagingService, RemovesWhatDeadRunsLeftAndNothingElse) {
    World world;
    const auto folder = world.folders.permanentStaging();
    for (const char* name : {".x.part", ".x.jpg.tmp", ".hidden", "x.tmp", "y.part", "z.jpg"})
        replaceFile(folder / name, "x");
    world.staging.removeLeftovers();
    EXPECT_EQ(world.stagedNames(),
              (QStringList{QStringLiteral(".hidden"), QStringLiteral("x.tmp"),
                           QStringLiteral("y.part"), QStringLiteral("z.jpg")}));
}

TEST(AssetStagingService, HashesWholeFilesOfAnyLength) {
    const TemporaryFolder folder;
    for (const qsizetype length : {0, 1, 1 << 20, (1 << 20) + 1, 3 << 20}) {
        const QByteArray bytes(length, 'q');
        const auto result = AssetStagingService::computeHashAndSize(folder.write("f", bytes));
        EXPECT_EQ(result.sizeBytes, length);
        EXPECT_EQ(result.sha256, sha256Of(bytes));
    }
    EXPECT_EQ(AssetStagingService::computeHashAndSize(folder.write("f", "")).sha256,
              QStringLiteral("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"));
    EXPECT_THROW(AssetStagingService::computeHashAndSize(folder / "absent"), FileError);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(AssetStagingService::computeHashAndSize(folder / "f", stop.get_token()),
                 Cancelled);
}

} // namespace quorvane::test

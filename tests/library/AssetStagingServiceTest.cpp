#include "World.h"

#include "foundation/Crypto.h"

#include <cerrno>
#include <thread>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

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

class AssetStagingServiceTest : public testing::Test, protected World {};

} // namespace

TEST_F(AssetStagingServiceTest, StagesADiscoveredAssetUnderItsSafeName) {
    discover(assetID(1), u"IMG 1%2.BIN"_s);
    const QStringList lines = printedBy([&] { staging.stageDiscoveredAssets(); });

    const QByteArray bytes = "bytes of IMG 1%2.BIN";
    EXPECT_EQ(
        lines,
        QStringList{u"[Staging] Tamamlandı (Metadata Enjekte Edildi): IMG 1%2.BIN (20 bytes)"_s});
    EXPECT_EQ(stagedNames(),
              QStringList{u"00000001-0000-4000-8000-000000000000_L0_001_IMG 1%2.BIN"_s});
    EXPECT_EQ(status(assetID(1)), SyncStatus::staged);
    EXPECT_EQ(record(assetID(1))->sha256Hash, sha256Of(bytes));
    EXPECT_EQ(record(assetID(1))->fileSizeBytes, bytes.size());
    const auto file = staging.findStagingFile(assetID(1));
    ASSERT_TRUE(file);
    EXPECT_EQ(readFile(*file), bytes);
    struct stat facts {};
    ASSERT_EQ(::stat(permanent.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0700U);
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
            entry.resources.push_back(resource(type, u"%1.bin"_s.arg(entry.resources.size())));
        world.library.add(entry);
        world.discoverRecord(assetID(number));
        const QStringList lines = printedBy([&] { world.staging.stageDiscoveredAssets(); });
        if (each.chosen >= 0) {
            EXPECT_EQ(world.stagedNames(),
                      QStringList{stagedName(assetID(number), u"%1.bin"_s.arg(each.chosen))});
        } else {
            EXPECT_EQ(lines, QStringList{u"[Staging] Resource bulunamadı: "_s + assetID(number)});
            EXPECT_EQ(world.status(assetID(number)), SyncStatus::discovered);
            EXPECT_TRUE(world.staging.isUnavailable(assetID(number)));
        }
    }
}

TEST_F(AssetStagingServiceTest, ReusesAWholeFileOfAnEarlierRunButNotAPart) {
    discover(assetID(1));
    discover(assetID(2));
    replaceFile(permanent / pathFrom(stagedName(assetID(1), u"a.bin"_s)), "kept");
    replaceFile(permanent / pathFrom(u'.' + stagedName(assetID(2), u"a.bin.part"_s)), "tor");
    staging.stageDiscoveredAssets();

    EXPECT_EQ(library.exported(), QStringList{assetID(2)});
    EXPECT_EQ(record(assetID(1))->sha256Hash, sha256Of("kept"));
    EXPECT_EQ(record(assetID(2))->sha256Hash, sha256Of("bytes of a.bin"));
}

TEST(AssetStagingService, RecordsAFailedExportAndLeavesNoFile) {
    const struct {
        std::function<void()> fail;
        QString reason;
    } cases[] = {
        {[] { throw PhotoLibraryError(u"Özgün dosya bu bilgisayarda değil"_s); },
         u"Özgün dosya bu bilgisayarda değil"_s},
        {[] { throw FileError(u"Dosyaya yazılamadı"_s, "/x", ENOSPC); },
         u"Dosyaya yazılamadı: /x (diskte yer kalmadı)"_s},
    };
    for (const auto& each : cases) {
        World world;
        world.discover(assetID(1));
        world.library.onExport = each.fail;
        const QStringList lines = printedBy([&] { world.staging.stageDiscoveredAssets(); });
        EXPECT_EQ(lines, QStringList{u"[Staging] Hata %1: %2"_s.arg(assetID(1), each.reason)});
        const SyncRecord record = world.record(assetID(1)).value();
        EXPECT_EQ(record.syncStatus, SyncStatus::failed);
        EXPECT_EQ(record.lastError, each.reason);
        EXPECT_EQ(record.retryCount, 1);
        EXPECT_EQ(world.stagedNames(), QStringList());
    }
}

TEST_F(AssetStagingServiceTest, RefusesALinkInPlaceOfAStagedFile) {
    const auto original = folder.write("original.bin", "only copy");
    discover(assetID(1));
    const auto staged = permanent / pathFrom(stagedName(assetID(1), u"a.bin"_s));
    std::filesystem::create_symlink(original, staged);
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
    staging.stageDiscoveredAssets();
    EXPECT_EQ(status(assetID(1)), SyncStatus::failed);
    EXPECT_EQ(readFile(original), "only copy");
}

TEST_F(AssetStagingServiceTest, AStopLeavesTheRecordAsItWas) {
    discover(assetID(1));
    discover(assetID(2));
    std::stop_source stop;
    library.onExport = [&] { stop.request_stop(); };
    EXPECT_THROW(staging.stageDiscoveredAssets(stop.get_token()), Cancelled);
    EXPECT_EQ(status(assetID(1)), SyncStatus::discovered);
    EXPECT_EQ(library.exported().size(), 1);
    EXPECT_EQ(stagedNames(), QStringList());

    library.onExport = nullptr;
    staging.stageDiscoveredAssets();
    EXPECT_EQ(status(assetID(1)), SyncStatus::staged);
    EXPECT_EQ(status(assetID(2)), SyncStatus::staged);
}

TEST(AssetStagingService, NeverTakesBackARecordThatMovedOnMeanwhile) {
    const struct {
        std::function<void(World&)> meanwhile;
        std::optional<SyncStatus> expected;
    } cases[] = {
        {[](World& world) { world.setStatus(assetID(1), SyncStatus::verified, u"remote"_s); },
         SyncStatus::verified},
        {[](World& world) { world.database.clearPendingRecords(); }, std::nullopt},
        {[](World& world) {
             world.setStatus(assetID(1), SyncStatus::verified, u"remote"_s);
             throw PhotoLibraryError(u"x"_s);
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

TEST_F(AssetStagingServiceTest, LooksAtTheOldestTenAndIsNotHeldUpByMissingAssets) {
    for (int i = 0; i < 25; ++i)
        discoverRecord(assetID(i)); // none of them is in the library
    for (int i = 25; i < 40; ++i)
        discover(assetID(i));
    QStringList lines = printedBy([&] { staging.stageDiscoveredAssets(); });
    EXPECT_EQ(lines.filter(u"[Staging] Asset bulunamadı: "_s).size(), 10);
    EXPECT_TRUE(staging.isUnavailable(assetID(0)));
    EXPECT_FALSE(staging.isUnavailable(assetID(30)));
    for (int i = 0; i < 6; ++i) {
        lines = printedBy([&] { staging.stageDiscoveredAssets(); });
        EXPECT_LE(lines.filter(u"Asset bulunamadı"_s).size(), 20);
    }
    EXPECT_GE(library.exported().size(), 10);

    library.add(assetID(3), u"back.bin"_s);
    for (int i = 0; i < 3; ++i) // twenty-five missing ones are tried again in three turns
        staging.stageDiscoveredAssets();
    EXPECT_EQ(status(assetID(3)), SyncStatus::staged);
    EXPECT_FALSE(staging.isUnavailable(assetID(3)));
}

TEST_F(AssetStagingServiceTest, LeavesRecordsAloneWhenTheLibraryOrTheStoreCannotBeRead) {
    discover(assetID(1));
    library.unreadable = u"Kitaplık yok"_s;
    EXPECT_EQ(printedBy([&] { staging.stageDiscoveredAssets(); }),
              QStringList{u"[Staging] Hata %1: Kitaplık yok"_s.arg(assetID(1))});
    EXPECT_EQ(status(assetID(1)), SyncStatus::discovered);
    EXPECT_FALSE(staging.isUnavailable(assetID(1)));

    DatabaseManager broken(folder.path(), console);
    AssetStagingService idle(library, broken, metadata, folders, console);
    EXPECT_EQ(printedBy([&] { idle.stageDiscoveredAssets(); })
                  .filter(u"[Staging] Bekleyen kayıtlar okunamadı: "_s)
                  .size(),
              1);
}

TEST_F(AssetStagingServiceTest, ConcurrentCallersExportEachAssetOnce) {
    for (int i = 0; i < 10; ++i)
        discover(assetID(i));
    {
        std::vector<std::jthread> callers;
        for (int i = 0; i < 4; ++i)
            callers.emplace_back([&] {
                staging.stageDiscoveredAssets();
                for (int asset = 0; asset < 10; ++asset)
                    EXPECT_TRUE(staging.findStagingFile(assetID(asset)));
            });
    }
    EXPECT_EQ(library.exported().size(), 10);
    EXPECT_EQ(stagedNames().size(), 10);
}

TEST_F(AssetStagingServiceTest, UsesTheTemporaryFolderWithoutAPermanentOneAndOnlyWhenItIsPrivate) {
    discover(assetID(1));
    std::filesystem::remove(permanent);
    staging.stageDiscoveredAssets();
    const auto file = staging.findStagingFile(assetID(1));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->parent_path(), folders.temporaryStaging);

    std::filesystem::permissions(folders.temporaryStaging, std::filesystem::perms(0755));
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
    discover(assetID(2));
    staging.stageDiscoveredAssets();
    EXPECT_EQ(status(assetID(2)), SyncStatus::failed);

    std::filesystem::permissions(folders.temporaryStaging, std::filesystem::perms(0700));
    const auto elsewhere = folder / "elsewhere";
    std::filesystem::rename(folders.temporaryStaging, elsewhere);
    std::filesystem::create_symlink(elsewhere, folders.temporaryStaging);
    EXPECT_EQ(
        printedBy([&] {
            const AssetStagingService other(library, database, metadata, folders, console);
        }),
        QStringList{u"[Staging] Geçici klasör bu kullanıcıya özel değil, kullanılmayacak: "_s +
                    pathText(folders.temporaryStaging)});
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
}

TEST_F(AssetStagingServiceTest, FindsThePermanentFileFirstAndRemovesBoth) {
    const auto name = pathFrom(stagedName(assetID(1), u"a.bin"_s));
    replaceFile(folders.temporaryStaging / name, "temporary");
    EXPECT_EQ(staging.findStagingFile(assetID(1)), folders.temporaryStaging / name);
    replaceFile(permanent / name, "permanent");
    EXPECT_EQ(staging.findStagingFile(assetID(1)), permanent / name);
    replaceFile(permanent / pathFrom(stagedName(assetID(2), u"b"_s)), "another");

    staging.removeFromStaging(QString()); // begins every name
    staging.removeFromStaging(assetID(1));
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
    EXPECT_TRUE(staging.findStagingFile(assetID(2)));
}

TEST_F(AssetStagingServiceTest, RemovesWhatDeadRunsLeftAndNothingElse) {
    for (const char* name : {".x.part", ".x.jpg.tmp", ".hidden", "x.tmp", "y.part", "z.jpg"})
        replaceFile(permanent / name, "x");
    staging.removeLeftovers();
    EXPECT_EQ(stagedNames(), (QStringList{u".hidden"_s, u"x.tmp"_s, u"y.part"_s, u"z.jpg"_s}));
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
              u"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"_s);
    EXPECT_THROW(AssetStagingService::computeHashAndSize(folder / "absent"), FileError);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(AssetStagingService::computeHashAndSize(folder / "f", stop.get_token()),
                 Cancelled);
}

} // namespace quorvane::test

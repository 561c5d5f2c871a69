#include "World.h"

#include "library/PhotoLibraryObserver.h"

#include <thread>

namespace quorvane::test {

namespace {

const QString uuid = QStringLiteral("0A1B2C3D-0000-4000-8000-000000000000");

struct ObserverWorld : World {
    Preferences preferences{folders.preferences()};
    PhotoAlbumService albums{library, preferences, log};
    PhotoLibraryObserver observer{library, database, staging, albums, preferences, console};

    /// The background has done all it was asked until now.
    bool waitForStatus(const QString& identifier, SyncStatus expected) {
        return waitOnMainThread([&] { return status(identifier) == expected; });
    }
};

/// Only what the observer itself says.
QStringList photoKitLines(const QStringList& lines) {
    return lines.filter(QStringLiteral("[PhotoKit]"));
}

} // namespace

TEST(PhotoLibraryObserver, RecordsPhotosVideosAndLivePhotosOfTheWholeLibrary) {
    ObserverWorld world;
    using Type = AssetMediaType;
    world.library.add(assetID(1), QStringLiteral("1.bin"), Type::image);
    world.library.add(assetID(2), QStringLiteral("2.bin"), Type::image, mediaSubtypePhotoLive | 1);
    world.library.add(assetID(3), QStringLiteral("3.bin"), Type::video, mediaSubtypePhotoLive,
                      AssetResourceType::video);
    world.library.add(assetID(4), QStringLiteral("4.bin"), Type::audio);
    world.library.add(assetID(5), QStringLiteral("5.bin"), Type::unknown);
    const QStringList lines = printedBy([&] { world.observer.initialScan(); });

    EXPECT_EQ(
        photoKitLines(lines),
        (QStringList{QStringLiteral("[PhotoKit] İlk tarama: 5 medya (Tüm Kütüphane)"),
                     QStringLiteral("[PhotoKit] 3 medya veritabanına atomik olarak eklendi")}));
    EXPECT_EQ(world.record(assetID(1))->mediaType, MediaType::photo);
    EXPECT_EQ(world.record(assetID(2))->mediaType, MediaType::livePhoto);
    EXPECT_EQ(world.record(assetID(3))->mediaType, MediaType::video);
    EXPECT_FALSE(world.record(assetID(4)));
    EXPECT_FALSE(world.record(assetID(5)));
    EXPECT_EQ(world.status(assetID(3)), SyncStatus::staged) << "staging follows the scan";
}

TEST(PhotoLibraryObserver, ScansTheChosenAlbumAndNamesIt) {
    ObserverWorld world;
    world.library.add(assetID(1), QStringLiteral("1.bin"));
    world.library.add(assetID(2), QStringLiteral("2.bin"));
    AssetCollection album;
    album.localIdentifier = QStringLiteral("album");
    world.library.albums = {album};
    world.library.inAlbum[QStringLiteral("album")] = {assetID(2)};
    world.albums.setSelectedSourceAlbumID(QStringLiteral("album"));
    world.preferences.setString(preferenceKeys::sourceAlbumTitle, QStringLiteral("Yaz %1"));
    const QStringList lines = printedBy([&] { world.observer.initialScan(); });
    EXPECT_TRUE(lines.contains(QStringLiteral("[PhotoKit] İlk tarama: 1 medya (Yaz %1)")));
    EXPECT_FALSE(world.record(assetID(1)));
    EXPECT_TRUE(world.record(assetID(2)));
}

TEST(PhotoLibraryObserver, AnEmptyOrUnreadableSourceRecordsNothing) {
    ObserverWorld world;
    EXPECT_EQ(
        printedBy([&] { world.observer.initialScan(); }),
        (QStringList{QStringLiteral("[PhotoKit] İlk tarama: 0 medya (Tüm Kütüphane)"),
                     QStringLiteral("[PhotoKit] 0 medya veritabanına atomik olarak eklendi")}));
    world.library.unreadable = QStringLiteral("Disk takılı değil");
    EXPECT_THROW(world.observer.initialScan(), PhotoLibraryError);
    EXPECT_EQ(world.database.countPendingRecords(), 0);
}

TEST(PhotoLibraryObserver, ScanningAgainKeepsProgress) {
    ObserverWorld world;
    world.library.add(assetID(1), QStringLiteral("1.bin"));
    world.observer.initialScan();
    world.setStatus(assetID(1), SyncStatus::verified, QStringLiteral("remote"));
    world.observer.initialScan();
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::verified);
    EXPECT_EQ(world.database.fetchRecordsOfAsset(assetID(1)).size(), 1U);
}

TEST(PhotoLibraryObserver, RecoversStagedFilesBeforeTheScan) {
    ObserverWorld world;
    const auto folder = world.folders.permanentStaging();
    const auto name = [](const char* rest) { return pathFrom(uuid + QString::fromUtf8(rest)); };
    replaceFile(folder / name("_L0_001_IMG_0001.HEIC"), "12345");
    replaceFile(folder / name("_clip.MOV"), "1");
    replaceFile(folder / "notes.txt", "1");
    replaceFile(folder / pathFrom(u'.' + uuid + QStringLiteral("_L0_002_a.jpg.part")), "1");
    std::filesystem::create_directory(folder / name("_L0_003_folder"));
    world.library.add(uuid + QStringLiteral("/L0/001"), QStringLiteral("IMG_0001.HEIC"));
    const QStringList lines = printedBy([&] { world.observer.initialScan(); });

    EXPECT_EQ(lines.first(), QStringLiteral("[PhotoKit] 🔄 Kalıcı staging uzlaştırması: 2 "
                                            "kurtarılmış dosya STAGED olarak korundu"));
    const SyncRecord still = world.record(uuid + QStringLiteral("/L0/001")).value();
    EXPECT_EQ(still.syncStatus, SyncStatus::staged);
    EXPECT_EQ(still.mediaType, MediaType::photo);
    EXPECT_EQ(still.fileSizeBytes, 5);
    EXPECT_EQ(world.record(uuid)->mediaType, MediaType::video);
    EXPECT_EQ(world.database.countPendingRecords(), 2);
    EXPECT_EQ(world.library.exported(), QStringList()) << "a recovered file is not exported again";
}

TEST(PhotoLibraryObserver, AStagingFolderThatCannotBeListedDoesNotStopTheScan) {
    ObserverWorld world;
    world.library.add(assetID(1), QStringLiteral("1.bin"));
    const auto folder = world.folders.permanentStaging();
    std::filesystem::remove(folder);
    EXPECT_EQ(printedBy([&] { world.observer.reconcilePermanentStagingAssets(); }), QStringList());
    replaceFile(folder, "a file in the folder's place");
    const QStringList lines = printedBy([&] { world.observer.initialScan(); });
    EXPECT_EQ(lines.first(),
              QStringLiteral(
                  "[PhotoKit] ⚠️ Kalıcı staging uzlaştırma hatası: Klasör okunamadı: %1 "
                  "(klasör değil)")
                  .arg(pathText(folder)));
    EXPECT_TRUE(world.record(assetID(1)));
}

TEST(PhotoLibraryObserver, TellsAStoreThatFails) {
    ObserverWorld world;
    DatabaseManager broken(world.folder.path(), world.console);
    PhotoLibraryObserver observer(world.library, broken, world.staging, world.albums,
                                  world.preferences, world.console);
    world.library.add(assetID(1), QStringLiteral("1.bin"));
    QStringList lines = printedBy([&] { observer.initialScan(); });
    EXPECT_EQ(lines.filter(QStringLiteral("[PhotoKit] İlk tarama DB hatası: [DB] ")).size(), 1);
    lines = printedBy([&] { observer.processNewAssets(world.library.assets()); });
    EXPECT_EQ(
        lines.filter(QStringLiteral("[PhotoKit] Kayıt hatası %1: [DB] ").arg(assetID(1))).size(),
        1);
}

TEST(PhotoLibraryObserver, RecordsWhatIsAddedAndIgnoresWhatIsRemoved) {
    ObserverWorld world;
    world.library.add(assetID(1), QStringLiteral("1.bin"));
    const std::vector<PhotoAsset> first = world.library.assets();
    world.observer.start();
    ASSERT_TRUE(world.waitForStatus(assetID(1), SyncStatus::staged));

    world.library.add(assetID(2), QStringLiteral("2.bin"));
    const std::vector<PhotoAsset> both = world.library.assets();
    QStringList lines = printedBy([&] {
        world.library.announce({both[1]}, {});
        world.library.announce(both, {}); // known ones again
        EXPECT_TRUE(world.waitForStatus(assetID(2), SyncStatus::staged));
    });
    EXPECT_EQ(photoKitLines(lines),
              (QStringList{QStringLiteral("[PhotoKit] 1 yeni medya algılandı"),
                           QStringLiteral("[PhotoKit] 2 yeni medya algılandı")}));

    lines = printedBy([&] { world.library.announce({}, first); });
    EXPECT_EQ(lines, QStringList());
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::staged);

    world.observer.stop();
    EXPECT_FALSE(world.library.hasObserver());
    EXPECT_EQ(world.database.countPendingRecords(), 2);
}

TEST(PhotoLibraryObserver, DropsNotificationsBeforeTheFirstScan) {
    ObserverWorld world;
    world.library.add(assetID(1), QStringLiteral("1.bin"));
    world.library.registerChangeObserver(world.observer);
    EXPECT_EQ(printedBy([&] { world.library.announce(world.library.assets(), {}); }),
              QStringList());
}

TEST(PhotoLibraryObserver, StartsAndStopsOnTheMainThreadFromAnyThread) {
    ObserverWorld world;
    std::thread([&] { world.observer.start(); }).join();
    EXPECT_FALSE(world.library.hasObserver());
    EXPECT_TRUE(waitOnMainThread([&] { return world.library.hasObserver(); }));
    std::thread([&] { world.observer.stop(); }).join();
    EXPECT_TRUE(world.library.hasObserver());
    EXPECT_TRUE(waitOnMainThread([&] { return !world.library.hasObserver(); }));
}

TEST(PhotoLibraryObserver, EndsPromptlyWithAScanInFlight) {
    std::atomic<bool> isExporting = false;
    World world;
    Preferences preferences(world.folders.preferences());
    PhotoAlbumService albums(world.library, preferences, world.log);
    world.discover(assetID(1));
    world.discover(assetID(2));
    std::stop_source ending;
    world.library.onExport = [&] { // an export that lasts until the observer is being destroyed
        isExporting = true;
        while (world.library.hasObserver())
            std::this_thread::yield();
    };
    {
        PhotoLibraryObserver observer(world.library, world.database, world.staging, albums,
                                      preferences, world.console);
        std::thread([&] { observer.start(); }).join();
        ASSERT_TRUE(waitOnMainThread([&] { return isExporting.load(); }));
        std::thread([&] { observer.start(); }).join(); // posted, and never run: it is gone by then
    }
    EXPECT_FALSE(waitOnMainThread([&] { return true; }) && world.library.hasObserver());
    EXPECT_LE(world.library.exported().size(), 2);
}

} // namespace quorvane::test

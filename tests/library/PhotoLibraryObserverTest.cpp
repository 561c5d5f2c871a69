#include "World.h"

#include "library/PhotoLibraryObserver.h"
#include "store/StoreCounts.h"

#include <thread>

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

const QString uuid = u"0A1B2C3D-0000-4000-8000-000000000000"_s;

struct ObserverWorld : World {
    Preferences preferences{folders.preferences()};
    PhotoAlbumService albums{library, preferences, log};
    PhotoLibraryObserver observer{library, database, life, staging, albums, preferences, console};

    /// The background has done all it was asked until now.
    bool waitForStatus(const QString& identifier, SyncStatus expected) {
        return waitOnMainThread([&] { return status(identifier) == expected; });
    }
};

/// Only what the observer itself says.
QStringList photoKitLines(const QStringList& lines) {
    return lines.filter(u"[PhotoKit]"_s);
}

class PhotoLibraryObserverTest : public testing::Test, protected ObserverWorld {};

} // namespace

TEST_F(PhotoLibraryObserverTest, RecordsPhotosVideosAndLivePhotosOfTheWholeLibrary) {
    using Type = AssetMediaType;
    library.add(assetID(1), u"1.bin"_s, Type::image);
    library.add(assetID(2), u"2.bin"_s, Type::image, mediaSubtypePhotoLive | 1);
    library.add(assetID(3), u"3.bin"_s, Type::video, mediaSubtypePhotoLive,
                AssetResourceType::video);
    library.add(assetID(4), u"4.bin"_s, Type::audio);
    library.add(assetID(5), u"5.bin"_s, Type::unknown);
    const QStringList lines = printedBy([&] { observer.initialScan(); });

    EXPECT_EQ(photoKitLines(lines),
              (QStringList{u"[PhotoKit] İlk tarama: 5 medya (Tüm Kütüphane)"_s,
                           u"[PhotoKit] 3 medya veritabanına atomik olarak eklendi"_s}));
    EXPECT_EQ(record(assetID(1))->mediaType, MediaType::photo);
    EXPECT_EQ(record(assetID(2))->mediaType, MediaType::livePhoto);
    EXPECT_EQ(record(assetID(3))->mediaType, MediaType::video);
    EXPECT_FALSE(record(assetID(4)));
    EXPECT_FALSE(record(assetID(5)));
    EXPECT_EQ(status(assetID(3)), SyncStatus::staged) << "staging follows the scan";
}

TEST_F(PhotoLibraryObserverTest, LeavesOutWhatIsNotHereUntilItIs) {
    using Why = AbsentOriginal::Why;
    for (const int number : {1, 2, 3})
        library.add(assetID(number), u"%1.bin"_s.arg(number));
    observer.initialScan();
    SyncRecord staged = record(assetID(3)).value(); // its copy may be all there is
    life.requeued(staged);
    for (const int number : {1, 2})
        setStatus(assetID(number), SyncStatus::failed);
    database.onConnection([](sqlite::Connection& connection) {
        connection.execute("UPDATE sync_records SET sha256_hash = NULL WHERE sync_status = "
                           "'FAILED'");
    });
    life.retriedFailed(true);

    library.absent = {{assetID(1), {Why::onlyInCloud, u"cloud"_s}},
                      {assetID(2), {Why::elsewhere, u"disk"_s}},
                      {assetID(3), {Why::onlyInCloud, u"cloud"_s}}};
    observer.initialScan();
    EXPECT_EQ(status(assetID(1)), SyncStatus::excluded);
    EXPECT_EQ(record(assetID(2))->lastError, u"disk"_s);
    EXPECT_EQ(status(assetID(3)), SyncStatus::staged);
    EXPECT_EQ(StoreCounts::of(database).onlyInCloud, 1);
    EXPECT_EQ(StoreCounts::of(database).elsewhere, 1);

    library.absent[assetID(2)].why = Why::onlyInCloud;
    library.absent.erase(assetID(1));
    observer.initialScan();
    EXPECT_EQ(status(assetID(1)), SyncStatus::staged) << "it came";
    EXPECT_EQ(StoreCounts::of(database).onlyInCloud, 1);
    EXPECT_EQ(StoreCounts::of(database).elsewhere, 0);
}

TEST_F(PhotoLibraryObserverTest, ARunOfAnAlbumIsToldOfNothingElse) {
    for (int i = 1; i <= 3; ++i)
        discover(assetID(i));
    staging.stageDiscoveredAssets();
    setStatus(assetID(1), SyncStatus::verified, u"remote"_s);
    AssetCollection album;
    album.localIdentifier = u"album"_s;
    library.albums = {album};
    library.inAlbum[u"album"_s] = {assetID(2)};
    const LocalAlbumItem item{u"album"_s, u"Yaz"_s};
    albums.selectForThisRun(item);
    observer.initialScan();
    EXPECT_EQ(database.countPendingRecords(), 1);
    EXPECT_TRUE(database.fetchVerifiedForDeletion().empty());
    library.add(assetID(4), u"4.bin"_s);
    observer.processNewAssets({library.assets().back()});
    EXPECT_EQ(database.countPendingRecords(), 2) << "what is added to it belongs to it";

    // The source changes: what leaves the queue is not brought back by its staged copy.
    RecordLife(database).cleared();
    replaceFile(permanent / pathFrom(QString(assetID(5)).replace(u'/', u'_') + u"_a.bin"_s), "own");
    observer.initialScan();
    EXPECT_EQ(status(assetID(3)), std::nullopt);
    EXPECT_FALSE(staging.findStagingFile(assetID(3)));
    EXPECT_EQ(status(assetID(2)), SyncStatus::staged);
    EXPECT_TRUE(staging.findStagingFile(assetID(1)));
    EXPECT_EQ(status(assetID(5)), SyncStatus::staged) << "a copy of unknown origin is recovered";
    EXPECT_TRUE(life.left().isEmpty());
}

TEST_F(PhotoLibraryObserverTest, RecoversStagedFilesBeforeTheScan) {
    const auto name = [](const char* rest) { return pathFrom(uuid + QString::fromUtf8(rest)); };
    replaceFile(permanent / name("_L0_001_IMG_0001.HEIC"), "12345");
    replaceFile(permanent / name("_clip.MOV"), "1");
    replaceFile(permanent / "notes.txt", "1");
    replaceFile(permanent / pathFrom(u'.' + uuid + u"_L0_002_a.jpg.part"_s), "1");
    std::filesystem::create_directory(permanent / name("_L0_003_folder"));
    library.add(uuid + u"/L0/001"_s, u"IMG_0001.HEIC"_s);
    const QStringList lines = printedBy([&] { observer.initialScan(); });

    EXPECT_EQ(lines.first(), u"[PhotoKit] 🔄 Kalıcı staging uzlaştırması: 2 "
                             "kurtarılmış dosya STAGED olarak korundu"_s);
    const SyncRecord still = record(uuid + u"/L0/001"_s).value();
    EXPECT_EQ(still.syncStatus, SyncStatus::staged);
    EXPECT_EQ(still.mediaType, MediaType::photo);
    EXPECT_EQ(still.fileSizeBytes, 5);
    EXPECT_EQ(record(uuid)->mediaType, MediaType::video);
    EXPECT_EQ(database.countPendingRecords(), 2);
    EXPECT_EQ(library.exported(), QStringList()) << "a recovered file is not exported again";
}

TEST_F(PhotoLibraryObserverTest, RecordsWhatIsAddedAndIgnoresWhatIsRemoved) {
    library.add(assetID(1), u"1.bin"_s);
    const std::vector<PhotoAsset> first = library.assets();
    observer.start();
    ASSERT_TRUE(waitForStatus(assetID(1), SyncStatus::staged));

    library.add(assetID(2), u"2.bin"_s);
    const std::vector<PhotoAsset> both = library.assets();
    QStringList lines = printedBy([&] {
        library.announce({both[1]}, {});
        library.announce(both, {}); // known ones again
        EXPECT_TRUE(waitForStatus(assetID(2), SyncStatus::staged));
    });
    EXPECT_EQ(photoKitLines(lines), (QStringList{u"[PhotoKit] 1 yeni medya algılandı"_s,
                                                 u"[PhotoKit] 2 yeni medya algılandı"_s}));

    lines = printedBy([&] { library.announce({}, first); });
    EXPECT_EQ(lines, QStringList());
    EXPECT_EQ(status(assetID(1)), SyncStatus::staged);

    observer.stop();
    EXPECT_FALSE(library.hasObserver());
    EXPECT_EQ(database.countPendingRecords(), 2);
}

TEST(PhotoLibraryObserver, EndsPromptlyWithAScanInFlight) {
    std::atomic<bool> isExporting = false;
    World world;
    Preferences preferences(world.folders.preferences());
    PhotoAlbumService albums(world.library, preferences, world.log);
    world.discover(assetID(1));
    world.discover(assetID(2));
    world.library.onExport = [&] { // an export that lasts until the observer is being destroyed
        isExporting = true;
        while (world.library.hasObserver())
            std::this_thread::yield();
    };
    {
        PhotoLibraryObserver observer(world.library, world.database, world.life, world.staging,
                                      albums, preferences, world.console);
        std::thread([&] { observer.start(); }).join();
        ASSERT_TRUE(waitOnMainThread([&] { return isExporting.load(); }));
        std::thread([&] { observer.start(); }).join(); // posted, and never run: it is gone by then
    }
    EXPECT_FALSE(waitOnMainThread([&] { return true; }) && world.library.hasObserver());
    EXPECT_LE(world.library.exported().size(), 2);
}

} // namespace quorvane::test

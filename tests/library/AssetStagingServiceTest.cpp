#include "World.h"

#include "foundation/Crypto.h"
#include "metadata/MotionPhoto.h"
#include "metadata/movie/MovieDates.h"
#include "store/RecordRemainders.h"

#include <cerrno>
#include <thread>

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
        }
    }
}

TEST(AssetStagingService, HandsOutNoCopyButTheOneThatItsRecordTellsOf) {
    const QByteArray bytes = "bytes of a.bin";
    const auto write = [](const QByteArray& content) {
        return [content](const std::filesystem::path& file) { replaceFile(file, content); };
    };
    const auto edit = [](FakePhotoLibrary& library) { library.replace(assetID(1), "edited"); };
    const auto touch = [](FakePhotoLibrary& library) {
        library.replace(assetID(1), "bytes of a.bin");
    };
    const auto take = [](FakePhotoLibrary& library) { library.remove(assetID(1)); };
    const struct {
        const char* name;
        std::function<void(const std::filesystem::path&)> damage;
        std::function<void(FakePhotoLibrary&)> change;
        QByteArray handedOut; ///< none: empty
        int exports;
        QByteArray aside; ///< none: empty
    } cases[] = {
        {"whole", {}, {}, bytes, 1, {}},
        {"cut", write(bytes.first(8)), {}, bytes, 2, {}},
        {"one byte short", write(bytes.chopped(1)), {}, bytes, 2, {}},
        {"another of the same length", write(QByteArray(bytes.size(), 'x')), {}, bytes, 2, {}},
        {"gone", [](auto& file) { std::filesystem::remove(file); }, {}, bytes, 2, {}},
        {"whole, original edited", {}, edit, bytes, 1, {}},
        {"cut, original edited", write("byt"), edit, "edited", 2, "byt"},
        {"cut, original touched", write("byt"), touch, bytes, 2, "byt"},
        {"whole, original gone", {}, take, bytes, 1, {}},
        {"cut, original gone", write("byt"), take, {}, 1, {}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        World world;
        world.discover(assetID(1));
        world.staging.stageDiscoveredAssets();
        const auto file = world.staging.findStagingFile(assetID(1)).value();
        if (each.damage)
            each.damage(file);
        if (each.change)
            each.change(world.library);
        std::optional<StagedFile> copy;
        const QStringList lines =
            printedBy([&] { copy = world.staging.stage(world.record(assetID(1)).value(), {}); });
        EXPECT_EQ(copy ? readFile(copy->path) : QByteArray(), each.handedOut);
        EXPECT_EQ(world.library.exported().size(), each.exports);
        const auto aside = world.permanent / "Kenara Alinanlar" / file.filename();
        EXPECT_EQ(std::filesystem::exists(aside), !each.aside.isEmpty());
        EXPECT_EQ(lines.filter(pathText(aside)).size(), each.aside.isEmpty() ? 0 : 1);
        if (!each.aside.isEmpty()) {
            EXPECT_EQ(readFile(aside), each.aside);
        }
        const SyncRecord record = world.record(assetID(1)).value();
        EXPECT_EQ(record.syncStatus, copy ? SyncStatus::staged : SyncStatus::discovered);
        if (copy) {
            EXPECT_EQ(record.sha256Hash, copy->content.sha256);
            EXPECT_EQ(copy->content,
                      (HashAndSize{sha256Of(each.handedOut), each.handedOut.size()}));
        }
    }
}

TEST_F(AssetStagingServiceTest, AFileOfUnknownBytesIsReplacedOrRescued) {
    discover(assetID(1));
    replaceFile(permanent / pathFrom(stagedName(assetID(1), u"a.bin"_s)), "whose?");
    staging.stageDiscoveredAssets();
    EXPECT_EQ(record(assetID(1))->sha256Hash, sha256Of("bytes of a.bin"));
    EXPECT_EQ(
        readFile(permanent / "Kenara Alinanlar" / pathFrom(stagedName(assetID(1), u"a.bin"_s))),
        "whose?");

    SyncRecord recovered; // by the scan, and nothing else is left of it
    recovered.assetLocalIdentifier = assetID(2);
    recovered.syncStatus = SyncStatus::staged;
    database.upsertRecord(recovered);
    replaceFile(permanent / pathFrom(stagedName(assetID(2), u"a.bin"_s)), "rescued");
    const auto copy = staging.stage(recovered, {});
    ASSERT_TRUE(copy);
    EXPECT_EQ(readFile(copy->path), "rescued");
    EXPECT_EQ(record(assetID(2))->sha256Hash, sha256Of("rescued"));
    EXPECT_EQ(life.sourceOf(assetID(2)), std::nullopt) << "it proves nothing";
}

TEST(AssetStagingService, JoinsTheMovieOfALivePhotoOrSaysThatItStaysBehind) {
    const QByteArray whole = sample::movie(1, sample::MovieBrand::quickTime, 7);
    for (const QByteArray& movie : {whole, whole.chopped(1), QByteArray("no movie")}) {
        World world;
        world.discoverLive(assetID(1), movie);
        const auto lines = printedBy([&] { world.staging.stageDiscoveredAssets(); });
        const bool isJoined = movie == whole;
        EXPECT_EQ(lines.filter(u"videosu eklenemedi"_s).isEmpty(), isJoined);
        EXPECT_EQ(world.stagedNames(), QStringList{stagedName(assetID(1), u"a.jpg"_s)});
        const QByteArray file = readFile(world.staging.findStagingFile(assetID(1)).value());
        const auto joined = motion::movieIn(viewOf(file));
        ASSERT_EQ(joined.has_value(), isJoined);
        if (isJoined) {
            const auto copy = world.folder.write("copy.mov", file.last(whole.size()));
            EXPECT_EQ(readMP4CreationDate(copy), Date(std::chrono::seconds(1614961330)));
            EXPECT_EQ(joined->length, static_cast<std::uint64_t>(whole.size()));
        }
        EXPECT_EQ(world.life.sourceOf(assetID(1))->movie.has_value(), isJoined);
        world.life.requeued(*world.record(assetID(1)));
        world.staging.removeFromStaging(assetID(1));
        world.staging.stageDiscoveredAssets();
        EXPECT_EQ(readFile(world.staging.findStagingFile(assetID(1)).value()), file);
        world.setStatus(assetID(1), SyncStatus::verified, u"remote"_s);
        EXPECT_EQ(RecordRemainders(world.database).counts().movies, isJoined ? 0 : 1);
    }
}

TEST(AssetStagingService, MakesUnsentFilesAnewWhenTheirFormChanges) {
    World world;
    world.discover(assetID(1));
    world.discover(assetID(2));
    FakePhotoLibrary::Entry entry;
    entry.asset.localIdentifier = assetID(3);
    entry.bytes = "both";
    const std::filesystem::path location = pathFrom(assetID(3));
    entry.resources = {{AssetResourceType::photo, u"a.bin"_s, 4, location},
                       {AssetResourceType::pairedVideo, u"a.mov"_s, 4, location},
                       {AssetResourceType::fullSizePhoto, u"b.bin"_s, 4, location}};
    world.library.add(entry);
    world.discoverRecord(assetID(3));
    world.staging.settleForm(u"original"_s);
    world.staging.stageDiscoveredAssets();
    world.setStatus(assetID(2), SyncStatus::verified, u"remote"_s);
    world.setStatus(assetID(3), SyncStatus::verified, u"remote"_s);
    EXPECT_EQ(RecordRemainders(world.database).counts(), (RemainderCounts{1, 1, 0, 0, 0}));
    world.staging.settleForm(u"original"_s);
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::staged);
    EXPECT_EQ(printedBy([&] { world.staging.settleForm(u"edited"_s); }), QStringList());
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::discovered);
    EXPECT_FALSE(world.staging.findStagingFile(assetID(1)));
    EXPECT_EQ(world.status(assetID(2)), SyncStatus::verified) << "what was sent stays";
}

TEST(AssetStagingService, RecordsAFailedExportAndLeavesNoFile) {
    const QString reason = u"Özgün dosya bu bilgisayarda değil"_s;
    const QString full = u"Dosyaya yazılamadı: /x (diskte yer kalmadı)"_s;
    World world;
    world.discover(assetID(1));
    world.library.onExport = [] { throw FileError(u"Dosyaya yazılamadı"_s, "/x", ENOSPC); };
    EXPECT_EQ(printedBy([&] { world.staging.stageDiscoveredAssets(); }),
              QStringList{u"[Staging] Hata %1: %2"_s.arg(assetID(1), full)});
    EXPECT_THROW(world.staging.stage(world.record(assetID(1)).value(), {}), FileError);
    world.library.onExport = [&] {
        world.library.status = AuthorizationStatus::denied; // unplugged while it is read
        throw FileError(u"Dosya okunamadı"_s, "/x", EIO);
    };
    EXPECT_THROW(world.staging.stage(world.record(assetID(1)).value(), {}), PhotoLibraryError);
    world.library.status = AuthorizationStatus::authorized;
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::discovered) << "its turn comes";

    world.library.onExport = [&] { throw PhotoLibraryError(reason); };
    EXPECT_EQ(printedBy([&] { world.staging.stageDiscoveredAssets(); }),
              QStringList{u"[Staging] Hata %1: %2"_s.arg(assetID(1), reason)});
    EXPECT_EQ(world.status(assetID(1)), SyncStatus::failed);
    EXPECT_EQ(world.record(assetID(1))->lastError, reason);
    EXPECT_EQ(world.stagedNames(), QStringList());
}

TEST_F(AssetStagingServiceTest, SentCopiesGoOldestFirstAndMakeRoom) {
    const auto sparse = [&](int number, std::uintmax_t size) {
        discoverRecord(assetID(number));
        const auto file = permanent / pathFrom(stagedName(assetID(number), u"a.mov"_s));
        replaceFile(file, "");
        std::filesystem::resize_file(file, size);
        setStatus(assetID(number), SyncStatus::verified, u"remote"_s);
    };
    discover(assetID(9));
    staging.stageDiscoveredAssets();
    for (const int number : {1, 2, 3}) {
        sparse(number, std::uintmax_t(900) << 20);
        staging.wasSent(assetID(number));
    }
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
    EXPECT_TRUE(staging.findStagingFile(assetID(2)));
    EXPECT_TRUE(staging.findStagingFile(assetID(3)));

    FakePhotoLibrary::Entry large;
    large.asset.localIdentifier = assetID(4);
    large.resources = {{AssetResourceType::video, u"b.mov"_s, std::int64_t(1) << 60, {}}};
    library.add(large);
    discoverRecord(assetID(4));
    EXPECT_THROW(staging.stage(record(assetID(4)).value(), {}), FileError);
    EXPECT_FALSE(library.exported().contains(assetID(4)));
    EXPECT_FALSE(staging.findStagingFile(assetID(3)));
    EXPECT_TRUE(staging.findStagingFile(assetID(9))) << "what is pending stays";
}

TEST(AssetStagingService, DiscardsACopyOnlyWhileItsOriginalIsUnchanged) {
    const struct {
        std::function<void(World&)> change;
        bool isDone, isKept, isAside;
    } cases[] = {
        {[](auto&) {}, true, false, false},
        {[](auto& world) { world.library.replace(assetID(1), "edited"); }, true, false, true},
        {[](auto& world) { world.library.remove(assetID(1)); }, true, false, true},
        {[](auto& world) { world.library.unreadable = u"yok"_s; }, false, true, false},
    };
    for (const auto& each : cases) {
        World world;
        world.discover(assetID(1));
        world.staging.stageDiscoveredAssets();
        each.change(world);
        bool isDone = false;
        const QStringList lines = printedBy([&] { isDone = world.staging.discard(assetID(1)); });
        EXPECT_EQ(isDone, each.isDone);
        EXPECT_EQ(world.staging.findStagingFile(assetID(1)).has_value(), each.isKept);
        EXPECT_EQ(lines.filter(u"kenara alındı"_s).size(), each.isAside ? 1 : 0);
        EXPECT_TRUE(world.staging.discard(assetID(2))) << "there is nothing";
    }
}

TEST(AssetStagingService, TwoProcessesAtOnceTearNothingAndExportNothingTwice) {
    constexpr int assets = 20;
    World world;
    world.library.onExport = [] { std::this_thread::yield(); };
    for (int i = 0; i < assets; ++i)
        world.discover(assetID(i), u"%1.bin"_s.arg(i));
    {
        std::vector<std::jthread> processes;
        for (int process = 0; process < 2; ++process)
            processes.emplace_back([&] {
                DatabaseManager database(world.place.database, world.console);
                RecordLife life(database);
                KnownContents known(database, {});
                MediaMetadataService metadata(world.library, world.folders.pictures, world.log,
                                              world.clock);
                AssetStagingService staging(
                    {world.library, database, life, known, metadata, world.console}, world.place,
                    world.folders.stagingLock());
                for (int i = 0; i < assets; ++i) {
                    staging.removeLeftovers();
                    const auto record = database.fetchRecord(assetID(i));
                    const auto copy = staging.stage(record.value(), {});
                    ASSERT_TRUE(copy);
                    EXPECT_EQ(readFile(copy->path), "bytes of " + QByteArray::number(i) + ".bin");
                }
            });
    }
    EXPECT_EQ(world.library.exported().size(), assets);
    EXPECT_EQ(world.stagedNames().size(), assets);
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
        EXPECT_FALSE(world.staging.stage(world.record(assetID(1)).value(), {}));
        EXPECT_EQ(world.status(assetID(1)), each.expected);
        EXPECT_EQ(world.stagedNames(), QStringList()) << "recovery would bring it back";
    }
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
        printedBy([&] { const AssetStagingService other(services, place, folders.stagingLock()); }),
        QStringList{u"[Staging] Geçici klasör bu kullanıcıya özel değil, kullanılmayacak: "_s +
                    pathText(folders.temporaryStaging)});
    EXPECT_FALSE(staging.findStagingFile(assetID(1)));
}

TEST_F(AssetStagingServiceTest, RemovesWhatDeadRunsLeftAndNothingElse) {
    for (const char* name : {".x.part", ".x.jpg.tmp", ".hidden", "x.tmp", "y.part", "z.jpg"})
        replaceFile(permanent / name, "x");
    staging.removeLeftovers();
    EXPECT_EQ(stagedNames(), (QStringList{u".hidden"_s, u"x.tmp"_s, u"y.part"_s, u"z.jpg"_s}));
}

} // namespace quorvane::test

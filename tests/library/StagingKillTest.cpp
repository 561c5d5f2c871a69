#include "World.h"

#include "foundation/Crypto.h"
#include "library/PhotoLibraryObserver.h"
#include "platform/folder/FolderLibrary.h"
#include "sample/SampleMedia.h"

#include <array>
#include <map>
#include <random>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace quorvane::test {

namespace {

constexpr const char* worldVariable = "QUORVANE_TEST_KILLED_WORLD";
constexpr int pictures = 6;       // fewer than one call looks at
constexpr int victimsSignal = 63; // the descriptor on which the victim says that it begins
#ifdef __SANITIZE_THREAD__
constexpr int kills = 20; // a slow start each, and no new thread to look at
#else
constexpr int kills = 200;
#endif

/// The same folders for the process that stages and the one that kills it.
struct StagedWorld {
    explicit StagedWorld(const std::filesystem::path& home)
        : folders{home, home / "Pictures", home / "temporary/QuorvaneStaging"},
          library(home / "library", known, consent, log) {}

    void stage() {
        MediaMetadataService metadata(library, folders.pictures, log, clock);
        RecordLife life(database);
        KnownContents contents(database, {});
        AssetStagingService staging({library, database, life, contents, metadata, console},
                                    StateCatalogue(folders).first(), folders.stagingLock());
        staging.removeLeftovers();
        for (const SyncRecord& record : database.fetchPendingRecords(pictures))
            staging.stage(record, {});
    }

    UserFolders folders;
    Console console{Console::Channel::silent};
    RecordingLog log;
    FakeClock clock;
    NoConsent consent;
    NoKnownFiles known;
    FolderLibrary library;
    DatabaseManager database{folders.database(), console};
};

using Contents = std::map<std::filesystem::path, QByteArray>;

/// The files that have a staged name.
Contents stagedIn(const UserFolders& folders) {
    Contents contents;
    for (const auto& entry : std::filesystem::directory_iterator(folders.permanentStaging()))
        if (entry.is_regular_file() && !entry.path().filename().native().starts_with('.'))
            contents[entry.path()] = readFile(entry.path());
    return contents;
}

/// A process that begins to stage when this returns: how long it takes to start says nothing about
/// how long it stages.
pid_t startVictim() {
    const char* arguments[] = {"test-library", "--gtest_filter=StagingVictim.DISABLED_Stages",
                               "--gtest_also_run_disabled_tests", nullptr};
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], victimsSignal);
    pid_t child = -1;
    EXPECT_EQ(::posix_spawn(&child, "/proc/self/exe", &actions, nullptr,
                            const_cast<char**>(arguments), environ),
              0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    char begins = 0;
    EXPECT_EQ(::read(ends[0], &begins, 1), 1) << "it ended before it staged";
    ::close(ends[0]);
    return child;
}

/// Everything is as it was before the staging.
void startAgain(StagedWorld& world) {
    for (const auto& [file, bytes] : stagedIn(world.folders))
        std::filesystem::remove(file);
    for (const auto& [identifier, status] : world.database.fetchStatuses())
        world.database.updateStatus(identifier, googlePhotosProvider, pendingAccount,
                                    SyncStatus::discovered);
}

} // namespace

/// The process that is killed; no test by itself.
TEST(StagingVictim, DISABLED_Stages) {
    const QByteArray home = qgetenv(worldVariable);
    ASSERT_FALSE(home.isEmpty());
    StagedWorld world(home.toStdString());
    ASSERT_EQ(::write(victimsSignal, "b", 1), 1);
    world.stage();
}

TEST(StagingKill, LeavesWholeFilesAndTrueRecordsWheneverItComes) {
    // A killed process loses nothing that it gave to the system: the test needs no real disk.
    const QTemporaryDir memory(QStringLiteral("/dev/shm/quorvane-test-XXXXXX"));
    const TemporaryFolder disk;
    const auto home = memory.isValid() ? pathFrom(memory.path()) : disk.path();
    std::filesystem::create_directory(home / "library");
    for (int i = 0; i < pictures; ++i) // dated by their names, so that a date is written
        replaceFile(home / ("library/IMG-2021030" + std::to_string(i + 1) + "-WA0001.jpg"),
                    sample::jpeg(static_cast<std::uint32_t>(i), std::nullopt));
    StagedWorld world(home);
    const AssetFetchResult assets = world.library.fetchAssets();
    std::map<QString, QByteArray> originals;
    for (const PhotoAsset& asset : *assets) {
        SyncRecord record;
        record.assetLocalIdentifier = asset.localIdentifier;
        world.database.insertIfNotExists(record);
        originals[QString(asset.localIdentifier).replace(u'/', u'_')] =
            readFile(home / "library" / world.library.assetResources(asset).at(0).location);
    }
    world.stage();
    const Contents whole = stagedIn(world.folders);
    ASSERT_EQ(whole.size(), static_cast<std::size_t>(pictures));
    startAgain(world);

    qputenv(worldVariable, QByteArray::fromStdString(home.native()));
    SystemClock clock;
    const pid_t undisturbed = startVictim();
    const auto began = clock.monotonic();
    ASSERT_EQ(::waitpid(undisturbed, nullptr, 0), undisturbed);
    const auto longest =
        std::chrono::duration_cast<std::chrono::microseconds>(clock.monotonic() - began);
    ASSERT_EQ(stagedIn(world.folders), whole) << "without a kill it stages all";
    startAgain(world);

    std::minstd_rand random(20'210'305);
    int cutShort = 0;
    for (int kill = 0; kill < kills; ++kill) {
        const pid_t victim = startVictim();
        const std::chrono::microseconds delay(random() % static_cast<unsigned>(longest.count()));
        std::this_thread::sleep_for(delay);
        ::kill(victim, SIGKILL);
        ASSERT_EQ(::waitpid(victim, nullptr, 0), victim);

        const Contents now = stagedIn(world.folders);
        for (const auto& [file, bytes] : now) {
            const QString safeId = pathText(file.filename()).section(u'_', 0, 2);
            ASSERT_TRUE(bytes == whole.at(file) || bytes == originals.at(safeId)) << file;
        }
        std::size_t staged = 0;
        for (const SyncRecord& record : world.database.fetchPendingRecords(2 * pictures)) {
            if (record.syncStatus != SyncStatus::staged)
                continue;
            ++staged;
            const QString safeId = QString(record.assetLocalIdentifier).replace(u'/', u'_');
            const auto file = std::ranges::find_if(now, [&](const auto& entry) {
                return pathText(entry.first.filename()).startsWith(safeId);
            });
            ASSERT_NE(file, now.end()) << "a record without its file";
            ASSERT_EQ(record.sha256Hash, QString::fromLatin1(Sha256::digest(file->second).toHex()));
        }
        ASSERT_EQ(world.database.countFailedRecords(), 0);
        cutShort += staged < whole.size() && !now.empty();
        if (staged == whole.size())
            startAgain(world);
    }
    qunsetenv(worldVariable);
    EXPECT_GE(cutShort, kills / 20) << "most came before or after the staging";
    RecordProperty("cutShort", cutShort);
}

} // namespace quorvane::test

#include "CliWorld.h"

#include "foundation/Crypto.h"

#include <chrono>
#include <csignal>
#include <random>
#include <set>

namespace quorvane::test {

namespace {

using std::chrono::milliseconds;

struct CliRecoveryTest : CliWorld {
    /// Every picture is in the service once, the store knows it, and what is staged is whole.
    void expectAllSafe(int count) const {
        EXPECT_EQ(stored(), (Stored{{SyncStatus::verified, count}}));
        std::set<QByteArray> uploaded;
        for (const StoredMediaItem& item : emulator.mediaItems())
            EXPECT_TRUE(uploaded.insert(item.sha256).second) << item.filename.toStdString();
        EXPECT_EQ(uploaded.size(), static_cast<size_t>(count));

        Console silent(Console::Channel::silent);
        DatabaseManager db(folders.database(), silent);
        std::set<std::pair<qint64, QByteArray>> known;
        for (const auto& [identifier, status] : db.fetchStatuses())
            for (const SyncRecord& record : db.fetchRecordsOfAsset(identifier))
                known.emplace(record.fileSizeBytes.value_or(-1),
                              record.sha256Hash.value_or(QString()).toLatin1());
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(folders.permanentStaging())) {
            const QByteArray bytes = readFile(entry.path());
            EXPECT_TRUE(known.contains({bytes.size(), Sha256::digest(bytes).toHex()}))
                << entry.path();
        }
    }
};

TEST_F(CliRecoveryTest, oneRunAtATime) {
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, 3);
    emulator.change([](Behaviour& behaviour) { behaviour.latency = milliseconds(2000); });
    const auto first = start(sync());
    ASSERT_TRUE(emulator.waitForRequests(RequestKind::upload, 1));
    for (const QStringList& words : {sync(), QStringList{u"logout"_s}}) {
        const Outcome second = run(words);
        EXPECT_EQ(second.code, 5);
        EXPECT_TRUE(second.err.startsWith(
            u"Başka bir eşitleme çalışıyor: quorvane-cli (PID %1,"_s.arg(first->processId())))
            << second.err.toStdString();
    }
    ::kill(static_cast<pid_t>(first->processId()), SIGINT);
    EXPECT_EQ(finish(*first).code, 130);
}

TEST_F(CliRecoveryTest, aKillAtAnyInstantLosesAndDoublesNothing) {
    constexpr int count = 150;
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, count);
    emulator.change([](Behaviour& behaviour) { behaviour.latency = milliseconds(40); });
    const unsigned seed = std::random_device()();
    RecordProperty("seed", std::to_string(seed));
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> instant(20, 500);
    for (int i = 0; i < 5; ++i) {
        const auto process = start(sync());
        process->waitForFinished(instant(random));
        process->kill();
        finish(*process);
    }
    const Outcome last = run(sync());
    EXPECT_EQ(last.code, 0) << last.out.toStdString() << last.err.toStdString();
    expectAllSafe(count);
}

TEST_F(CliRecoveryTest, aServiceThatIsDownCostsNothing) {
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, 1);
    emulator.stop();
    const Outcome down = run(sync({u"--quiet"_s}));
    EXPECT_EQ(down.code, 4);
    EXPECT_TRUE(down.out.contains(u"IMG_000000.jpg: ")) << down.out.toStdString();
    EXPECT_EQ(stored(), (Stored{{SyncStatus::failed, 1}}));

    emulator.start();
    EXPECT_EQ(run({u"retry"_s}).out, u"1 öğe yeniden sıraya alındı.\n");
    EXPECT_EQ(run(sync()).code, 0);
    expectAllSafe(1);
}

} // namespace

} // namespace quorvane::test

#include "sqlite/DatabaseSnapshot.h"

#include "sqlite/Sqlite.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvane::test {

TEST(DatabaseSnapshot, FollowsTheOriginalWithoutTouchingIt) {
    const TemporaryFolder folder;
    const auto original = folder / "original/a.sqlite";
    std::filesystem::create_directories(original.parent_path());
    DatabaseSnapshot snapshot(original, folder / "work");
    EXPECT_THROW(snapshot.refresh(), FileError) << "there is nothing yet";
    sqlite::Connection writer(original, sqlite::Connection::Mode::readWriteCreate);
    writer.execute("PRAGMA journal_mode = WAL; CREATE TABLE t (x)");
    for (int rows = 1; rows <= 3; ++rows) {
        writer.execute("INSERT INTO t VALUES (1)");
        if (rows == 2)
            writer.execute("PRAGMA wal_checkpoint(TRUNCATE)");
        EXPECT_FALSE(snapshot.isCurrent());
        ASSERT_TRUE(snapshot.refresh());
        EXPECT_TRUE(snapshot.isCurrent());
        sqlite::Connection reader(snapshot.file(), sqlite::Connection::Mode::readOnly);
        sqlite::Statement count(reader, "SELECT COUNT(*) FROM t");
        EXPECT_TRUE(count.step());
        EXPECT_EQ(count.integer(0), rows);
    }
    EXPECT_EQ(entriesIn(original.parent_path()), 3) << "the writer's own files";
}

TEST(DatabaseSnapshot, RemovesWhatAKilledProcessLeft) {
    const TemporaryFolder folder;
    const auto original = folder.write("a.sqlite", "bytes");
    const pid_t child = ::fork();
    if (child == 0) { // only what a forked process may do before it is killed
        const std::string left = (folder / "work/quorvane-photos-killed").native();
        std::filesystem::create_directories(left);
        std::filesystem::copy(original, left + "/copy.sqlite");
        ::flock(::open(left.c_str(), O_RDONLY | O_DIRECTORY), LOCK_EX);
        ::raise(SIGKILL);
    }
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    folder.write("work/other/file", "somebody else's");
    DatabaseSnapshot living(original, folder / "work");
    ASSERT_TRUE(living.refresh());
    {
        DatabaseSnapshot next(original, folder / "work");
        ASSERT_TRUE(next.refresh());
        EXPECT_TRUE(std::filesystem::exists(living.file())) << "its owner lives";
        EXPECT_EQ(std::filesystem::status(next.file().parent_path()).permissions(),
                  std::filesystem::perms::owner_all);
        EXPECT_EQ(entriesIn(folder / "work"), 3);
    }
    EXPECT_EQ(entriesIn(folder / "work"), 2);
    EXPECT_EQ(readFile(folder / "work/other/file"), "somebody else's");
}

} // namespace quorvane::test

#include "CliWorld.h"

#include <csignal>

namespace quorvane::test {

namespace {

using WatchTest = CliWorld;

TEST_F(WatchTest, backsUpWhatIsThereAndWhatAppears) {
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, 3);
    const auto program =
        start({u"watch"_s, u"--library"_s, pathText(library), u"--settle"_s, u"0"_s});
    const auto waitForItems = [&](std::size_t count) {
        for (int i = 0; i < 1000 && emulator.mediaItems().size() < count; ++i)
            program->waitForReadyRead(10);
        return emulator.mediaItems().size();
    };
    EXPECT_EQ(waitForItems(3), 3U);
    sample::writeManyPictures(folder / "yeni", 5); // the first three have the bytes of those above
    std::filesystem::rename(folder / "yeni", library / "yeni");
    EXPECT_EQ(waitForItems(5), 5U);

    ::kill(static_cast<pid_t>(program->processId()), SIGTERM);
    const Outcome outcome = finish(*program);
    EXPECT_EQ(outcome.code, 0) << outcome.out.toStdString() << outcome.err.toStdString();
    EXPECT_EQ(stored(), (Stored{{SyncStatus::verified, 8}}));
}

} // namespace

} // namespace quorvane::test

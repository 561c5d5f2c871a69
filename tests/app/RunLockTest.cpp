#include "app/RunLock.h"

#include "support/TemporaryFolder.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

QString refusalOf(const std::filesystem::path& file) {
    try {
        const RunLock lock(file);
        return {};
    } catch (const RunLockHeld& error) {
        return error.localizedDescription();
    }
}

TEST(RunLockTest, theSecondHolderLearnsWhoTheFirstIs) {
    const TemporaryFolder folder;
    const auto file = folder / "yeni/klasör/run.lock";
    folder.write("yeni/klasör/run.lock", QByteArray(3000, 'x')); // left by an earlier holder
    {
        const RunLock lock(file);
        static const QRegularExpression form(
            u"^Başka bir eşitleme çalışıyor: test-app \\(PID %1, başlangıç "
            "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\)$"_s.arg(::getpid()));
        EXPECT_TRUE(form.match(refusalOf(file)).hasMatch()) << refusalOf(file).toStdString();
    }
    EXPECT_EQ(refusalOf(file), QString());
    EXPECT_THROW(RunLock(folder / "yeni"), FileError);
}

TEST(RunLockTest, aKilledHolderHoldsNothing) {
    const TemporaryFolder folder;
    const auto file = folder / "run.lock";
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const RunLock lock(file);
        [[maybe_unused]] const auto written = ::write(ready[1], "x", 1);
        for (;;)
            ::pause();
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_TRUE(refusalOf(file).contains(u"PID %1,"_s.arg(child)));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(refusalOf(file), QString());
    ::close(ready[0]);
    ::close(ready[1]);
}

} // namespace

} // namespace quorvane::test

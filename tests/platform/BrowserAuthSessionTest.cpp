#include "platform/linux/BrowserAuthSession.h"

#include "google/OAuthError.h"
#include "platform/linux/CallbackSocket.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace quorvane::test {
namespace {

const QString scheme = QStringLiteral("com.example.apps.1-a");
const QUrl page(QStringLiteral("https://accounts.example.com/auth?a=1%202&b=$(touch%20x);'"));
const QString callback = scheme + QStringLiteral(":/oauth2redirect?state=s&code=4%2F0Ab");

/// A private desktop whose xdg-open is a script of ours, and a person who runs it.
class BrowserAuthSessionTest : public testing::Test {
  protected:
    BrowserAuthSessionTest() {
        environment.dataHome = folder / "data";
        environment.configHome = folder / "config";
        environment.runtimeFolder = folder / "run/quorvane";
        environment.programFolder = "/opt/Quorvane 1";
        environment.hasDisplay = true;
        browserDoes("echo \"$#:$1\" > \"$0.called.tmp\"; mv \"$0.called.tmp\" \"$0.called\"");
        qputenv("PATH", (pathText(folder / "bin") + u':' + oldPath).toUtf8());
    }
    ~BrowserAuthSessionTest() override { qputenv("PATH", oldPath.toUtf8()); }

    void browserDoes(const QByteArray& script) {
        const auto program = folder.write("bin/xdg-open", "#!/bin/sh\n" + script + "\n");
        ::chmod(program.c_str(), 0700);
    }

    /// Starts a sign-in on a thread of its own and waits until it listens or has failed.
    std::future<QUrl> start(BrowserAuthSession::Options options = {}) {
        auto shown = std::make_shared<std::promise<bool>>();
        auto done = std::async(std::launch::async, [this, options, shown] {
            BrowserAuthSession session(environment, options, console, log);
            return session.authenticate(
                page, scheme, [&](bool succeeded) { shown->set_value(succeeded); },
                stop.get_token());
        });
        wasShown = shown->get_future().get();
        return done;
    }

    QString failureOf(std::future<QUrl> session) {
        try {
            return session.get().toString();
        } catch (const Error& error) {
            return error.localizedDescription();
        }
    }

    TemporaryFolder folder;
    DesktopEnvironment environment;
    Console console{Console::Channel::silent};
    RecordingLog log;
    std::stop_source stop;
    std::atomic<bool> wasShown = false;
    const QString oldPath = qEnvironmentVariable("PATH");
    const QString startFailed =
        OAuthError(OAuthError::Case::sessionStartFailed).localizedDescription();
};

TEST_F(BrowserAuthSessionTest, OpensTheBrowserAndTakesTheCallbackThatIsHandedOver) {
    EXPECT_FALSE(handOverURL(environment, callback)) << "nobody waits yet";
    auto session = start();
    EXPECT_TRUE(wasShown);
    struct stat info {};
    ASSERT_EQ(::stat(environment.signInSocket().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    ASSERT_EQ(::stat(environment.runtimeFolder.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);

    for (const QString& stray : {QStringLiteral("http://127.0.0.1/?code=1"), QString(),
                                 scheme + QStringLiteral(":/oauth2redirect?state=s"),
                                 QStringLiteral("x").repeated(100'000)})
        EXPECT_FALSE(handOverURL(environment, stray));
    EXPECT_TRUE(log.contains(QStringLiteral("Beklenmeyen geri dönüş adresi yok sayıldı")));
    EXPECT_TRUE(handOverURL(environment, callback));
    EXPECT_EQ(session.get(), QUrl(callback));
    EXPECT_FALSE(std::filesystem::exists(environment.signInSocket()));

    const auto called = folder / "bin/xdg-open.called";
    ASSERT_TRUE(waitOnMainThread([&] { return std::filesystem::exists(called); }));
    EXPECT_EQ(readFile(called), "1:" + page.toEncoded() + "\n") << "one argument, no shell";
}

TEST_F(BrowserAuthSessionTest, TakesAPastedCallback) {
    environment.hasDisplay = false;
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const FileDescriptor reading(pipe[0]);
    const FileDescriptor writing(pipe[1]);
    auto session = start({.input = reading.get()});
    EXPECT_TRUE(wasShown);
    const QByteArray typed = "\nhttps://example.com/?code=1\n  " + callback.toUtf8() + "  \r\n";
    for (const char c : typed)
        ASSERT_EQ(::write(writing.get(), &c, 1), 1);
    EXPECT_EQ(session.get(), QUrl(callback));
    EXPECT_FALSE(std::filesystem::exists(folder / "bin/xdg-open.called"));
}

TEST_F(BrowserAuthSessionTest, FailsToStartWhereNobodyCanAnswer) {
    environment.hasDisplay = false;
    EXPECT_EQ(failureOf(start()), startFailed) << "no display";
    EXPECT_FALSE(wasShown);

    const FileDescriptor nothing = openFile("/dev/null", O_RDONLY);
    EXPECT_EQ(failureOf(start({.input = nothing.get()})), startFailed) << "the input ends";

    environment.hasDisplay = true;
    browserDoes("exit 3");
    EXPECT_EQ(failureOf(start()), startFailed) << "the desktop has no browser";

    qputenv("PATH", pathText(folder / "empty").toUtf8());
    EXPECT_EQ(failureOf(start()), startFailed) << "no xdg-open";
    EXPECT_FALSE(wasShown);
}

TEST_F(BrowserAuthSessionTest, StopsAtOnceAlsoWhileSomebodyIsSilent) {
    auto session = start();
    const FileDescriptor silent(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = environment.signInSocket();
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::copy(path.begin(), path.end(), address.sun_path);
    ASSERT_EQ(::connect(silent.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    QElapsedTimer timer;
    timer.start();
    stop.request_stop();
    EXPECT_THROW(session.get(), Cancelled);
    EXPECT_LT(timer.elapsed(), 500);
}

TEST_F(BrowserAuthSessionTest, EndsWhenAbandonedOrOvertaken) {
    EXPECT_EQ(failureOf(start({.input = {}, .patience = std::chrono::milliseconds(20)})),
              QStringLiteral("OAuth: Giriş zamanında tamamlanmadı"));
    auto first = start();
    auto second = start();
    EXPECT_EQ(failureOf(std::move(first)),
              QStringLiteral("OAuth: Yeni bir giriş başlatıldı, bu giriş kapatıldı"));
    EXPECT_TRUE(handOverURL(environment, callback));
    EXPECT_EQ(second.get(), QUrl(callback));
}

TEST_F(BrowserAuthSessionTest, TakesOverASocketThatACrashLeftBehindAndReturnsARefusalAsItIs) {
    folder.write("run/quorvane/sign-in.socket", "");
    auto session = start();
    const QString refusal = scheme + QStringLiteral(":/oauth2redirect?error=access_denied");
    EXPECT_TRUE(handOverURL(environment, refusal));
    EXPECT_EQ(session.get(), QUrl(refusal));
}

TEST_F(BrowserAuthSessionTest, RefusesASocketFolderThatIsALink) {
    std::filesystem::create_directories(folder / "elsewhere");
    std::filesystem::create_directories(folder / "run");
    std::filesystem::create_symlink(folder / "elsewhere", environment.runtimeFolder);
    EXPECT_EQ(failureOf(start()), startFailed);
    EXPECT_TRUE(std::filesystem::is_empty(folder / "elsewhere"));
}

} // namespace
} // namespace quorvane::test

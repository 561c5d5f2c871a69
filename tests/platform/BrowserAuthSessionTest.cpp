#include "platform/linux/BrowserAuthSession.h"

#include "google/OAuthError.h"
#include "platform/linux/CallbackSocket.h"
#include "support/Failures.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

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
            WebAuthRequest request;
            request.schemeURI = scheme + QStringLiteral(":/oauth2redirect");
            request.prefersLoopback = prefersLoopback;
            request.isAddressShown = isAddressShown;
            request.state = QStringLiteral("s~1");
            request.page = [this](const QString& uri) {
                redirectURI = uri;
                return page;
            };
            return session.authenticate(
                request, [&](bool succeeded) { shown->set_value(succeeded); }, stop.get_token());
        });
        wasShown = shown->get_future().get();
        return done;
    }

    /// A connection to the listener of the sign-in that waits.
    FileDescriptor visit() const {
        FileDescriptor connection(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(QUrl(redirectURI).port()));
        EXPECT_EQ(
            ::connect(connection.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        return connection;
    }
    /// What the listener answers to the bytes, until it closes.
    QByteArray ask(const QByteArray& request) const {
        const FileDescriptor connection = visit();
        ::send(connection.get(), request.constData(), static_cast<size_t>(request.size()),
               MSG_NOSIGNAL);
        QByteArray answer(65536, '\0');
        const ssize_t size = ::recv(connection.get(), answer.data(),
                                    static_cast<size_t>(answer.size()), MSG_WAITALL);
        return answer.left(std::max<ssize_t>(size, 0));
    }

    static QString failureOf(std::future<QUrl> session) {
        return messageOf([&] { session.get(); });
    }

    TemporaryFolder folder;
    DesktopEnvironment environment;
    Console console{Console::Channel::silent};
    RecordingLog log;
    std::stop_source stop;
    bool prefersLoopback = false;
    bool isAddressShown = false;
    QString redirectURI;
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

TEST_F(BrowserAuthSessionTest, TakesTheCallbackAtItsOwnAddressAndNothingElse) {
    prefersLoopback = true;
    for (const bool isGranted : {true, false}) {
        auto session = start();
        ASSERT_TRUE(redirectURI.startsWith(u"http://127.0.0.1:")) << redirectURI.toStdString();
        std::vector<FileDescriptor> idle; // as a browser opens ahead, and more than it would
        for (int i = 0; i < 40; ++i)
            idle.push_back(visit());
        const QByteArray path = "/oauth2redirect?";
        const QByteArray http = " HTTP/1.1\r\n\r\n";
        const std::vector<QByteArray> strays{"GET /" + http,
                                             "GET /favicon.ico?state=s~1&code=1" + http,
                                             "GET " + path + "code=1" + http,
                                             "GET " + path + "code=1&state=s~2" + http,
                                             "GET " + path + "state=s~1" + http,
                                             "POST " + path + "code=1&state=s~1" + http,
                                             "GET http://x" + path + "code=1&state=s~1" + http,
                                             "\r\n\r\n",
                                             QByteArray(200'000, 'x')};
        for (const QByteArray& stray : strays) {
            const QByteArray answer = ask(stray);
            EXPECT_TRUE(answer.isEmpty() || answer.startsWith("HTTP/1.1 404 "))
                << stray.left(60).toStdString() << answer.toStdString();
        }
        EXPECT_TRUE(ask("GET /favicon.ico HTTP/1.1\r\n\r\n").startsWith("HTTP/1.1 404 "));
        EXPECT_FALSE(handOverURL(environment, callback)) << "of the other kind";

        const QByteArray query = path + (isGranted ? "code=4%2F0Ab" : "error=access_denied") +
                                 "&state=s%7E1&scope=a%20b";
        const QByteArray answer = ask("GET " + query + " HTTP/1.1\r\nHost: a\r\n\r\n");
        EXPECT_TRUE(answer.startsWith("HTTP/1.1 200 ")) << answer.toStdString();
        EXPECT_TRUE(answer.contains("Bu sayfayı kapatabilirsiniz."));
        EXPECT_EQ(answer.contains("onaylanmadı"), !isGranted);
        EXPECT_EQ(session.get().query(QUrl::FullyEncoded).contains(u"code=4%2F0Ab"), isGranted);
    }
    EXPECT_FALSE(std::filesystem::exists(environment.configHome)) << "no scheme is registered";
}

TEST_F(BrowserAuthSessionTest, TakesWhatIsPastedOfTheLoopbackAddressWhereNoBrowserOpens) {
    prefersLoopback = isAddressShown = true;
    browserDoes("exit 3");
    auto session = start();
    EXPECT_TRUE(wasShown) << "the person sees the address";
    const QString answered = redirectURI + QStringLiteral("?state=s~1&code=4%2F0Ab");
    EXPECT_FALSE(handOverURL(
        environment, QString(answered).replace(QStringLiteral("s~1"), QStringLiteral("old"))));
    EXPECT_FALSE(handOverURL(
        environment, QString(answered).replace(QStringLiteral("127."), QStringLiteral("128."))));
    EXPECT_TRUE(handOverURL(environment, answered));
    EXPECT_EQ(session.get(), QUrl(answered));
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
    EXPECT_TRUE(test::waitOnMainThread([&] { return handOverURL(environment, callback); }));
    EXPECT_EQ(second.get(), QUrl(callback));
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

#include "google/CurlHttpClient.h"

#include "google/RawServer.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <openssl/x509.h>

#include <latch>

#include <sys/resource.h>

namespace quorvane::test {
namespace {

constexpr std::int64_t MiB = 1 << 20;

void answerEveryRequest(Peer& peer) {
    while (!peer.receiveRequest().isEmpty())
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
}

HttpRequest requestTo(const QUrl& url) {
    HttpRequest request;
    request.url = url;
    return request;
}

HttpRequest postTo(const RawServer& server, const QByteArray& body) {
    HttpRequest request = requestTo(server.url());
    request.method = "POST";
    request.body = body;
    return request;
}

/// The text of the transport error, or what came instead of one.
QString failureOf(CurlHttpClient& client, const HttpRequest& request) {
    try {
        return QStringLiteral("HTTP %1").arg(client.send(request, {}).status);
    } catch (const TransportError& error) {
        return error.localizedDescription();
    }
}

bool isNetworkFailure(const QString& text) {
    const QString lower = text.toLower();
    return (lower.contains(u"connection") || lower.contains(u"offline")) &&
           !lower.contains(u"cancel") && !text.contains(u"limit");
}

TEST(CurlHttpClientTest, StreamsAFileInBoundedMemoryAndTellsProgress) {
    const TemporaryFolder folder;
    const auto file = folder.write("clip.mov", "");
    std::filesystem::resize_file(file, 64 * MiB);
    std::atomic<std::int64_t> arrived = 0;
    RawServer server([&](Peer& peer) {
        const QByteArray head = peer.receive();
        const qsizetype early = head.size() - head.indexOf("\r\n\r\n") - 4;
        if (peer.drain(64 * MiB - early))
            arrived = 64 * MiB;
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\ntoken");
    });
    HttpRequest request = requestTo(server.url());
    request.method = "POST";
    request.bodyFile = file;
    std::vector<std::int64_t> progress;
    request.onProgress = [&](std::int64_t sent, std::int64_t total) {
        EXPECT_EQ(total, 64 * MiB);
        progress.push_back(sent);
    };
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    CurlHttpClient client;
    EXPECT_EQ(client.send(request, {}).body, "token");
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);

    EXPECT_EQ(arrived, 64 * MiB);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 24 * 1024) << "KiB more than before";
    EXPECT_GT(progress.size(), 10u);
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(progress.back(), 64 * MiB);
}

TEST(CurlHttpClientTest, SendsAnUploadAgainWhenTheServerClosedTheIdleConnection) {
    RawServer server([](Peer& peer) {
        peer.receiveRequest();
        peer.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    });
    CurlHttpClient client;
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(client.send(postTo(server, "a=1"), {}).status, 200);
}

TEST(CurlHttpClientTest, NeverSendsACreationTwice) {
    std::atomic<int> creations = 0;
    RawServer server([&](Peer& peer) { // gets every creation and answers none
        QByteArray request;
        while ((request = peer.receiveRequest()).startsWith("GET"))
            peer.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        creations += request.startsWith("POST") ? 1 : 0;
        peer.reset();
    });
    CurlHttpClient client;
    client.send(requestTo(server.url()), {});
    HttpRequest creation = postTo(server, "a=1");
    creation.isCreation = true;
    EXPECT_TRUE(isNetworkFailure(failureOf(client, creation)));
    EXPECT_EQ(creations, 1);
}

/// Milliseconds from the stop request to the end of a request that is being sent (a body the
/// server does not read) or waits for its answer.
qint64 timeToStop(bool untilAnswer) {
    std::latch arrived(1);
    RawServer server([&](Peer& peer) {
        if (untilAnswer)
            peer.receiveRequest();
        else
            peer.receive(1);
        arrived.count_down();
        peer.stayQuiet();
    });
    const HttpRequest request = postTo(server, QByteArray(untilAnswer ? 1 : 32 * MiB, 'x'));
    CurlHttpClient client;
    std::stop_source stop;
    QElapsedTimer timer;
    const std::jthread stopper([&] {
        arrived.wait();
        ::poll(nullptr, 0, 50);
        timer.start();
        stop.request_stop();
    });
    EXPECT_THROW(client.send(request, stop.get_token()), Cancelled);
    const qint64 elapsed = timer.elapsed();
    EXPECT_THROW(client.send(request, stop.get_token()), Cancelled) << "stopped before";
    EXPECT_EQ(server.connections(), 1);
    return elapsed;
}

TEST(CurlHttpClientTest, StopsWithinMillisecondsWhereverItWaits) {
    for (const bool untilAnswer : {false, true}) {
        // The best of a few: a busy machine may delay any single one.
        qint64 best = 1000;
        for (int i = 0; i < 5 && best > 10; ++i)
            best = std::min(best, timeToStop(untilAnswer));
        EXPECT_LE(best, 10) << (untilAnswer ? "waiting for the answer" : "sending");
    }
}

TEST(CurlHttpClientTest, GivesUpOnlyWhenNoDataMoves) {
    const QByteArray head = "HTTP/1.1 200 OK\r\n\r\n";
    const auto answering = [&](int bytes) {
        return [&head, bytes](Peer& peer) {
            peer.receiveRequest();
            peer.send(head);
            for (int i = 0; i < bytes; ++i) {
                peer.send("x");
                peer.stayQuiet(100);
            }
        };
    };
    const struct {
        const char* server;
        std::int64_t bodySize;
        std::function<void(Peer&)> script;
        bool succeeds;
    } rows[] = {
        {"reads nothing", 32 * MiB, [](Peer& peer) { peer.stayQuiet(); }, false},
        {"answers nothing", 1,
         [](Peer& peer) {
             peer.receiveRequest();
             peer.stayQuiet();
         },
         false},
        {"answers slowly", 1, answering(16), true},
        {"answers without end", 1, answering(100), false},
        // The system's buffers take the whole body at once and drain over two seconds.
        {"reads slowly", 2 * MiB,
         [&](Peer& peer) {
             const QByteArray start = peer.receive(300);
             qsizetype left = start.indexOf("\r\n\r\n") + 4 + 2 * MiB - start.size();
             while (left > 0 && peer.drain(std::min<qsizetype>(left, 40'000))) {
                 left -= 40'000;
                 peer.stayQuiet(40);
             }
             peer.send(head);
         },
         true},
    };
    const auto expectRow = [](const auto& row) {
        SCOPED_TRACE(row.server);
        RawServer server(row.script);
        HttpRequest request = postTo(server, QByteArray(row.bodySize, 'x'));
        request.timeout = std::chrono::seconds(1);
        request.answerLimit = std::chrono::seconds(4);
        CurlHttpClient client;
        QElapsedTimer timer;
        timer.start();
        const QString result = failureOf(client, request);
        if (row.succeeds) {
            EXPECT_EQ(result, QStringLiteral("HTTP 200"));
            EXPECT_GT(timer.elapsed(), 1500) << "longer than the time-out";
        } else {
            EXPECT_TRUE(isNetworkFailure(result)) << result.toStdString();
            EXPECT_LT(timer.elapsed(), 8000);
        }
    };
    std::vector<std::jthread> together; // each of them mostly waits
    for (const auto& row : rows)
        together.emplace_back([&] { expectRow(row); });
}

TEST(CurlHttpClientTest, TurnsBrokenAnswersIntoTransportErrors) {
    const QByteArray head = "HTTP/1.1 200 OK\r\n";
    const QByteArray field = "X: " + QByteArray(1000, 'z') + "\r\n";
    const struct {
        const char* name;
        QByteArray answer;
        bool reset = false;
        std::int64_t bodySize = 0; ///< of which the server reads no more than a part
    } rows[] = {
        {"nothing", ""},
        {"reset", "", true},
        {"closed in the middle of an upload", "", false, 16 * MiB},
        {"reset in the middle of an upload", "", true, 16 * MiB},
        {"half a body", head + "Content-Length: 100\r\n\r\nhalf"},
        {"not HTTP", "220 smtp ready\r\n"},
        {"endless header", head + field.repeated(2000)},
        {"large body", head + "Content-Length: 1001\r\n\r\n" + QByteArray(1001, 'x')},
        {"large body, unannounced", head + "\r\n" + QByteArray(MiB, 'x')},
    };
    for (const auto& row : rows) {
        RawServer server([&](Peer& peer) {
            if (row.bodySize > 0)
                peer.drain(MiB);
            else
                peer.receiveRequest();
            peer.send(row.answer);
            if (row.reset)
                peer.reset();
        });
        CurlHttpClient client(1000);
        const QString text = failureOf(client, postTo(server, QByteArray(row.bodySize, 'x')));
        EXPECT_TRUE(isNetworkFailure(text)) << row.name << ": " << text.toStdString();
    }
}

TEST(CurlHttpClientTest, ReachesNobodyItShouldNot) {
    CurlHttpClient client;
    for (const char* url : {"http://127.0.0.1:1/", "https://quorvane.invalid/",
                            "http://photoslibrary.googleapis.com/", "file:///etc/passwd"}) {
        HttpRequest request = requestTo(QUrl(QString::fromUtf8(url)));
        request.timeout = std::chrono::seconds(5);
        const QString text = failureOf(client, request);
        EXPECT_TRUE(isNetworkFailure(text)) << url << ": " << text.toStdString();
    }
    RawServer server(answerEveryRequest);
    HttpRequest smuggling = requestTo(server.url());
    smuggling.headers = {{"Authorization", "Bearer a\r\nX-Evil: 1"}};
    EXPECT_THROW(client.send(smuggling, {}), TransportError);
    EXPECT_EQ(server.connections(), 0);
}

TEST(CurlHttpClientTest, DoesNotFollowRedirects) {
    RawServer elsewhere(answerEveryRequest);
    RawServer server([&](Peer& peer) {
        peer.receiveRequest();
        peer.send("HTTP/1.1 302 Found\r\nLocation: " + elsewhere.url().toEncoded() +
                  "\r\nContent-Length: 0\r\n\r\n");
        EXPECT_EQ(peer.receiveRequest(), QByteArray());
    });
    HttpRequest request = requestTo(server.url());
    request.headers = {{"Authorization", "Bearer t"}};
    CurlHttpClient client;
    EXPECT_EQ(client.send(request, {}).status, 302);
    EXPECT_EQ(server.connections(), 1);
    EXPECT_EQ(elsewhere.connections(), 0);
}

TEST(CurlHttpClientTest, RefusesABodyFileThatCannotBeReadWhole) {
    const TemporaryFolder folder;
    RawServer server(answerEveryRequest);
    HttpRequest request = requestTo(server.url());
    request.method = "POST";
    CurlHttpClient client;
    for (const auto& path : {folder / "absent.jpg", folder.path()}) {
        request.bodyFile = path;
        EXPECT_THROW(client.send(request, {}), FileError) << path;
    }
    request.bodyFile = folder.write("shrinking.mov", QByteArray(16 * MiB, 'x'));
    request.onProgress = [&](std::int64_t, std::int64_t) {
        std::filesystem::resize_file(*request.bodyFile, 100);
    };
    EXPECT_THROW(client.send(request, {}), FileError);
}

struct SelfSigned {
    SelfSigned() {
        ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
        X509_gmtime_adj(X509_getm_notBefore(certificate), -60);
        X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
        X509_set_pubkey(certificate, key);
        X509_NAME* name = X509_get_subject_name(certificate);
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>("localhost"), -1, -1, 0);
        X509_set_issuer_name(certificate, name);
        X509_sign(certificate, key, nullptr);
    }
    ~SelfSigned() {
        X509_free(certificate);
        EVP_PKEY_free(key);
    }
    SelfSigned(const SelfSigned&) = delete;
    SelfSigned& operator=(const SelfSigned&) = delete;

    EVP_PKEY* key = EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519");
    X509* certificate = X509_new();
};

TEST(CurlHttpClientTest, RefusesACertificateNobodySigned) {
    const SelfSigned identity;
    httplib::SSLServer server(identity.certificate, identity.key);
    ASSERT_TRUE(server.is_valid());
    std::atomic<int> served = 0;
    server.Get("/", [&](const httplib::Request&, httplib::Response&) { ++served; });
    const int port = server.bind_to_any_port("127.0.0.1");
    const std::jthread listener([&] { server.listen_after_bind(); });

    CurlHttpClient client;
    const QString text =
        failureOf(client, requestTo(QUrl(QStringLiteral("https://localhost:%1/").arg(port))));
    server.stop();
    EXPECT_TRUE(isNetworkFailure(text)) << text.toStdString();
    EXPECT_TRUE(text.contains(u"self-signed")) << text.toStdString();
    EXPECT_EQ(served, 0);
}

} // namespace
} // namespace quorvane::test

#include "EmulatorWorld.h"

#include "support/TemporaryFolder.h"

#include <future>
#include <thread>

namespace quorvane::test {

namespace {

using namespace std::chrono_literals;

using GoogleEmulatorTest = EmulatorWorld;

TEST_F(GoogleEmulatorTest, recordsTheConversationAsItWasOnTheWire) {
    client->set_keep_alive(true);
    httplib::Headers headers = bearer();
    headers.emplace("x-UPPER-lower", "  değer ");
    const auto listed = client->Get("/v1/albums?pageSize=50&pageToken=", headers);
    upload(jpeg);
    client->Get("/v1/nothing%20here");

    const std::vector<RecordedRequest> requests = emulator->requests();
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_EQ(requests[0].method, "GET");
    EXPECT_EQ(requests[0].path, "/v1/albums");
    EXPECT_EQ(requests[0].query, "pageSize=50&pageToken=");
    EXPECT_EQ(requests[0].header("X-Upper-Lower"), "değer");
    EXPECT_TRUE(std::ranges::find(requests[0].headers, QByteArray("x-UPPER-lower"),
                                  &std::pair<QByteArray, QByteArray>::first) !=
                requests[0].headers.end());
    EXPECT_EQ(requests[0].answer.toStdString(), listed->body);
    EXPECT_EQ(requests[1].header("content-length"), QByteArray::number(jpeg.size()));
    EXPECT_EQ(requests[2].kind, RequestKind::other);
    EXPECT_EQ(requests[2].path, "/v1/nothing%20here");
    EXPECT_EQ(requests[2].status, 404);
    EXPECT_EQ(requests[0].connection, requests[2].connection) << "kept alive";
}

TEST_F(GoogleEmulatorTest, forgetsTheOldestRequestsBeyondItsLimit) {
    begin({.recordedBytes = 20'000, .keptUploadBytes = 4});
    for (int i = 0; i < 100; ++i)
        client->Get("/v1/albums", bearer());
    upload(jpeg);
    EXPECT_EQ(emulator->requestCount(RequestKind::albumsList), 100);
    const auto requests = emulator->requests();
    EXPECT_LT(requests.size(), 50U);
    ASSERT_FALSE(requests.empty());
    EXPECT_EQ(requests.back().body, jpeg.first(4));

    begin({.recordedBytes = 0});
    upload(jpeg);
    EXPECT_TRUE(emulator->requests().empty());
    EXPECT_EQ(emulator->requestCount(RequestKind::upload), 1);
}

TEST_F(GoogleEmulatorTest, startsAndStopsPromptlyWhateverIsGoingOn) {
    EXPECT_LT(timeOf([&] { begin(); }), 1s);
    emulator->addDisturbance({.kind = RequestKind::upload, .stall = true});
    emulator->change([](Behaviour& behaviour) { behaviour.latency = 1h; });
    const int port = emulator->port();
    const auto headers = uploadHeaders();
    std::promise<void> stopped;
    std::vector<std::jthread> requests;
    const auto failsToGet = [port](const char* path) {
        httplib::Client own("127.0.0.1", port);
        EXPECT_FALSE(own.Get(path));
    };
    requests.emplace_back(failsToGet, "/v1/albums");
    requests.emplace_back([port, &headers] {
        httplib::Client own("127.0.0.1", port);
        EXPECT_FALSE(
            own.Post("/v1/uploads", headers, jpeg.toStdString(), "application/octet-stream"));
    });
    requests.emplace_back([port, &headers, &stopped] { // a body that does not come to its end
        httplib::Client own("127.0.0.1", port);
        EXPECT_FALSE(own.Post(
            "/v1/uploads", headers, 1'000'000,
            [&](size_t offset, size_t, httplib::DataSink& sink) {
                if (offset == 0)
                    return sink.write("x", 1);
                stopped.get_future().wait();
                return false;
            },
            "application/octet-stream"));
    });
    EXPECT_TRUE(emulator->waitForRequests(RequestKind::upload, 2));
    EXPECT_TRUE(emulator->waitForRequests(RequestKind::albumsList, 1));
    EXPECT_LT(timeOf([&] { emulator->stop(); }), 1s);
    stopped.set_value();
}

TEST_F(GoogleEmulatorTest, anotherProcessTakesUpTheStateFile) {
    const TemporaryFolder folder;
    const EmulatorOptions options{.stateFile = folder / "state.json"};
    begin(options);
    const QString album = emulator->addAlbum(u"Aile"_s, 5);
    const QString unused = uploadToken(movie, "video/quicktime");
    ASSERT_EQ(statusOf(create({uploadToken(jpeg)}, album)), 200);
    const QString early = token;
    const QJsonObject before = emulator->report();

    begin(options);
    token = early;
    EXPECT_EQ(emulator->report()[u"mediaItems"_s], before[u"mediaItems"_s]);
    EXPECT_EQ(emulator->report()[u"albums"_s], before[u"albums"_s]);
    EXPECT_EQ(statusOf(create({unused, uploadToken(jpeg)}, album)), 200);
    EXPECT_EQ(emulator->mediaItems().size(), 2U);
    EXPECT_EQ(emulator->albums().at(0).itemCount, 7);

    folder.write("state.json", "{\"tokens\":");
    EXPECT_THROW(GoogleEmulator(options, clock), Error);
}

TEST_F(GoogleEmulatorTest, storesWhatItAcceptedAndNothingElse) {
    const TemporaryFolder folder;
    begin({.storeFolder = folder.path()});
    httplib::Headers headers = uploadHeaders();
    headers.emplace("X-Goog-Upload-File-Name", "a%2F%C3%87i%C3%A7ek%201.jpg");
    ASSERT_EQ(statusOf(client->Post("/v1/uploads", headers, jpeg.toStdString(),
                                    "application/octet-stream")),
              200);
    emulator->addDisturbance({.kind = RequestKind::upload, .status = 500});
    upload(movie);
    emulator->addDisturbance({.kind = RequestKind::upload, .dropRequestAfter = 3});
    upload(movie);

    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        files.push_back(entry.path());
    ASSERT_EQ(files.size(), 1U);
    EXPECT_TRUE(pathText(files[0]).endsWith(u"-a_Çiçek 1.jpg"_s));
    EXPECT_EQ(readFile(files[0]), jpeg);
}

TEST_F(GoogleEmulatorTest, servesManyConnectionsAtOnce) {
    constexpr int clients = 32;
    emulator->addDisturbance({.kind = RequestKind::albumsList, .times = clients - 1, .delay = 1h});
    std::vector<std::jthread> waiting;
    for (int i = 1; i < clients; ++i)
        waiting.emplace_back([this] {
            httplib::Client own("127.0.0.1", emulator->port());
            own.Get("/v1/albums", bearer());
        });
    ASSERT_TRUE(emulator->waitForRequests(RequestKind::albumsList, clients - 1));
    EXPECT_EQ(statusOf(client->Get("/v1/albums", bearer())), 200);
    emulator->stop();
}

} // namespace

} // namespace quorvane::test

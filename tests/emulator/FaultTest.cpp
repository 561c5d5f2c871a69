#include "EmulatorWorld.h"

#include "foundation/Crypto.h"

namespace quorvane::test {

namespace {

struct FaultTest : EmulatorWorld {
    int listStatus() { return statusOf(client->Get("/v1/albums", bearer())); }
};

TEST_F(FaultTest, hitsTheRequestsItIsMeantFor) {
    emulator->addDisturbance(
        {.kind = RequestKind::albumsList, .nth = 2, .times = 2, .status = 503});
    emulator->addDisturbance(
        {.kind = RequestKind::albumsList, .nth = 3, .times = 0, .status = 429});
    EXPECT_EQ(statusOf(upload(jpeg)), 200);
    std::vector<int> statuses;
    for (int i = 0; i < 5; ++i)
        statuses.push_back(listStatus());
    EXPECT_EQ(statuses, (std::vector{200, 503, 503, 429, 429}));
    emulator->clearDisturbances();
    EXPECT_EQ(listStatus(), 200);
}

TEST_F(FaultTest, answersAnotherBodyWithOrWithoutTheEffect) {
    const QString uploaded = uploadToken(jpeg);
    const QByteArray deep(100'000, '[');
    emulator->addDisturbance({.kind = RequestKind::batchCreate, .body = deep});
    const auto refused = create({uploaded});
    EXPECT_EQ(statusOf(refused), 200);
    EXPECT_EQ(refused->body, deep.toStdString());
    EXPECT_TRUE(emulator->mediaItems().empty());

    emulator->addDisturbance({.kind = RequestKind::batchCreate,
                              .status = 502,
                              .body = "<html>",
                              .contentType = "text/html",
                              .carriedOut = true});
    EXPECT_EQ(statusOf(create({uploaded})), 502);
    EXPECT_EQ(emulator->mediaItems().size(), 1U);
}

TEST_F(FaultTest, dropsAnUploadInTheMiddleOfItsBody) {
    const QByteArray large = jpeg + QByteArray(8 * 1024 * 1024, 'x');
    emulator->addDisturbance({.kind = RequestKind::upload, .dropRequestAfter = 1'000'000});
    EXPECT_LT(timeOf([&] { EXPECT_FALSE(upload(large)); }), std::chrono::seconds(2));
    const RecordedRequest request = emulator->requests().at(0);
    EXPECT_EQ(request.bodySize, 1'000'000);
    EXPECT_EQ(request.bodySha256, Sha256::digest(large.first(1'000'000)).toHex());
    EXPECT_EQ(request.status, 0);
    EXPECT_EQ(statusOf(upload(large)), 200);
}

TEST_F(FaultTest, cutsAnAnswerAfterTheRequestTookEffect) {
    emulator->addDisturbance({.kind = RequestKind::batchCreate, .dropAnswerAfter = 40});
    const QString uploaded = uploadToken(jpeg);
    QByteArray received;
    httplib::Request request;
    request.method = "POST";
    request.path = "/v1/mediaItems:batchCreate";
    request.headers = bearer();
    request.set_header("Content-Type", "application/json");
    request.body = QJsonDocument(batch({uploaded})).toJson().toStdString();
    request.content_receiver = [&](const char* bytes, size_t size, uint64_t, uint64_t) {
        received.append(bytes, static_cast<qsizetype>(size));
        return true;
    };
    EXPECT_FALSE(client->send(request));
    EXPECT_EQ(emulator->mediaItems().size(), 1U);
    EXPECT_EQ(received, emulator->requests(RequestKind::batchCreate).at(0).answer.first(40));
}

TEST_F(FaultTest, anAccountHasItsLimits) {
    const QString uploaded = uploadToken(jpeg);
    emulator->change([](Behaviour& behaviour) { behaviour.storageBytes = jpeg.size() - 1; });
    EXPECT_EQ(json(create({uploaded}))[u"error"_s][u"message"_s].toString(),
              u"The remaining storage in the user's account is not enough to perform this "
              "operation."_s);
    emulator->change([](Behaviour& behaviour) { behaviour.storageBytes = jpeg.size(); });
    const QString album = emulator->addAlbum(u"Aile"_s, 3);
    EXPECT_EQ(json(client->Get("/v1/albums/" + album.toStdString(), bearer()))[u"title"_s],
              u"Aile"_s);
    emulator->deleteAlbum(album);
    EXPECT_EQ(statusOf(create({uploaded}, album)), 400);
    EXPECT_EQ(statusOf(create({uploaded})), 200);

    emulator->change([](Behaviour& behaviour) { behaviour.dailyRequests = 2; });
    const auto statuses = [&] { return std::vector{listStatus(), listStatus(), listStatus()}; };
    EXPECT_EQ(statuses(), (std::vector{200, 200, 429}));
    clock.advance(std::chrono::hours(24));
    token = emulator->issueTokens().accessToken;
    EXPECT_EQ(statuses(), (std::vector{200, 200, 429}));
    emulator->change([](Behaviour& behaviour) { behaviour.failingPercent = 100; });
    EXPECT_GE(listStatus(), 429);
}

TEST_F(FaultTest, takesItsTime) {
    emulator->change([](Behaviour& behaviour) {
        behaviour.latencyOf[RequestKind::albumsList] = std::chrono::milliseconds(30);
        behaviour.uploadBytesPerSecond = 2'000'000;
    });
    emulator->addDisturbance(
        {.kind = RequestKind::albumsList, .delay = std::chrono::milliseconds(40)});
    EXPECT_GE(timeOf([&] { listStatus(); }), std::chrono::milliseconds(70));
    EXPECT_GE(timeOf([&] { upload(jpeg + QByteArray(200'000, 'x')); }),
              std::chrono::milliseconds(100));
}

} // namespace

} // namespace quorvane::test

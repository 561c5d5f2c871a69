#include "EmulatorWorld.h"

namespace quorvane::test {

namespace {

using MediaItemsTest = EmulatorWorld;

QJsonArray resultsOf(const httplib::Result& result) {
    return json(result)[u"newMediaItemResults"_s].toArray();
}

TEST_F(MediaItemsTest, answersEachItemInTheOrderOfTheRequest) {
    const QString good = uploadToken(jpeg);
    const QStringList tokens{good,
                             uploadToken(movie, "video/quicktime"),
                             good,
                             u"unknown"_s,
                             uploadToken("text"),
                             uploadToken(movie, "image/heic"),
                             uploadToken("text", "application/octet-stream")};
    const auto result = create(tokens);
    EXPECT_EQ(statusOf(result), 207);
    const QJsonArray results = resultsOf(result);
    ASSERT_EQ(results.size(), tokens.size());
    for (int i = 0; i < results.size(); ++i) {
        EXPECT_EQ(results[i][u"uploadToken"_s].toString(), tokens[i]);
        EXPECT_EQ(results[i][u"status"_s][u"code"_s].toInt(), i < 2 ? 0 : 3) << i;
        EXPECT_EQ(results[i].toObject().contains(u"mediaItem"_s), i < 2) << i;
    }
    EXPECT_EQ(results[0][u"mediaItem"_s][u"mimeType"_s].toString(), u"image/jpeg"_s);
    EXPECT_EQ(results[1][u"mediaItem"_s][u"mimeType"_s].toString(), u"video/quicktime"_s);
    EXPECT_TRUE(results[1][u"mediaItem"_s][u"mediaMetadata"_s].toObject().contains(u"video"_s));
    EXPECT_TRUE(results[4][u"status"_s][u"message"_s].toString().startsWith(u"NOT_IMAGE"_s));
    EXPECT_EQ(emulator->mediaItems().size(), 2U);
}

TEST_F(MediaItemsTest, anUploadTokenIsGoodForADay) {
    const QString early = uploadToken(jpeg);
    clock.advance(std::chrono::hours(24));
    token = emulator->issueTokens().accessToken;
    EXPECT_EQ(statusOf(create({early})), 207);
    EXPECT_EQ(statusOf(create({uploadToken(jpeg)})), 200);
}

TEST_F(MediaItemsTest, aFullAlbumTakesOnlyWhatItHolds) {
    emulator->change([](Behaviour& behaviour) { behaviour.albumCapacity = 3; });
    const QString album = emulator->addAlbum(u"Aile"_s, 2);
    ASSERT_EQ(statusOf(create({uploadToken(jpeg)}, album)), 200);

    const QString held = uploadToken(movie, "video/quicktime");
    const auto result = create({uploadToken(jpeg), held}, album);
    EXPECT_EQ(statusOf(result), 207);
    EXPECT_TRUE(resultsOf(result)[0].toObject().contains(u"mediaItem"_s)) << "already in it";
    const QJsonObject status = resultsOf(result)[1][u"status"_s].toObject();
    EXPECT_EQ(status[u"code"_s].toInt(), 8);
    const QString message = status[u"message"_s].toString();
    EXPECT_TRUE(message.contains(u"maximum number of photos in an album"_s));
    EXPECT_TRUE(message.contains(u"ERR_PHOTO_PER_ALBUM_LIMIT"_s));

    const QString next = emulator->addAlbum(u"Aile - Parça 2"_s);
    EXPECT_EQ(statusOf(create({held}, next)), 200) << "the token was not used up";
    EXPECT_EQ(emulator->mediaItems().at(1).albumIds, QStringList{next});
    EXPECT_EQ(emulator->albums().at(0).itemCount, 3);
}

TEST_F(MediaItemsTest, tellsInOrderWhichItemsItHas) {
    ASSERT_EQ(statusOf(create({uploadToken(jpeg), uploadToken(movie, "video/quicktime")})), 200);
    const QString deleted = emulator->mediaItems().at(0).id;
    const QString kept = emulator->mediaItems().at(1).id;
    emulator->deleteMediaItem(deleted);
    const auto ask = [&](const QStringList& ids) {
        const QString query = (QStringList(QString()) + ids).join(u"&mediaItemIds="_s);
        return client->Get((u"/v1/mediaItems:batchGet?"_s + query.mid(1)).toStdString(), bearer());
    };
    const QJsonArray results = json(ask({deleted, kept}))[u"mediaItemResults"_s].toArray();
    ASSERT_EQ(results.size(), 2);
    EXPECT_EQ(results[0][u"status"_s][u"code"_s].toInt(), 5);
    EXPECT_EQ(results[1][u"mediaItem"_s][u"id"_s].toString(), kept);
    QStringList many;
    for (int i = 0; i < 51; ++i)
        many.append(QString::number(i));
    for (const QStringList& ids : {QStringList(), many, QStringList{kept, kept}})
        EXPECT_EQ(statusOf(ask(ids)), 400) << ids.size();
    token = emulator->issueTokens(u"https://www.googleapis.com/auth/photoslibrary.appendonly"_s)
                .accessToken;
    EXPECT_EQ(statusOf(ask({kept})), 403);
}

TEST_F(MediaItemsTest, refusesAWholeRequestThatIsWrong) {
    const QString good = uploadToken(jpeg);
    const QJsonObject item = batch({good})[u"newMediaItems"_s][0].toObject();
    const QJsonObject lowerCase{
        {u"simpleMediaItem"_s, QJsonObject{{u"uploadToken"_s, good}, {u"filename"_s, u"a"_s}}}};
    const std::vector<std::pair<const char*, QJsonObject>> rows{
        {"no items", batch({})},
        {"51 items", batch(QStringList(51, good))},
        {"unknown album", batch({good}, u"nowhere"_s)},
        {"unknown name", {{u"items"_s, QJsonArray{item}}}},
        {"unknown name inside", {{u"newMediaItems"_s, QJsonArray{lowerCase}}}},
        {"no token", batch({QString()})},
        {"a wrong type", {{u"newMediaItems"_s, item}}},
    };
    for (const auto& [what, body] : rows) {
        const auto result = post("/v1/mediaItems:batchCreate", body);
        EXPECT_EQ(statusOf(result), 400) << what;
        EXPECT_EQ(json(result)[u"error"_s][u"status"_s].toString(), u"INVALID_ARGUMENT"_s) << what;
    }
    EXPECT_EQ(
        statusOf(client->Post("/v1/mediaItems:batchCreate", bearer(), "{", "application/json")),
        400);
    EXPECT_TRUE(emulator->mediaItems().empty());
    EXPECT_EQ(statusOf(create({good})), 200) << "a refused request uses up nothing";
}

} // namespace

} // namespace quorvane::test

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

#include "EmulatorWorld.h"

namespace quorvane::test {

namespace {

using AlbumsTest = EmulatorWorld;

TEST_F(AlbumsTest, listsWhatTheAppMadeOrMaySeeOrShares) {
    EXPECT_EQ(statusOf(client->Get("/v1/sharedAlbums", bearer())), 403) << "as for everybody";
    emulator->change([](Behaviour& behaviour) { behaviour.sharedListingForbidden = false; });
    emulator->addAlbum(u"Aile"_s, 10);
    emulator->addAlbum(u"ortak"_s, 7, true);
    emulator->addAlbum(u"yabancı"_s, 8, false, false);
    for (const auto& [path, titles] : {std::pair<const char*, QStringList>{
                                           "/v1/albums?excludeNonAppCreatedData=true", {u"Aile"_s}},
                                       {"/v1/albums", {u"Aile"_s, u"yabancı"_s}},
                                       {"/v1/sharedAlbums", {u"ortak"_s}}}) {
        QStringList listed;
        const QJsonObject answer = json(client->Get(path, bearer()));
        for (const QJsonValue& albums : answer)
            for (const QJsonValue& album : albums.toArray())
                listed.append(album[u"title"_s].toString());
        EXPECT_EQ(listed, titles) << path;
    }
}

TEST_F(AlbumsTest, refusesWhatGoogleRefuses) {
    const QJsonObject untitled{{u"album"_s, QJsonObject{}}};
    const QJsonObject unknown{{u"title"_s, u"Aile"_s}};
    const QJsonObject tooLong{{u"album"_s, QJsonObject{{u"title"_s, QString(501, u'a')}}}};
    for (const QJsonObject& body : {untitled, unknown, tooLong})
        EXPECT_EQ(statusOf(post("/v1/albums", body)), 400);
    for (const char* query : {"pageSize=0", "pageSize=51", "pageSize=x", "pageToken=%%%", "page=2",
                              "excludeNonAppCreatedData=1"})
        EXPECT_EQ(statusOf(client->Get(std::string("/v1/albums?") + query, bearer())), 400)
            << query;
    EXPECT_EQ(statusOf(client->Get("/v1/albums")), 401);
    EXPECT_TRUE(emulator->albums().empty());

    emulator->change([](Behaviour& behaviour) { behaviour.listingForbidden = true; });
    const auto forbidden = client->Get("/v1/albums", bearer());
    EXPECT_EQ(statusOf(forbidden), 403);
    EXPECT_EQ(json(forbidden)[u"error"_s][u"status"_s].toString(), u"PERMISSION_DENIED"_s);
}

} // namespace

} // namespace quorvane::test

#include "EmulatorWorld.h"

namespace quorvane::test {

namespace {

using AlbumsTest = EmulatorWorld;

QStringList titles(const httplib::Result& result, const QString& key) {
    QStringList list;
    for (const QJsonValue& album : json(result)[key].toArray())
        list.append(album[u"title"_s].toString());
    return list;
}

TEST_F(AlbumsTest, listsOwnAndSharedAlbumsPageByPage) {
    for (int i = 1; i <= 5; ++i)
        emulator->addAlbum(QString::number(i), i * 10);
    emulator->addAlbum(u"ortak"_s, 7, true);
    emulator->addAlbum(u"yabancı"_s, 8, false, false);

    QStringList seen;
    std::string next;
    int pages = 0;
    do {
        const auto page = client->Get("/v1/albums?pageSize=2&excludeNonAppCreatedData=true" +
                                          (next.empty() ? "" : "&pageToken=" + next),
                                      bearer());
        ASSERT_EQ(statusOf(page), 200);
        seen += titles(page, u"albums"_s);
        next = json(page)[u"nextPageToken"_s].toString().toStdString();
        ++pages;
    } while (!next.empty() && pages < 10);
    EXPECT_EQ(pages, 3);
    EXPECT_EQ(seen, (QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s}));

    EXPECT_EQ(titles(client->Get("/v1/sharedAlbums", bearer()), u"sharedAlbums"_s),
              QStringList{u"ortak"_s});
    const auto all = client->Get("/v1/albums", bearer());
    EXPECT_EQ(titles(all, u"albums"_s).last(), u"yabancı"_s);
    EXPECT_EQ(json(all)[u"albums"_s][0][u"mediaItemsCount"_s].toString(), u"10"_s);
}

TEST_F(AlbumsTest, createsAnAlbumThatIsThenListed) {
    const QJsonObject body{{u"album"_s, QJsonObject{{u"title"_s, u"Aile - Parça 2"_s}}}};
    const auto created = post("/v1/albums", body);
    ASSERT_EQ(statusOf(created), 200);
    EXPECT_EQ(json(created)[u"title"_s].toString(), u"Aile - Parça 2"_s);
    const QString id = json(created)[u"id"_s].toString();
    ASSERT_EQ(statusOf(create({uploadToken(jpeg)}, id)), 200);
    const QJsonValue listed = json(client->Get("/v1/albums", bearer()))[u"albums"_s][0];
    EXPECT_EQ(listed[u"id"_s].toString(), id);
    EXPECT_EQ(listed[u"mediaItemsCount"_s].toString(), u"1"_s);
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
    const auto forbidden = client->Get("/v1/sharedAlbums", bearer());
    EXPECT_EQ(statusOf(forbidden), 403);
    EXPECT_EQ(json(forbidden)[u"error"_s][u"status"_s].toString(), u"PERMISSION_DENIED"_s);
}

} // namespace

} // namespace quorvane::test

#include "google/GoogleAlbumManager.h"

#include "google/ScriptedHttp.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <QUrlQuery>

#include <gtest/gtest.h>

#include <map>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;

GoogleAlbum album(const char* id, const char* title, const char* count = "1") {
    return {QString::fromUtf8(id), QString::fromUtf8(title), {}, QString::fromUtf8(count)};
}

struct Albums : testing::Test {
    test::TemporaryFolder folder;
    test::ScriptedHttp http;
    test::FixedToken tokens;
    Preferences preferences{folder / "preferences.json"};
    test::RecordingLog log;
    GoogleLibraryApi api{http, tokens, test::loopbackEndpoints()};
    GoogleAlbumManager manager{api, preferences, log};

    /// Answers by "path" or "path?pageToken"; anything else is an empty page.
    std::map<QString, HttpResponse> pages;

    Albums() {
        http.answer = [this](const HttpRequest& request, const std::stop_token&) {
            const QString page =
                QUrlQuery(request.url).queryItemValue(u"pageToken"_s, QUrl::FullyDecoded);
            const auto found =
                pages.find(page.isEmpty() ? request.url.path() : request.url.path() + u'?' + page);
            return found == pages.end() ? HttpResponse{200, "{}"} : found->second;
        };
    }

    void remember(const std::vector<GoogleAlbum>& albums) {
        QByteArray json;
        for (const GoogleAlbum& each : albums)
            json += (json.isEmpty() ? "" : ",") + QJsonDocument(each.toJson()).toJson();
        preferences.setData(preferenceKeys::localCreatedAlbums, "[" + json + "]");
    }
};

} // namespace

TEST_F(Albums, ListingMergesMemoryAndEveryPageInStableOrder) {
    remember({album("r1", "Eski", "5"), album("r2", "Kalan")});
    pages[u"/v1/albums"_s] = {200, R"({"albums": [{"id":"a1","title":"A","mediaItemsCount":"1"},
                            {"title":"no id"}, {"id":3}, {"id":""}, 7, {"id":"a2","title":5}],
                 "nextPageToken": "p+/= 2"})"};
    pages[u"/v1/albums?p+/= 2"_s] = {
        200, R"({"albums": [{"id":"r1","title":"Yeni","mediaItemsCount":"6"}]})"};
    pages[u"/v1/sharedAlbums"_s] = {
        200, R"({"sharedAlbums": [{"id":"a1","title":"A","mediaItemsCount":"1"},
                                  {"id":"s1","title":"S","mediaItemsCount":"1"}]})"};
    const std::vector<GoogleAlbum> expected{album("r1", "Yeni", "6"), album("r2", "Kalan"),
                                            album("a1", "A"), GoogleAlbum{u"a2"_s, {}, {}, {}},
                                            album("s1", "S")};
    EXPECT_EQ(manager.listAlbums({}), expected);
    EXPECT_EQ(manager.getLocalCreatedAlbums(), expected);
    EXPECT_FALSE(manager.hasInsufficientScopes());
    EXPECT_EQ(log.messages(), QStringList{u"[GoogleAlbumManager] Toplam 5 Google Photos albümü "
                                          "yüklendi (scopeIssue: false)"_s});
    const auto requests = http.requests();
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_EQ(requests[1].url.toEncoded(),
              "http://127.0.0.1:9/v1/albums?pageSize=50&excludeNonAppCreatedData=true"
              "&pageToken=p%2B%2F%3D%202");
}

TEST_F(Albums, AFailingEndpointShortensTheListAndIsLogged) {
    const QByteArray listing = R"([{"id":"s1","title":"S","mediaItemsCount":"1"}])";
    const auto expectShortened = [&](int status, const QByteArray& body, const QString& line) {
        for (const QString& failing : {u"/v1/albums"_s, u"/v1/sharedAlbums"_s}) {
            remember({album("r1", "Eski")});
            pages[u"/v1/albums"_s] = {200, "{\"albums\":" + listing + '}'};
            pages[u"/v1/sharedAlbums"_s] = {200, "{\"sharedAlbums\":" + listing + '}'};
            pages[failing] = {status, body};
            EXPECT_EQ(manager.listAlbums({}), (std::vector{album("r1", "Eski"), album("s1", "S")}));
            EXPECT_TRUE(log.contains(u"[GoogleAlbumManager] ⚠️ Endpoint http://127.0.0.1:9"_s +
                                     failing + line))
                << line.toStdString();
            EXPECT_EQ(manager.hasInsufficientScopes(), status == 403);
            EXPECT_EQ(manager.lacksReadPermission(), status == 403 && failing == u"/v1/albums" &&
                                                         !body.contains("SERVICE_DISABLED"));
        }
    };
    for (const int status : test::refusals)
        expectShortened(status, "why?",
                        u" HTTP %1%2: why?"_s.arg(status).arg(
                            status == 403 ? u" (excludeNonAppCreatedData: true)"_s : QString()));
    expectShortened(403, R"({"error":{"details":[{"reason":"SERVICE_DISABLED"}]}})",
                    u" HTTP 403 (excludeNonAppCreatedData: true): {\"error\""_s);
    for (const QByteArray& body : {QByteArray(), QByteArray("<html>"), QByteArray("[1]"),
                                   QByteArray("{\"a\":").repeated(5000)})
        expectShortened(200, body, u": [Album] Geçersiz API yanıtı"_s);
    EXPECT_TRUE(
        log.contains(u"[GoogleAlbumManager] ⚠️ Google Photos albüm okuma kapsamı (scope) "
                     "yetersiz. Kullanıcının oturumu yenilemesi gerekebilir."_s));
}

TEST_F(Albums, ABrokenNetworkLeavesTheMemoryAndAStopEndsTheListing) {
    remember({album("r1", "Eski")});
    http.answer = [](const HttpRequest&, const std::stop_token&) -> HttpResponse {
        throw TransportError(u"koptu"_s);
    };
    EXPECT_EQ(manager.listAlbums({}), std::vector{album("r1", "Eski")});
    EXPECT_TRUE(
        log.contains(u"[GoogleAlbumManager] Ağ hatası (http://127.0.0.1:9/v1/albums): koptu"_s));
    http.answer = [](const HttpRequest&, const std::stop_token&) -> HttpResponse {
        throw Cancelled();
    };
    EXPECT_THROW(manager.listAlbums({}), Cancelled);
    tokens.failure = u"OAuth: kullanici giris yapmamis"_s;
    EXPECT_THROW(manager.listAlbums({}), Error);
}

TEST_F(Albums, AnAlbumMadeDuringAListingIsNotForgotten) {
    http.answer = [this](const HttpRequest& request, const std::stop_token&) {
        if (request.method == "POST")
            return HttpResponse{200, R"({"id":"n1","title":"Yeni","mediaItemsCount":"1"})"};
        if (request.url.path() == u"/v1/albums")
            manager.createAlbum(u"Yeni"_s, {});
        return HttpResponse{200, "{}"};
    };
    EXPECT_EQ(manager.listAlbums({}), std::vector{album("n1", "Yeni")});
}

TEST_F(Albums, TheNextPartFollowsTheTargetsTitle) {
    for (const auto& [title, next] :
         {std::pair{"Aile", "Aile - Parça 2"},
          {"Aile - Parça 2", "Aile - Parça 3"},
          {"Yedek - Parça 9", "Yedek - Parça 10"},
          {"Parça 3", "Parça 3 - Parça 2"},
          {"A- Parça 3", "A- Parça 3 - Parça 2"},
          {"A - Parça 1 - Parça 2", "A - Parça 1 - Parça 3"},
          {"A - Parça 3 ", "A - Parça 3  - Parça 2"},
          {"", " - Parça 2"},
          {"A - Parça 99999999999999999999", "A - Parça 99999999999999999999 - Parça 2"}})
        EXPECT_EQ(GoogleAlbumManager::nextPartTitle(QString::fromUtf8(title)),
                  QString::fromUtf8(next));

    pages[u"/v1/albums"_s] = {200, R"({"id":"n1"})"};
    manager.createAndSelectNextPartAlbum({});
    EXPECT_EQ(manager.createAndSelectNextPartAlbum({}).title, u"Yedek - Parça 3"_s);
}

} // namespace quorvane

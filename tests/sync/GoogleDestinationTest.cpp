#include "sync/GoogleDestination.h"

#include "emulator/GoogleEmulator.h"
#include "google/CurlHttpClient.h"
#include "google/ScriptedHttp.h"
#include "support/Failures.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;
using emulator::Behaviour;
using emulator::RequestKind;
using Outcome = NewItemResult::Outcome;

/// Over real HTTP, against a service that refuses what Google refuses.
struct Destinations : testing::Test {
    test::TemporaryFolder folder;
    GoogleEmulator google;
    CurlHttpClient http;
    test::FixedToken tokens;
    test::RecordingLog log;
    Preferences preferences{folder / "preferences.json"};
    std::optional<GoogleLibraryApi> api;
    std::optional<GoogleAlbumManager> albums;
    std::optional<GoogleDestination> destination;

    Destinations() {
        google.start();
        const auto endpoints = GoogleEndpoints::resolve(google.baseURL());
        tokens.token = google.issueTokens().accessToken;
        api.emplace(http, tokens, endpoints);
        albums.emplace(*api, preferences, log);
        destination.emplace(*api, *albums);
    }

    /// Sends one picture of its own, as the sync engine would.
    NewItemResult send(const QString& name, const QString& caption = {}) {
        const auto file = folder.write(pathFrom(name), "\x89PNG\r\n\x1a\n" + name.toUtf8());
        UploadMemory none;
        return destination
            ->create({{destination->upload({file, name}, none, {}, {}), name, caption}}, {})
            .at(0);
    }

    /// Answers every request of the kind so from now on.
    void answer(RequestKind kind, int status, const QByteArray& body) {
        google.clearDisturbances();
        google.addDisturbance({.kind = kind, .times = 0, .status = status, .body = body});
    }
};

/// One text for each result; a reason that is not the item's own stands before it.
QStringList textsOf(const std::vector<NewItemResult>& results) {
    QStringList texts;
    for (const NewItemResult& result : results) {
        if (result.outcome == Outcome::refused)
            texts.append(result.reason == result.detail ? result.reason
                                                        : result.reason + result.detail);
        else
            texts.append(result.outcome == Outcome::created         ? result.remoteID
                         : result.outcome == Outcome::alreadyExists ? u"exists"_s
                                                                    : u"held"_s);
    }
    return texts;
}

} // namespace

TEST_F(Destinations, AnItemsResultIsReadAsWhatBecameOfIt) {
    const QString saved = u"; yerel medya güvenlik için saklandı."_s;
    const QString noID = u"Google yaniti mediaItem.id icermedi"_s + saved;
    const QString unanswered = u"Google yanıtı bu medya için sonuç içermedi"_s + saved;
    const std::vector<std::pair<QByteArray, QStringList>> rows{
        {R"({"mediaItem":{"id":"m"}})", {u"m"_s}},
        {R"({"status":{"code":0},"mediaItem":{"id":"m"}})", {u"m"_s}},
        {R"({"status":{"message":"bad","code":3},"mediaItem":{"id":"m"}})",
         {uR"({"code":3,"message":"bad"})"_s}},
        {R"({"status":{"code":6,"message":"ALREADY_EXISTS"}})", {u"exists"_s}},
        {R"({"status":{"message":"?"},"mediaItem":{"id":""}})", {noID + uR"({"message":"?"})"_s}},
        {R"({"status":"x","mediaItem":[]})", {noID + u"status.code = 0"_s}},
        {R"(null)", {unanswered}},
        {R"("m")", {unanswered}},
        {R"()", {unanswered}},
        {R"({"status":{"code":8,"message":"maximum number of photos in an album"},"mediaItem":{"id":"m"}})",
         {u"held"_s}},
        {R"({"status":{"message":"ERR_PHOTO_PER_ALBUM_LIMIT"}})", {u"held"_s}},
        // two items: paired by the tokens that are named, by place where there is none
        {R"({"mediaItem":{"id":"a"}},{"mediaItem":{"id":"b"}},{"mediaItem":{"id":"c"}})",
         {u"a"_s, u"b"_s}},
        {R"({"mediaItem":{"id":"a"}})", {u"a"_s, unanswered}},
        {R"({"uploadToken":"t1","mediaItem":{"id":"b"}},{"uploadToken":"t0","mediaItem":{"id":"a"}})",
         {u"a"_s, u"b"_s}},
        {R"({"uploadToken":"t1","mediaItem":{"id":"b"}})", {unanswered, u"b"_s}},
        {R"({"uploadToken":"?","mediaItem":{"id":"a"}},{"mediaItem":{"id":"b"}})",
         {u"a"_s, u"b"_s}},
        {R"({"uploadToken":"t0","mediaItem":{"id":"a"}},{"uploadToken":"t0","mediaItem":{"id":"b"}})",
         {u"a"_s, unanswered}},
    };
    for (const auto& [results, texts] : rows) {
        answer(RequestKind::batchCreate, 207, "{\"newMediaItemResults\":[" + results + "]}");
        std::vector<NewItem> items{{u"t0"_s, u"0.jpg"_s}};
        if (texts.size() == 2)
            items.push_back({u"t1"_s, {}});
        EXPECT_EQ(textsOf(destination->create(items, {})), texts) << results.constData();
    }
    answer(RequestKind::batchCreate, 200,
           R"({"newMediaItemResults":[{"mediaItem":{"id":"m","mediaMetadata":)"
           R"({"creationTime":"1970-01-01T00:01:00Z"}}}]})");
    EXPECT_EQ(destination->create({{u"t0"_s, u"0.jpg"_s}, {u"t1"_s, {}}}, {}).at(0).filedUnder,
              Date(std::chrono::minutes(1)));
    EXPECT_EQ(google.requests(RequestKind::batchCreate).back().body,
              R"({"newMediaItems":[{"simpleMediaItem":{"fileName":"0.jpg","uploadToken":"t0"}},)"
              R"({"simpleMediaItem":{"uploadToken":"t1"}}]})");
}

TEST_F(Destinations, AnAnswerThatIsNoneFailsTheWholeRequest) {
    const auto expectFailures = [&](int status, const QByteArray& body, const QString& text) {
        answer(RequestKind::batchCreate, status, body);
        EXPECT_EQ(test::messageOf([&] {
                      destination->create({{u"t"_s, {}}}, {});
                  }),
                  text)
            << status;
        answer(RequestKind::batchGet, status, body);
        EXPECT_EQ(test::messageOf([&] {
                      destination->existing({u"a"_s, u"b"_s}, {});
                  }),
                  text)
            << status;
    };
    for (const int status : {201, 302, 401, 404, 408, 413, 429, 500, 503})
        expectFailures(status, "{}", u"[Batch] HTTP %1"_s.arg(status));
    // only "not found" is gone: what else stays open must not be taken for it
    for (const QByteArray& body : std::initializer_list<QByteArray>{
             "", "<html>", "{}", "[]", R"({"newMediaItemResults":{}})",
             R"({"newMediaItemResults":[)",
             "{\"newMediaItemResults\":" + QByteArray("[").repeated(100'000),
             R"({"mediaItemResults":[{"mediaItem":{"id":"a"}}]})",
             R"({"mediaItemResults":[{"mediaItem":{"id":"a"}},{"mediaItem":{"id":"a"}}]})",
             R"({"mediaItemResults":[{"mediaItem":{"id":"a"}},{"mediaItem":{"id":"x"}}]})",
             R"({"mediaItemResults":[{"mediaItem":{"id":"a"}},{"status":{"code":13}}]})",
             R"({"mediaItemResults":[{"mediaItem":{"id":"a"}},null]})"})
        expectFailures(200, body, u"[Batch] Gecersiz yanit"_s);
    tokens.failure = u"OAuth: kullanici giris yapmamis"_s;
    expectFailures(200, "{}", *tokens.failure);
}

TEST_F(Destinations, ItemsGoToTheTargetAlbumUntilItIsFullAndThenToItsNextPart) {
    google.change([](Behaviour& behaviour) { behaviour.albumCapacity = 1; });
    albums->createAlbum(u"Aile"_s, {});
    EXPECT_EQ(send(u"a.png"_s).outcome, Outcome::created);
    const QString name = u"Çiçek 100% 📷 \";\"\r\nX: y.png"_s;
    EXPECT_EQ(send(name).outcome, Outcome::heldBack);
    emulator::Disturbance lost{.kind = emulator::RequestKind::albumsCreate};
    lost.dropAnswerAfter = 0;
    google.addDisturbance(lost);
    EXPECT_THROW(destination->makeNextAlbum({}), TransportError);
    destination->makeNextAlbum({});
    EXPECT_EQ(google.albums().size(), 2U) << "found, not made again";
    const QString remoteID = send(name).remoteID;
    const emulator::StoredMediaItem item = google.mediaItems().at(1);
    EXPECT_EQ(item.id, remoteID);
    EXPECT_EQ(item.filename, name);
    EXPECT_EQ(google.albums().at(1).title, u"Aile - Parça 2"_s);
    EXPECT_EQ(item.albumIds, QStringList{google.albums().at(1).id});
    google.change([](Behaviour& behaviour) { behaviour.duplicatesRefused = true; });
    EXPECT_EQ(send(name).outcome, Outcome::alreadyExists);
}

TEST_F(Destinations, TellsWhichItemsAreStillThere) {
    const QString kept = send(u"kept.png"_s).remoteID;
    const QString deleted = send(u"deleted.png"_s).remoteID;
    google.deleteMediaItem(deleted);
    const QStringList ids{deleted, kept, u"never/made &+ü"_s, kept};
    EXPECT_EQ(destination->existing(ids, {}), std::set{kept});
    EXPECT_EQ(destination->existing({}, {}), std::set<QString>());
    google.change([](Behaviour& behaviour) { behaviour.listingForbidden = true; });
    EXPECT_EQ(destination->existing(ids, {}), std::nullopt);
}

TEST_F(Destinations, ACaptionBecomesTheDescriptionAsFarAsItFits) {
    const QString face = u"\U0001F468\u200D\U0001F467"_s; // one character to its reader
    const std::pair<QString, QString> cases[] = {
        {{}, {}},
        {u"Düğün"_s, u"Düğün"_s},
        {QString(1001, u'ş'), QString(1000, u'ş')},
        {QString(997, u'a') + face, QString(997, u'a')},
    };
    for (const auto& [caption, description] : cases) {
        send(QString::number(caption.size()) + u".png"_s, caption);
        EXPECT_EQ(google.mediaItems().back().description, description);
    }
}

} // namespace quorvane

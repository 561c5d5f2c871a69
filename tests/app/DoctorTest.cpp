#include "CliWorld.h"

#include "app/Diagnosis.h"
#include "app/RunLock.h"

#include <QJsonArray>

namespace quorvane::test {

namespace {

/// A home where all is well but for the keyring, which no test has.
struct DoctorTest : CliWorld {
    void SetUp() override {
        sample::writeSampleLibrary(library);
        ASSERT_EQ(signIn().code, 0);
    }

    /// The identifiers of what is not fine.
    QStringList faults() const {
        const Outcome outcome = run({u"doctor"_s, u"--library"_s, pathText(library), u"--json"_s});
        QStringList ids;
        const auto answer = QJsonDocument::fromJson(outcome.out.toUtf8()).object();
        for (const QJsonValue& check : answer[u"checks"_s].toArray())
            if (check[u"fine"_s].isBool() && !check[u"fine"_s].toBool()) {
                ids += check[u"id"_s].toString();
                EXPECT_FALSE(check[u"advice"_s].toString().isEmpty()) << ids.last().toStdString();
            }
        EXPECT_EQ(outcome.code, 4) << outcome.err.toStdString();
        EXPECT_EQ(answer[u"checks"_s].toArray().size(), 13);
        return ids;
    }
    void answerOnce(RequestKind kind, int status, const QByteArray& body) {
        emulator.addDisturbance({.kind = kind, .status = status, .body = body});
    }
};

} // namespace

TEST_F(DoctorTest, namesTheFaultOfEachBrokenWorld) {
    const QString scope = u"https://www.googleapis.com/auth/photoslibrary."_s;
    const auto signInWith = [this](const std::function<void(Behaviour&)>& change) {
        return [this, change] {
            emulator.change([](Behaviour& behaviour) { behaviour = {}; });
            emulator.change(change);
            EXPECT_EQ(signIn().code, 0);
        };
    };
    std::unique_ptr<RunLock> lock;
    const std::vector<std::pair<QString, std::function<void()>>> worlds{
        {{}, [] {}},
        {u"clientKind"_s, [&] { environment.insert(u"GOOGLE_REDIRECT"_s, u"lopback"_s); }},
        {u"api"_s,
         [&] {
             environment.remove(u"GOOGLE_REDIRECT"_s);
             answerOnce(RequestKind::albumsList, 403,
                        R"({"error":{"details":[{"reason":"SERVICE_DISABLED"}]}})");
         }},
        {u"quota"_s, [&] { answerOnce(RequestKind::albumsList, 429, "{}"); }},
        {u"session"_s,
         [&] { answerOnce(RequestKind::token, 400, R"({"error":"invalid_grant"})"); }},
        {u"session"_s,
         [&] { answerOnce(RequestKind::token, 401, R"({"error":"invalid_client"})"); }},
        {u"permissions"_s, signInWith([&](Behaviour& b) {
             b.declinedScopes = scope + u"readonly "_s + scope + u"readonly.appcreateddata"_s;
         })},
        {u"sessionEnd"_s,
         signInWith([](Behaviour& b) { b.sessionLifetime = std::chrono::hours(20); })},
        {u"clock"_s, signInWith([](Behaviour& b) { b.clockAhead = std::chrono::minutes(-7); })},
        {u"runLock"_s,
         [&] {
             emulator.change([](Behaviour& behaviour) { behaviour = {}; });
             lock = std::make_unique<RunLock>(folders.runLock());
         }},
        {u"library"_s,
         [&] {
             lock.reset();
             std::filesystem::rename(library, folder / "elsewhere");
         }},
        {u"session"_s,
         [&] {
             std::filesystem::rename(folder / "elsewhere", library);
             emulator.stop();
         }},
    };
    for (const auto& [fault, breakIt] : worlds) {
        breakIt();
        QStringList expected{u"keyring"_s, fault};
        if (fault.isEmpty())
            expected.removeLast();
        QStringList found = faults();
        found.sort();
        expected.sort();
        EXPECT_EQ(found, expected) << fault.toStdString();
    }
}

TEST_F(DoctorTest, changesNothing) {
    const auto snapshot = [this] {
        std::map<std::filesystem::path, QByteArray> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folders.home))
            if (entry.is_regular_file() && entry.path().filename() != "quorvane.log")
                files[entry.path()] = readFile(entry.path());
        return files;
    };
    const auto before = snapshot();
    const Outcome outcome = run({u"doctor"_s, u"--library"_s, pathText(library)});
    EXPECT_TRUE(outcome.out.contains(u"✓ Oturum: açık, Google kabul ediyor\n"))
        << outcome.out.toStdString();
    EXPECT_TRUE(outcome.out.contains(u"! Anahtarlık: ")) << outcome.out.toStdString();
    EXPECT_EQ(snapshot(), before);
}

TEST(DiagnosisTest, judgesWhatAWorldCannotBeMadeFor) {
    using State = Finding::State;
    ClientFacts client;
    client.id = u"1-a.apps.googleusercontent.com"_s;
    client.isConfigured = true;
    EXPECT_EQ(clientFinding(client).state, State::fine);
    client.id = u"my@client"_s;
    EXPECT_EQ(clientFinding(client).state, State::faulty);
    client.isConfigured = false;
    EXPECT_TRUE(clientFinding(client).advice.contains(u"GOOGLE_CLIENT_ID"));
    client.redirect = u"loopback"_s;
    EXPECT_TRUE(clientKindFinding(client).advice.contains(u"GOOGLE_CLIENT_SECRET"));

    for (const auto& [freeBytes, isFine] :
         {std::pair{2'000, false}, {2'001, true}, {0, false}, {1'000'000, true}}) {
        const StagingFacts staging{freeBytes, 10'000, 1'000};
        EXPECT_EQ(stagingFinding(staging).state == State::fine, isFine) << freeBytes;
    }
    EXPECT_EQ(storageFinding(u"quota"_s).state, State::faulty);
    EXPECT_EQ(keyringFinding({.hasTokens = true, .isKept = true}).state, State::fine);
}

} // namespace quorvane::test

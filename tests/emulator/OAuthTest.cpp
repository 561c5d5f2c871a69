#include "EmulatorWorld.h"

#include <QUrlQuery>

namespace quorvane::test {

namespace {

/// A client with the verifier and challenge of RFC 7636, appendix B.
struct OAuthTest : EmulatorWorld {
    using Items = std::map<QString, QString>;

    const QString clientID = u"123.apps.example.com"_s;
    QString redirectURI = u"com.example.apps.123:/oauth2redirect"_s;
    const QString verifier = u"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"_s;
    const QString challenge = u"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"_s;

    static std::string encoded(const Items& items) {
        QStringList pairs;
        for (const auto& [name, value] : items)
            if (!value.isEmpty())
                pairs.append(name + u'=' + QString::fromLatin1(QUrl::toPercentEncoding(value)));
        return pairs.join(u'&').toStdString();
    }
    static Items changed(Items items, const QString& name, const QString& value) {
        items[name] = value;
        return items;
    }

    Items authorization() const {
        return {{u"client_id"_s, clientID},       {u"redirect_uri"_s, redirectURI},
                {u"response_type"_s, u"code"_s},  {u"scope"_s, textOf()},
                {u"code_challenge"_s, challenge}, {u"code_challenge_method"_s, u"S256"_s},
                {u"state"_s, u"a~b c"_s},         {u"access_type"_s, u"offline"_s},
                {u"prompt"_s, u"consent"_s}};
    }
    static QString textOf() {
        return u"https://www.googleapis.com/auth/photoslibrary.appendonly "
               "https://www.googleapis.com/auth/userinfo.email"_s;
    }
    httplib::Result authorize(const Items& items) {
        return client->Get("/o/oauth2/v2/auth?" + encoded(items));
    }
    /// The query items of the redirection.
    QUrlQuery callback() {
        const auto result = authorize(authorization());
        const QString location =
            result ? QString::fromStdString(result->get_header_value("Location")) : QString();
        EXPECT_TRUE(location.startsWith(redirectURI + u'?')) << location.toStdString();
        return QUrlQuery(location.section(u'?', 1));
    }
    Items exchange(const QString& code) const {
        return {{u"client_id"_s, clientID},
                {u"redirect_uri"_s, redirectURI},
                {u"grant_type"_s, u"authorization_code"_s},
                {u"code"_s, code},
                {u"code_verifier"_s, verifier}};
    }
    QString code() { return callback().queryItemValue(u"code"_s, QUrl::FullyDecoded); }

    httplib::Result ask(const Items& items) {
        return client->Post("/token", encoded(items), "application/x-www-form-urlencoded");
    }
    int userInfoStatus(const QString& accessToken) {
        return statusOf(client->Get("/oauth2/v2/userinfo",
                                    {{"Authorization", "Bearer " + accessToken.toStdString()}}));
    }
};

TEST_F(OAuthTest, signsInRefreshesAndRevokes) {
    const QUrlQuery items = callback();
    EXPECT_EQ(items.queryItemValue(u"state"_s, QUrl::FullyDecoded), u"a~b c"_s);

    const auto first = ask(exchange(items.queryItemValue(u"code"_s, QUrl::FullyDecoded)));
    ASSERT_EQ(statusOf(first), 200);
    const QString refreshToken = json(first)[u"refresh_token"_s].toString();
    const Items refresh{{u"client_id"_s, clientID},
                        {u"grant_type"_s, u"refresh_token"_s},
                        {u"refresh_token"_s, refreshToken}};
    const auto second = ask(refresh);
    ASSERT_EQ(statusOf(second), 200);
    EXPECT_FALSE(json(second).contains(u"refresh_token"_s));

    const QString accessToken = json(second)[u"access_token"_s].toString();
    EXPECT_EQ(userInfoStatus(accessToken), 200);
    EXPECT_EQ(statusOf(client->Post("/revoke", encoded({{u"token"_s, accessToken}}),
                                    "application/x-www-form-urlencoded")),
              200);
    EXPECT_EQ(userInfoStatus(accessToken), 401);
    EXPECT_EQ(userInfoStatus(json(first)[u"access_token"_s].toString()), 401);
    EXPECT_EQ(statusOf(ask(refresh)), 400);
    EXPECT_EQ(json(ask(refresh))[u"error"_s].toString(), u"invalid_grant"_s);
}

TEST_F(OAuthTest, refusesAWrongAuthorizationRequest) {
    const std::vector<std::pair<QString, QString>> rows{
        {u"client_id"_s, {}},
        {u"redirect_uri"_s, {}},
        {u"redirect_uri"_s, u"com.example.apps.124:/oauth2redirect"_s},
        {u"response_type"_s, u"token"_s},
        {u"scope"_s, {}},
        {u"scope"_s, u"photoslibrary.appendonly"_s},
        {u"code_challenge"_s, {}},
        {u"code_challenge"_s, challenge + u'='},
        {u"code_challenge_method"_s, u"plain"_s},
    };
    for (const auto& [name, value] : rows) {
        const auto result = authorize(changed(authorization(), name, value));
        EXPECT_EQ(statusOf(result), 400) << name.toStdString() << "=" << value.toStdString();
        EXPECT_FALSE(result->has_header("Location"));
    }
}

TEST_F(OAuthTest, refusesAWrongExchange) {
    const std::vector<std::tuple<QString, QString, QString>> rows{
        {u"client_id"_s, {}, u"invalid_request"_s},
        {u"client_id"_s, u"124.apps.example.com"_s, u"unauthorized_client"_s},
        {u"redirect_uri"_s, u"com.example.apps.123:/other"_s, u"redirect_uri_mismatch"_s},
        {u"grant_type"_s, {}, u"invalid_request"_s},
        {u"grant_type"_s, u"password"_s, u"unsupported_grant_type"_s},
        {u"code"_s, u"4/0Aunknown"_s, u"invalid_grant"_s},
        {u"code_verifier"_s, {}, u"invalid_request"_s},
        {u"code_verifier"_s, QString(64, u'a'), u"invalid_grant"_s},
    };
    for (const auto& [name, value, error] : rows) {
        const auto result = ask(changed(exchange(code()), name, value));
        EXPECT_EQ(statusOf(result), error == u"unauthorized_client"_s ? 401 : 400);
        EXPECT_EQ(json(result)[u"error"_s].toString(), error) << name.toStdString();
    }
    EXPECT_EQ(statusOf(client->Post("/token", encoded(exchange(code())), "application/json")), 400);
}

TEST_F(OAuthTest, takesABodyInChunks) {
    const std::string body = encoded(exchange(code()));
    const auto inPieces = [&](size_t offset, httplib::DataSink& sink) {
        if (offset < body.size())
            sink.write(body.data() + offset, std::min<size_t>(50, body.size() - offset));
        else
            sink.done();
        return true;
    };
    EXPECT_EQ(statusOf(client->Post("/token", httplib::ContentProviderWithoutLength(inPieces),
                                    "application/x-www-form-urlencoded")),
              200);
}

TEST_F(OAuthTest, aCodeIsGoodOnceAndForTenMinutes) {
    const QString once = code();
    EXPECT_EQ(statusOf(ask(exchange(once))), 200);
    EXPECT_EQ(json(ask(exchange(once)))[u"error"_s].toString(), u"invalid_grant"_s);
    const QString late = code();
    clock.advance(std::chrono::minutes(10));
    EXPECT_EQ(json(ask(exchange(late)))[u"error"_s].toString(), u"invalid_grant"_s);
}

TEST_F(OAuthTest, asksForTheClientSecretWhenThereIsOne) {
    emulator->change([](Behaviour& behaviour) { behaviour.clientSecret = u"s+/&"_s; });
    EXPECT_EQ(statusOf(authorize(authorization())), 400) << "a desktop client has no scheme";
    redirectURI = u"http://127.0.0.1:4711/back"_s;
    EXPECT_EQ(json(ask(exchange(code())))[u"error"_s].toString(), u"invalid_client"_s);
    EXPECT_EQ(statusOf(ask(changed(exchange(code()), u"client_secret"_s, u"s+/&"_s))), 200);
}

TEST_F(OAuthTest, accessTokensExpireAndCarryTheirScopes) {
    EXPECT_EQ(userInfoStatus(token), 200);
    clock.advance(std::chrono::seconds(3599));
    EXPECT_EQ(userInfoStatus(token), 401);
    emulator->change([](Behaviour& b) { b.tokenLifetime = std::chrono::seconds(-5); });
    EXPECT_EQ(userInfoStatus(emulator->issueTokens().accessToken), 401);
    const auto result = ask(exchange(code()));
    EXPECT_EQ(json(result)[u"expires_in"_s].toInt(), -5);

    emulator->change([](Behaviour& b) { b.tokenLifetime = std::chrono::hours(1); });
    token = emulator->issueTokens(u"https://www.googleapis.com/auth/userinfo.email"_s).accessToken;
    EXPECT_EQ(userInfoStatus(token), 200);
    for (const auto& refused :
         {upload(jpeg), create({u"x"_s}), client->Get("/v1/albums", bearer())})
        EXPECT_EQ(statusOf(refused), 403);
}

} // namespace

} // namespace quorvane::test

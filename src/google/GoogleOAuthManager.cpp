#include "google/GoogleOAuthManager.h"

#include "foundation/MainThread.h"
#include "google/GoogleFaults.h"
#include "google/OAuthError.h"
#include "google/OAuthMessages.h"
#include "google/Pkce.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace quorvane {

namespace {

constexpr double refreshMarginSeconds = 60;

QString yesNo(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

/// The stored decimal text as seconds since 1970; text with white space around it is no number.
std::optional<double> parseExpiry(const QString& text) {
    bool valid = false;
    const double seconds = text.toDouble(&valid);
    return valid && text == text.trimmed() ? std::optional(seconds) : std::nullopt;
}

} // namespace

GoogleOAuthManager::GoogleOAuthManager(const Collaborators& collaborators) : with_(collaborators) {}

SignInOutcome GoogleOAuthManager::signIn(const std::stop_token& stop,
                                         const std::function<void(const QUrl&)>& showAddress) {
    const PkcePair pkce = makePKCEPair();
    const QString clientID = with_.client.googleClientID();
    QString redirectURI;
    WebAuthRequest request;
    request.schemeURI = oauth::redirectURI(clientID);
    request.prefersLoopback = with_.client.redirectsToLoopback();
    request.state = randomString(16);
    request.isAddressShown = showAddress != nullptr;
    request.page = [&](const QString& uri) {
        redirectURI = uri;
        QUrl url = oauth::authorizationURL(with_.endpoints.authorization, clientID, uri,
                                           pkce.challenge, request.state);
        if (showAddress)
            showAddress(url);
        return url;
    };
    with_.log.log(QStringLiteral("[OAuth] 🔑 signIn() başlatıldı..."));
    const QUrl callback = runAuthSession(request, stop);
    with_.log.log(QStringLiteral("[OAuth] 🔑 Callback URL alındı, kod ayrıştırılıyor..."));
    // The state is sent but not compared: the code is worthless without this run's verifier.
    const QString code = extractAuthCode(callback);
    with_.log.log(QStringLiteral("[OAuth] 🔑 Kod ayrıştırıldı, token takası yapılıyor..."));
    const SignInOutcome outcome = exchangeCode(code, pkce.verifier, redirectURI, stop);
    with_.log.log(QStringLiteral("[OAuth] 🎉 Giriş başarıyla tamamlandı!"));
    return outcome;
}

QUrl GoogleOAuthManager::runAuthSession(const WebAuthRequest& request,
                                        const std::stop_token& stop) {
    bool shown = false;
    const auto started = [&](bool succeeded) {
        shown = succeeded;
        with_.log.log(QStringLiteral("[OAuth] 🌐 ASWebAuthSession.start() çağrıldı (isMain: %1): %2")
                          .arg(yesNo(isMainThread()), yesNo(succeeded)));
    };
    const auto logCallback = [&] {
        with_.log.log(QStringLiteral("[OAuth] 📩 ASWebAuth callback tetiklendi (isMain: %1)")
                          .arg(yesNo(isMainThread())));
    };
    const auto logFailure = [&](const QString& reason) {
        if (!shown)
            return;
        logCallback();
        with_.log.log(QStringLiteral("[OAuth] ❌ ASWebAuthSession hatası: ") + reason);
    };
    QUrl callback;
    try {
        callback = with_.webAuthSession.authenticate(request, started, stop);
    } catch (const Cancelled&) {
        logFailure(QStringLiteral("cancelled"));
        throw;
    } catch (const std::exception& error) {
        logFailure(describe(error));
        throw;
    }
    logCallback();
    if (callback.isEmpty()) {
        with_.log.log(QStringLiteral("[OAuth] ❌ Callback URL boş geldi!"));
        throw OAuthError(OAuthError::Case::missingCode);
    }
    with_.log.log(QStringLiteral("[OAuth] ✅ Callback URL başarıyla alındı: ") +
                  callback.toString(QUrl::FullyEncoded));
    return callback;
}

QString GoogleOAuthManager::extractAuthCode(const QUrl& callback) {
    if (const auto code = oauth::authCode(callback)) {
        with_.log.log(QStringLiteral("[OAuth] ✅ Auth code başarıyla alındı: ") + *code);
        return *code;
    }
    with_.log.log(QStringLiteral("[OAuth] ❌ URL içinde code bulunamadı: ") +
                  callback.toString(QUrl::FullyEncoded));
    throw OAuthError(OAuthError::Case::missingCode);
}

SignInOutcome GoogleOAuthManager::exchangeCode(const QString& code, const QString& verifier,
                                               const QString& redirectURI,
                                               const std::stop_token& stop) {
    const QString secret = with_.client.googleClientSecret().value_or(QString());
    oauth::FormFields fields = {{"client_id", with_.client.googleClientID()},
                                {"redirect_uri", redirectURI},
                                {"grant_type", QStringLiteral("authorization_code")},
                                {"code", code},
                                {"code_verifier", verifier}};
    if (!secret.isEmpty())
        fields.emplace_back("client_secret", secret);
    with_.log.log(QStringLiteral("[OAuth] 🚀 Token takas isteği gönderiliyor (redirect_uri: %1, "
                                 "hasSecret: %2)")
                      .arg(redirectURI, yesNo(!secret.isEmpty())));
    const HttpResponse response = postForm(with_.endpoints.token, oauth::formBody(fields), stop);
    if (response.status != 200) {
        const QString answer =
            QStringLiteral("HTTP %1: %2").arg(response.status).arg(oauth::loggable(response.body));
        with_.log.log(QStringLiteral("[OAuth] ❌ Token takası başarısız! ") + answer);
        throw OAuthError::tokenExchangeFailed(answer, tokenFaultIn(response));
    }
    const SignInOutcome outcome = outcomeOf(response.body);
    QString accessToken;
    {
        const auto refresh = refresh_.lock();
        refresh->thread.request_stop(); // a refresh of the authorisation that this one replaces
        forget({tokenKeys::email, tokenKeys::userID}); // whose tokens come is not known yet
        accessToken = saveTokens(response.body);
    }
    with_.log.log(QStringLiteral("[OAuth] ✅ Access token başarıyla alındı ve kaydedildi."));
    fetchAndSaveIdentity(accessToken, stop);
    return outcome;
}

/// The person ticks a box for each permission, and may leave some out.
SignInOutcome GoogleOAuthManager::outcomeOf(const QByteArray& answer) {
    const oauth::Grant grant = oauth::grantIn(answer);
    if (!grant.uploading) {
        with_.log.log(
            QStringLiteral("[OAuth] ❌ Yükleme izni (photoslibrary.appendonly) verilmedi"));
        throw Error(QStringLiteral(
            "OAuth: Yükleme izni verilmedi. Yeniden giriş yapın ve Google'ın izin sayfasında "
            "\"Google Fotoğraflar kitaplığınıza ekleme\" (Add to your Google Photos library, "
            "photoslibrary.appendonly) kutusunu işaretleyin"));
    }
    if (!grant.reading)
        with_.log.log(QStringLiteral("[OAuth] ⚠️ Okuma izni (photoslibrary.readonly."
                                     "appcreateddata) verilmedi, yükleme çalışır"));
    return {.mayListAlbums = grant.reading};
}

/// Under the lock of the refresh.
void GoogleOAuthManager::forget(const QStringList& keys) {
    for (const QString& key : keys)
        with_.tokens.deleteToken(key);
}

/// Under the lock of the refresh.
QString GoogleOAuthManager::saveTokens(const QByteArray& body) {
    const QJsonObject answer = QJsonDocument::fromJson(body).object();
    const QJsonValue accessToken = answer.value(u"access_token");
    if (!accessToken.isString()) {
        with_.log.log(QStringLiteral("[OAuth] ❌ Geçersiz token yanıtı: ") + oauth::loggable(body));
        throw OAuthError(OAuthError::Case::invalidResponse, foreignAnswer());
    }
    with_.tokens.writeToken(tokenKeys::accessToken, accessToken.toString());
    if (const QJsonValue refreshToken = answer.value(u"refresh_token"); refreshToken.isString()) {
        with_.tokens.writeToken(tokenKeys::refreshToken, refreshToken.toString());
        with_.log.log(QStringLiteral("[OAuth] 🔑 Refresh token kaydedildi."));
    } else {
        with_.log.log(
            QStringLiteral("[OAuth] ℹ️ Yanıtta refresh token yer almadı (mevcut varsa "
                           "korunuyor)."));
    }
    if (const QJsonValue lifetime = answer.value(u"expires_in"); lifetime.isDouble())
        with_.tokens.writeToken(
            tokenKeys::expiry, QString::number(unixSeconds(with_.clock.now()) + lifetime.toDouble(),
                                               'f', QLocale::FloatingPointShortest));
    return accessToken.toString();
}

void GoogleOAuthManager::fetchAndSaveIdentity(const QString& accessToken,
                                              const std::stop_token& stop) {
    HttpRequest request;
    request.url = with_.endpoints.userInfo;
    request.headers = {bearerHeader(accessToken)};
    try {
        const HttpResponse response = with_.http.send(request, stop);
        const QJsonObject person = QJsonDocument::fromJson(response.body).object();
        const QString userID = oauth::userID(person);
        if (response.status == 200 && !userID.isEmpty())
            with_.tokens.writeToken(tokenKeys::userID, userID);
        const QJsonValue email = person.value(u"email");
        if (response.status == 200 && email.isString()) {
            with_.tokens.writeToken(tokenKeys::email, email.toString());
            with_.log.log(QStringLiteral("[OAuth] 👤 Kullanıcı e-postası alındı: ") +
                          email.toString());
            return;
        }
    } catch (const Error&) {
        // Told below: the sign-in stands without the identity.
    } catch (const Cancelled&) {
        // The tokens are stored already; a stop now only costs the identity.
    }
    with_.log.log(QStringLiteral("[OAuth] ⚠️ E-posta bilgisi alınamadı"));
}

QString GoogleOAuthManager::validAccessToken(std::stop_token stop) {
    auto refresh = refresh_.lock();
    if (!refresh->task) {
        const auto accessToken = with_.tokens.readToken(tokenKeys::accessToken);
        const auto expiry = with_.tokens.readToken(tokenKeys::expiry);
        const auto expirySeconds = expiry ? parseExpiry(*expiry) : std::nullopt;
        if (accessToken && expirySeconds &&
            unixSeconds(with_.clock.now()) < *expirySeconds - refreshMarginSeconds)
            return *accessToken;
        if (!with_.tokens.readToken(tokenKeys::refreshToken)) {
            if (!accessToken)
                throw OAuthError(OAuthError::Case::notSignedIn);
            return *accessToken; // expired, or of unknown age: Google's 401 tells the caller
        }
        startRefresh(*refresh);
    }
    return refreshed(refresh, stop);
}

std::optional<QString> GoogleOAuthManager::renewedAccessToken(const QString& refused,
                                                              std::stop_token stop) {
    auto refresh = refresh_.lock();
    if (!refresh->task) {
        auto accessToken = with_.tokens.readToken(tokenKeys::accessToken);
        if (accessToken && *accessToken != refused)
            return accessToken; // another caller was refused it first
        if (!with_.tokens.readToken(tokenKeys::refreshToken))
            return std::nullopt;
        startRefresh(*refresh);
    }
    return refreshed(refresh, stop);
}

/// The token of the refresh in flight; waits for it without holding the lock.
QString GoogleOAuthManager::refreshed(Lock& refresh, const std::stop_token& stop) {
    const std::shared_ptr<RefreshTask> task = refresh->task;
    if (!refresh.wait(refreshFinished_, stop, [&] { return task->finished; }))
        throw Cancelled();
    if (!task->token)
        std::rethrow_exception(task->error);
    return *task->token;
}

/// The refresh has a thread of its own, so that a caller that stops does
/// not take it away from the others. Joining the previous thread here cannot wait: it takes the
/// lock for the last time when it clears the task.
void GoogleOAuthManager::startRefresh(Refresh& refresh) {
    const auto task = std::make_shared<RefreshTask>();
    refresh.thread =
        std::jthread([this, task](const std::stop_token& stop) { runRefresh(*task, stop); });
    refresh.task = task;
}

void GoogleOAuthManager::runRefresh(RefreshTask& task, const std::stop_token& stop) {
    std::optional<QString> token;
    std::exception_ptr error;
    try {
        token = refreshAccessToken(stop);
    } catch (const Cancelled&) {
        error = std::make_exception_ptr(OAuthError(OAuthError::Case::notSignedIn));
    } catch (...) {
        error = std::current_exception();
    }
    const auto refresh = refresh_.lock();
    if (!token && stop.stop_requested()) // overtaken: what that sign-in or sign-out left counts
        token = with_.tokens.readToken(tokenKeys::accessToken);
    task.token = token;
    task.error = error;
    task.finished = true;
    refresh->task.reset();
    refreshFinished_.notify_all();
}

QString GoogleOAuthManager::refreshAccessToken(const std::stop_token& stop) {
    const auto refreshToken = with_.tokens.readToken(tokenKeys::refreshToken);
    if (!refreshToken)
        throw OAuthError(OAuthError::Case::notSignedIn);
    oauth::FormFields fields = {{"client_id", with_.client.googleClientID()},
                                {"grant_type", QStringLiteral("refresh_token")},
                                {"refresh_token", *refreshToken}};
    if (const auto secret = with_.client.googleClientSecret(); secret && !secret->isEmpty())
        fields.emplace_back("client_secret", *secret);
    const HttpResponse response = postForm(with_.endpoints.token, oauth::formBody(fields), stop);
    const auto step = refresh_.lock();
    if (stop.stop_requested())
        throw Cancelled();
    if (response.status == 200)
        return saveTokens(response.body);
    with_.log.log(QStringLiteral("[OAuth] ❌ Token yenileme başarısız: ") +
                  oauth::loggable(response.body));
    throw OAuthError(OAuthError::Case::refreshFailed, tokenFaultIn(response));
}

HttpResponse GoogleOAuthManager::postForm(const QUrl& url, const QByteArray& form,
                                          const std::stop_token& stop) {
    HttpRequest request;
    request.method = "POST";
    request.url = url;
    request.headers = {{"Content-Type", "application/x-www-form-urlencoded"}};
    request.body = form;
    return with_.http.send(request, stop);
}

bool GoogleOAuthManager::isSignedIn() {
    return with_.tokens.readToken(tokenKeys::refreshToken) ||
           with_.tokens.readToken(tokenKeys::accessToken);
}

std::optional<QString> GoogleOAuthManager::email() {
    return with_.tokens.readToken(tokenKeys::email);
}

std::optional<QString> GoogleOAuthManager::userID() {
    return with_.tokens.readToken(tokenKeys::userID);
}

void GoogleOAuthManager::learnIdentity(const std::stop_token& stop) {
    if (isSignedIn() && !userID())
        fetchAndSaveIdentity(validAccessToken(stop), stop);
}

void GoogleOAuthManager::signOut(const std::stop_token& stop) {
    if (const auto accessToken = with_.tokens.readToken(tokenKeys::accessToken)) {
        try {
            postForm(with_.endpoints.revocation, "token=" + oauth::percentEncode(*accessToken),
                     stop);
        } catch (const Error&) {
            // Forgetting the tokens here does not depend on Google's consent.
        } catch (const Cancelled&) {
            // The same holds when the user does not want to wait for it.
        }
    }
    {
        const auto refresh = refresh_.lock();
        refresh->thread.request_stop(); // its answer must not bring a token back
        forget({tokenKeys::accessToken, tokenKeys::refreshToken, tokenKeys::expiry,
                tokenKeys::email, tokenKeys::userID});
    }
    with_.log.log(QStringLiteral("[OAuth] 🚪 Oturum kapatıldı ve tüm token'lar temizlendi."));
}

} // namespace quorvane

#include "app/SessionCheck.h"

#include "app/RunLock.h"
#include "foundation/File.h"
#include "google/GoogleFaults.h"
#include "google/OAuthMessages.h"

#include <QJsonDocument>

namespace quorvane {

namespace {

ClientFacts clientFacts(const GoogleServices& google) {
    return {.id = google.config.googleClientID(),
            .isConfigured = google.config.isClientConfigured(),
            .isLocalService = isLoopbackHost(google.endpoints.token.host()),
            .hasSecret = google.config.googleClientSecret().has_value(),
            .redirect = google.config.redirect()};
}

/// Notes the difference of the clocks in passing.
HttpResponse ask(GoogleServices& google, const HttpRequest& request, GoogleFacts& facts,
                 const std::stop_token& stop) {
    HttpResponse response = google.http.send(request, stop);
    if (response.date)
        facts.clockAhead = std::chrono::duration_cast<std::chrono::seconds>(
            std::chrono::system_clock::now() - *response.date);
    return response;
}

/// A token for the listing. The session's own stays as it is: what is refreshed here is not kept.
QString refresh(GoogleServices& google, const QString& refreshToken, GoogleFacts& facts,
                const std::stop_token& stop) {
    oauth::FormFields fields = {{"client_id", google.config.googleClientID()},
                                {"grant_type", QStringLiteral("refresh_token")},
                                {"refresh_token", refreshToken}};
    if (const auto secret = google.config.googleClientSecret())
        fields.emplace_back("client_secret", *secret);
    HttpRequest request;
    request.method = "POST";
    request.url = google.endpoints.token;
    request.headers = {{"Content-Type", "application/x-www-form-urlencoded"}};
    request.body = oauth::formBody(fields);
    const HttpResponse response = ask(google, request, facts, stop);
    facts.tokenStatus = response.status;
    const QJsonObject answer = QJsonDocument::fromJson(response.body).object();
    facts.tokenError = answer.value(u"error").toString();
    const oauth::Grant grant = oauth::grantIn(response.body);
    facts.maySend = grant.uploading;
    facts.mayList = grant.reading;
    if (const QJsonValue left = answer.value(u"refresh_token_expires_in"); left.isDouble())
        facts.sessionLeft = std::chrono::seconds(left.toInteger());
    return answer.value(u"access_token").toString();
}

void list(GoogleServices& google, const QString& accessToken, GoogleFacts& facts,
          const std::stop_token& stop) {
    HttpRequest request;
    request.url = google.endpoints.library(QStringLiteral("/v1/albums"));
    request.url.setQuery(QStringLiteral("pageSize=1&excludeNonAppCreatedData=true"));
    request.headers = {bearerHeader(accessToken)};
    const HttpResponse response = ask(google, request, facts, stop);
    facts.listStatus = response.status;
    const FaultCode fault = faultIn(response).code;
    facts.isApiDisabled = fault == FaultCode::serviceDisabled;
    facts.isQuotaSpent = fault == FaultCode::dailyQuota;
    facts.isRateLimited = fault == FaultCode::rateLimited;
}

GoogleFacts googleFacts(GoogleServices& google, const std::stop_token& stop) {
    GoogleFacts facts;
    const auto refreshToken = google.tokens.readToken(tokenKeys::refreshToken);
    facts.hasSession = refreshToken.has_value();
    try {
        if (!refreshToken) {
            HttpRequest forTheClock;
            forTheClock.url = google.endpoints.userInfo;
            ask(google, forTheClock, facts, stop);
            return facts;
        }
        const QString accessToken = refresh(google, *refreshToken, facts, stop);
        if (facts.tokenStatus == 200)
            list(google, accessToken, facts, stop);
    } catch (const TransportError& error) {
        facts.unreachable = error.localizedDescription();
    }
    return facts;
}

QuotaFacts quotaFacts(const GoogleServices& google, const Clock& clock) {
    const DailyRequests::Today today = google.requests.today();
    return {.used = today.used,
            .left = today.left,
            .untilNewDay =
                std::chrono::duration_cast<std::chrono::seconds>(today.turns - clock.now())};
}

/// Google does not say what room there is; that there was none stays true until a run got through.
std::optional<QString> storageRefusal(const RunStateFile& file) {
    const RunState last = file.last();
    if (!last.fault || last.fault->code != FaultCode::storageFull)
        return std::nullopt;
    return last.fault->reason;
}

KeyringFacts keyringFacts(GoogleServices& google) {
    return {.hasTokens = google.oauth.isSignedIn(),
            .isKept = google.keychain.read(tokenKeys::refreshToken).has_value()};
}

StagingFacts stagingFacts(CoreServices& core, SourceServices& source, const std::stop_token& stop) {
    StagingFacts facts;
    std::error_code unreachable;
    facts.freeBytes =
        static_cast<std::int64_t>(std::filesystem::space(core.folders.home, unreachable).available);
    std::map<QString, SyncStatus> known;
    for (const auto& [identifier, status] : source.state.db.fetchStatuses())
        known.insert_or_assign(identifier, status);
    const AssetFetchResult assets = source.library->fetchAssets(stop);
    for (const PhotoAsset& asset : *assets) {
        if (stop.stop_requested())
            throw Cancelled();
        const auto status = known.find(asset.localIdentifier);
        if (status != known.end() && status->second != SyncStatus::discovered)
            continue;
        const auto resource = resourceToStage(source.library->assetResources(asset));
        if (!resource || !resource->fileSize)
            continue;
        facts.pendingBytes += *resource->fileSize;
        facts.largestBytes = std::max(facts.largestBytes, *resource->fileSize);
    }
    return facts;
}

std::vector<Finding> libraryFindings(CoreServices& core, const AccountIdentity& account,
                                     const std::function<std::filesystem::path()>& library,
                                     const std::stop_token& stop) {
    try {
        const std::filesystem::path path = library();
        LibraryAt at(core, path);
        const auto place = core.states.find(at.identity(), account);
        SourceServices source(core, account, std::move(at), place, SourceServices::Use::look);
        requireReadable(*source.library, path);
        const StagingFacts staging = stagingFacts(core, source, stop);
        return {libraryFinding(pathText(path), {}), stagingFinding(staging)};
    } catch (const Error& error) {
        return {libraryFinding({}, error.localizedDescription()), stagingFinding({})};
    }
}

} // namespace

std::vector<Finding> checkSession(CoreServices& core, GoogleServices& services,
                                  const std::function<std::filesystem::path()>& library,
                                  const std::stop_token& stop) {
    const ClientFacts client = clientFacts(services);
    const GoogleFacts google = googleFacts(services, stop);
    std::vector<Finding> findings{clientFinding(client),
                                  clientKindFinding(client),
                                  sessionFinding(google),
                                  sessionEndFinding(google),
                                  permissionsFinding(google),
                                  apiFinding(google),
                                  quotaFinding(google, quotaFacts(services, core.clock)),
                                  storageFinding(storageRefusal(core.runState)),
                                  keyringFinding(keyringFacts(services)),
                                  clockFinding(google)};
    for (Finding& finding : libraryFindings(core, services.account(), library, stop))
        findings.push_back(std::move(finding));
    findings.push_back(lockFinding(otherRun(core.folders.runLock())));
    return findings;
}

} // namespace quorvane

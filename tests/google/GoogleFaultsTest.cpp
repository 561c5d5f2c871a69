#include "google/GoogleFaults.h"

#include "google/GoogleLibraryApi.h"
#include "google/ResponseReader.h"
#include "google/ScriptedHttp.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;
using enum FaultCode;

QByteArray apiError(const QByteArray& message, const QByteArray& detail = "") {
    return "{\"error\":{\"message\":\"" + message + "\",\"details\":[{" + detail + "}]}}";
}

const QByteArray quotaPrefix = "Quota exceeded for quota metric 'All requests' and limit ";

} // namespace

TEST(GoogleFaults, AreToldByStatusAndBody) {
    const QByteArray html = "<html>Sign in to the hotel's network, album, storage</html>";
    for (const auto& [status, body, intoAlbum, code] : {
             std::tuple{401, html, false, sessionEnded},
             {408, html, false, serviceBusy},
             {500, apiError("storage"), false, serviceBusy},
             {503, QByteArray(), false, serviceBusy},
             {302, html, true, serviceBusy},
             {403, html, false, serviceBusy},
             {404, QByteArray(), true, serviceBusy},
             {400, QByteArray("{}"), true, serviceBusy},
             {413, html, false, tooLarge},
             {429, html, false, rateLimited},
             {429, apiError(quotaPrefix + "'All requests per day' of"), false, dailyQuota},
             {429, apiError(quotaPrefix + "'Writes per minute per user'"), false, rateLimited},
             {429, apiError("", R"("metadata":{"quota_limit":"ApiCallsPerDay"})"), false,
              dailyQuota},
             {429, apiError("", R"("violations":[{"quotaId":"WritesPerMinutePerUser"}])"), true,
              rateLimited},
             {400, apiError("The remaining storage in the user's account is not enough"), true,
              storageFull},
             {400, apiError("Invalid album ID."), true, albumGone},
             {404, apiError("Requested entity was not found."), true, albumGone},
             {404, apiError("Requested entity was not found."), false, itemRefused},
             {400, apiError("ERR_PHOTO_PER_ALBUM_LIMIT"), true, albumFull},
             {400, apiError("Invalid value"), true, itemRefused},
             {400, QByteArray("Upload has already been terminated."), false, itemRefused},
             {403, apiError("", R"("reason":"ACCESS_TOKEN_SCOPE_INSUFFICIENT")"), false,
              permissionMissing},
             {403, apiError("Request had insufficient authentication scopes."), true,
              permissionMissing},
             {403, apiError("", R"("reason":"SERVICE_DISABLED")"), true, serviceDisabled},
             {403, apiError("The caller does not have permission"), true, accessDenied},
             {403, apiError("", R"("reason":"dailyLimitExceeded")"), true, dailyQuota},
         })
        EXPECT_EQ(rawValue(faultIn({status, body}, intoAlbum).code), rawValue(code))
            << status << body.constData();
    const Fault fault = faultIn({429, apiError("a\\u001b[1m\\nb."), {}, std::chrono::seconds(7)});
    EXPECT_EQ(fault.reason, u"a[1m b"_s);
    EXPECT_EQ(fault.retryAfter, std::chrono::seconds(7));
}

TEST(GoogleFaults, OfOneItemAndOfTheTokenEndpoint) {
    for (const auto& [rpcCode, message, code] : {
             std::tuple{3, u"Invalid upload token."_s, tokenRefused},
             {3, u"NOT_IMAGE: there was an error"_s, itemRefused},
             {8, u"maximum number of photos in an album"_s, albumFull},
             {8, u"The remaining storage in the user's account is not enough"_s, storageFull},
             {8, u"Quota exceeded: requests per day"_s, dailyQuota},
             {8, u""_s, rateLimited},
             {13, u"Internal error"_s, serviceBusy},
             {0, u""_s, itemRefused},
         })
        EXPECT_EQ(itemFaultIn({{u"code"_s, rpcCode}, {u"message"_s, message}}).code, code)
            << message.toStdString();
    for (const auto& [status, body, code] : {
             std::tuple{400, "{\"error\":\"invalid_grant\"}", sessionEnded},
             {401, "{\"error\":\"invalid_client\"}", accessDenied},
             {400, "<html>", serviceBusy},
             {503, "", serviceBusy},
             {429, "{}", rateLimited},
         })
        EXPECT_EQ(tokenFaultIn({status, body}).code, code) << body;
}

TEST(GoogleFaults, TheServiceSaysHowLongToWait) {
    for (const auto& [text, seconds] : {std::pair{"Retry-After: 120\r\n", 120},
                                        {"retry-after:Sun, 06 Nov 1994 08:50:00 GMT\r\n", 23},
                                        {"Retry-After: Sun, 06 Nov 1994 08:00:00 GMT\r\n", 0},
                                        {"Retry-After: -5\r\n", 0},
                                        {"Retry-After: soon\r\n", 0},
                                        {"Retry-After: 999999999\r\n", 86'400}}) {
        ResponseReader reader(0);
        reader.takeHeaderLine(text);
        reader.takeHeaderLine("Date: Sun, 06 Nov 1994 08:49:37 GMT\r\n");
        EXPECT_EQ(reader.finish(503).retryAfter, std::chrono::seconds(seconds)) << text;
    }
}

TEST(GoogleLibraryApi, RenewsARefusedTokenOnceAndRepeatsTheRequest) {
    test::ScriptedHttp http;
    test::FixedToken tokens;
    GoogleLibraryApi api(http, tokens, test::loopbackEndpoints());
    HttpRequest request;
    request.headers = {{"X", "y"}};
    const auto send = [&] { return api.send(request, {}).status; };
    http.answerAlways(401, "");
    EXPECT_EQ(send(), 401) << "nothing to renew it with";
    EXPECT_EQ(http.requests().size(), 1U);
    tokens.renewed = u"new"_s;
    EXPECT_EQ(send(), 401);
    ASSERT_EQ(http.requests().size(), 3U);
    const HttpRequest::Headers expected{{"Authorization", "Bearer new"}, {"X", "y"}};
    EXPECT_EQ(http.requests().back().headers, expected);
}

} // namespace quorvane

#include "EmulatorWorld.h"

#include "foundation/Crypto.h"

namespace quorvane::test {

namespace {

using UploadsTest = EmulatorWorld;

TEST_F(UploadsTest, answersAnOpaqueTokenAndSumsUpTheBytes) {
    const auto result = upload(jpeg);
    ASSERT_EQ(statusOf(result), 200);
    EXPECT_EQ(result->get_header_value("Content-Type"), "text/plain");
    EXPECT_GT(result->body.size(), 40U);

    const RecordedRequest request = emulator->requests().at(0);
    EXPECT_EQ(request.kind, RequestKind::upload);
    EXPECT_EQ(request.bodySize, jpeg.size());
    EXPECT_EQ(request.bodySha256, Sha256::digest(jpeg).toHex());
    EXPECT_EQ(request.body, QByteArray());
    EXPECT_EQ(request.answer.toStdString(), result->body);
}

TEST_F(UploadsTest, refusesWhatTheRawProtocolDoesNotAllow) {
    struct Row {
        const char* what;
        const char* header;
        const char* value; // empty: left out
        int status;
    };
    for (const Row& row : {Row{"another protocol", "X-Goog-Upload-Protocol", "resumable", 400},
                           Row{"no protocol", "X-Goog-Upload-Protocol", "", 400},
                           Row{"no type", "X-Goog-Upload-Content-Type", "", 400},
                           Row{"no media type", "X-Goog-Upload-Content-Type", "jpeg", 400},
                           Row{"no token", "Authorization", "", 401},
                           Row{"a wrong token", "Authorization", "Bearer x", 401}}) {
        httplib::Headers headers = uploadHeaders();
        headers.erase(row.header);
        if (*row.value)
            headers.emplace(row.header, row.value);
        const auto result =
            client->Post("/v1/uploads", headers, jpeg.toStdString(), "application/octet-stream");
        EXPECT_EQ(statusOf(result), row.status) << row.what;
        EXPECT_EQ(json(result)[u"error"_s][u"code"_s].toInt(), row.status) << row.what;
    }
    EXPECT_EQ(
        statusOf(client->Post("/v1/uploads", uploadHeaders(), jpeg.toStdString(), "image/jpeg")),
        400);
    EXPECT_EQ(statusOf(upload({})), 400);
}

} // namespace

} // namespace quorvane::test

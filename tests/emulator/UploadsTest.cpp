#include "EmulatorWorld.h"

namespace quorvane::test {

namespace {

using UploadsTest = EmulatorWorld;

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

#include "EmulatorWorld.h"

#include "foundation/Crypto.h"

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
    for (const Row& row :
         {Row{"resumable without a start", "X-Goog-Upload-Protocol", "resumable", 400},
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

struct ResumableTest : EmulatorWorld {
    static constexpr int granule = 256 * 1024;
    std::string address;

    httplib::Result command(const std::string& words, std::int64_t offset = 0,
                            const QByteArray& piece = {}) {
        httplib::Headers headers = bearer();
        headers.emplace("X-Goog-Upload-Command", words);
        headers.emplace("X-Goog-Upload-Offset", std::to_string(offset));
        return client->Post(address, headers, piece.toStdString(), "application/octet-stream");
    }
    std::string received() {
        const auto result = command("query");
        return result ? result->get_header_value("X-Goog-Upload-Size-Received") : "";
    }
    int start(std::int64_t size) {
        httplib::Headers headers = uploadHeaders();
        headers.erase("X-Goog-Upload-Protocol");
        headers.emplace("X-Goog-Upload-Protocol", "resumable");
        headers.emplace("X-Goog-Upload-Command", "start");
        headers.emplace("X-Goog-Upload-Raw-Size", std::to_string(size));
        const auto result = client->Post("/v1/uploads", headers);
        address = result ? result->get_header_value("X-Goog-Upload-URL") : "";
        address.erase(0, address.find("/v1"));
        return statusOf(result);
    }
};

TEST_F(ResumableTest, goesOnWhereItEndedAndKeepsWholeGranulesOfABrokenPiece) {
    const QByteArray file = jpeg + QByteArray(3 * granule, 'x');
    ASSERT_EQ(start(file.size()), 200);
    EXPECT_EQ(statusOf(command("upload", 0, file.first(granule))), 200);
    emulator->addDisturbance({.kind = RequestKind::upload, .dropRequestAfter = granule + 9});
    EXPECT_FALSE(command("upload", granule, file.sliced(granule)));
    EXPECT_EQ(received(), std::to_string(2 * granule));
    EXPECT_EQ(statusOf(command("upload", 0, file)), 400) << "not its place";
    EXPECT_EQ(statusOf(command("upload, finalize", 2 * granule, file.sliced(3 * granule))), 400);
    ASSERT_EQ(start(file.size()), 200);
    EXPECT_EQ(statusOf(command("upload", 0, file.first(granule + 1))), 400) << "no granules";
    ASSERT_EQ(start(file.size()), 200);
    EXPECT_EQ(statusOf(command("upload", 0, file.first(granule))), 200);
    const auto last = command("upload, finalize", granule, file.sliced(granule));
    ASSERT_EQ(statusOf(last), 200);
    EXPECT_EQ(last->get_header_value("X-Goog-Upload-Status"), "final");
    create({QString::fromStdString(last->body)});
    EXPECT_EQ(emulator->mediaItems().at(0).sha256, Sha256::digest(file).toHex());
    EXPECT_EQ(statusOf(command("query")), 404) << "it is over";
    ASSERT_EQ(start(file.size()), 200);
    emulator->forgetUploadSessions();
    EXPECT_EQ(statusOf(command("query")), 404);
}

} // namespace

} // namespace quorvane::test

#include "google/GoogleUploadTask.h"

#include "google/MimeTypes.h"
#include "google/ScriptedHttp.h"
#include "google/UploadError.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

using namespace Qt::StringLiterals;

struct Uploading : testing::Test {
    test::TemporaryFolder folder;
    test::ScriptedHttp http;
    test::FixedToken tokens;
    test::FakeClock clock;
    TransferActivityTracker tracker{clock};
    GoogleUploadTask task{http, tokens, tracker, test::loopbackEndpoints()};
    SyncRecord record;
    const std::filesystem::path file = folder.write("A_L0_001_IMG_0001.JPG", "bytes");

    Uploading() { record.assetLocalIdentifier = u"A/L0/001"_s; }

    QString upload(const QString& fileName = u"IMG_0001.JPG"_s) {
        return task.upload(record, file, fileName, {});
    }
};

} // namespace

TEST_F(Uploading, SendsTheFileWithItsHeadersInOrder) {
    http.answerAlways(200, "  token-1\n");
    EXPECT_EQ(upload(), QLatin1String("token-1"));
    const HttpRequest request = http.requests().at(0);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url.path(), QLatin1String("/v1/uploads"));
    EXPECT_EQ(request.bodyFile, file);
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
    const std::vector<std::pair<QByteArray, QByteArray>> headers{
        {"Authorization", "Bearer ya29.test"},        {"Content-Type", "application/octet-stream"},
        {"X-Goog-Upload-Content-Type", "image/jpeg"}, {"X-Goog-Upload-Protocol", "raw"},
        {"X-Goog-Upload-File-Name", "IMG_0001.JPG"},
    };
    EXPECT_EQ(request.headers, headers);
}

TEST_F(Uploading, EveryFileNameFitsIntoItsHeader) {
    http.answerAlways(200, "token");
    const QString longName = QString(251, u'ş') + u".jpg"_s;
    for (const auto& [name, encoded] : {
             std::pair<QString, QByteArray>{u"Çiçek 1.jpg"_s, "%C3%87i%C3%A7ek%201.jpg"},
             {u"📷.heic"_s, "%F0%9F%93%B7.heic"},
             {u"100%\"a\"\r\nX: y.png"_s, "100%25%22a%22%0D%0AX:%20y.png"},
             {u"a-b._~!$&'()*+,;=:@/c?#[]"_s, "a-b._~!$&'()*+,;=:@/c%3F%23%5B%5D"},
             {longName, QByteArray("%C5%9F").repeated(251) + ".jpg"},
         }) {
        upload(name);
        EXPECT_EQ(http.requests().back().headers.back().second, encoded);
    }
}

TEST_F(Uploading, ProgressReachesTheTracker) {
    tracker.add({record.assetLocalIdentifier, u"IMG_0001.JPG"_s, false, 5});
    http.answer = [&](const HttpRequest& request, const std::stop_token&) {
        request.onProgress(3, 5);
        return HttpResponse{200, "token"};
    };
    upload();
    EXPECT_EQ(tracker.getSnapshot().items.at(0).bytesTransferred, 3);
}

TEST_F(Uploading, RefusalsBecomeUploadErrors) {
    using Case = UploadError::Case;
    struct Row {
        int status;
        QByteArray body;
        Case which;
        QString text;
    };
    std::vector<Row> rows;
    std::vector<int> statuses{0, 201, 204, 302};
    statuses.insert(statuses.end(), std::begin(test::refusals), std::end(test::refusals));
    for (const int status : statuses)
        rows.push_back({status, "token", Case::httpError, u"[Upload] HTTP %1"_s.arg(status)});
    for (const char* body : {"", " \r\n", "\xff\xfe token", "\xe2\x80"})
        rows.push_back({200, body, Case::emptyToken, u"[Upload] Bos uploadToken"_s});
    for (const Row& row : rows) {
        http.answerAlways(row.status, row.body);
        try {
            upload();
            ADD_FAILURE() << row.status << row.body.constData();
        } catch (const UploadError& error) {
            EXPECT_EQ(error.which(), row.which);
            EXPECT_EQ(error.status(), row.which == Case::httpError ? row.status : 0);
            EXPECT_EQ(error.localizedDescription(), row.text);
        }
    }
}

TEST_F(Uploading, OtherErrorsPassUnchanged) {
    http.answer = [](const HttpRequest&, const std::stop_token&) -> HttpResponse {
        throw TransportError(u"bağlantı koptu"_s);
    };
    EXPECT_THROW(upload(), TransportError);
    http.answer = [](const HttpRequest&, const std::stop_token&) -> HttpResponse {
        throw Cancelled();
    };
    EXPECT_THROW(upload(), Cancelled);
    tokens.failure = u"OAuth: kullanici giris yapmamis"_s;
    EXPECT_THROW(upload(), Error);
    EXPECT_EQ(http.requests().size(), 2U) << "nothing is sent without a token";
}

TEST(MimeTypes, GoByTheExtension) {
    for (const auto& [name, type] : {std::pair{"a.jpg", "image/jpeg"},
                                     {"a.JPEG", "image/jpeg"},
                                     {"a.heic", "image/heic"},
                                     {"a.HEIF", "image/heif"},
                                     {"a.png", "image/png"},
                                     {"a.gif", "image/gif"},
                                     {"a.webp", "image/webp"},
                                     {"a.mp4", "video/mp4"},
                                     {"clip.MOV", "video/quicktime"},
                                     {"a.m4v", "video/x-m4v"},
                                     {"scan.tiff", "application/octet-stream"},
                                     {"jpg", "application/octet-stream"},
                                     {".jpg", "application/octet-stream"}})
        EXPECT_EQ(mimeType(name), type) << name;
}

} // namespace quorvane

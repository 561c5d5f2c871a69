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

TEST_F(Uploading, SendsTheFileAndTrimsTheToken) {
    http.answerAlways(200, "  token-1\n");
    EXPECT_EQ(upload(), QLatin1String("token-1"));
    const HttpRequest request = http.requests().at(0);
    EXPECT_EQ(request.bodyFile, file);
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
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
    const auto expectFailure = [&](int status, const QByteArray& body, const QString& text) {
        http.answerAlways(status, body);
        try {
            upload();
            ADD_FAILURE() << status << body.constData();
        } catch (const UploadError& error) {
            EXPECT_EQ(error.localizedDescription(), text);
        }
    };
    for (const int status : {0, 201, 204, 302, 401, 403, 404, 408, 413, 429, 500, 503})
        expectFailure(status, "token", u"[Upload] HTTP %1"_s.arg(status));
    for (const char* body : {"", " \r\n", "\xff\xfe token", "\xe2\x80"})
        expectFailure(200, body, u"[Upload] Bos uploadToken"_s);
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

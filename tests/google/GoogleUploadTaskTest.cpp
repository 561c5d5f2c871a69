#include "google/GoogleUploadTask.h"

#include "foundation/MediaKinds.h"
#include "google/GoogleErrors.h"
#include "google/ScriptedHttp.h"
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
    GoogleLibraryApi api{http, tokens, test::loopbackEndpoints()};
    GoogleUploadTask task{api};
    const std::filesystem::path file = folder.write("A_L0_001_IMG_0001.JPG", "bytes");
    std::int64_t progress = 0;

    QString upload(const QString& fileName = u"IMG_0001.JPG"_s) {
        UploadMemory none;
        return task.upload({file, fileName}, none,
                           [&](std::int64_t sent, std::int64_t) { progress = sent; }, {});
    }
};

} // namespace

TEST_F(Uploading, EveryFileNameFitsIntoItsHeader) {
    http.answerAlways(200, "token");
    for (const auto& [name, encoded] : {
             std::pair<QString, QByteArray>{u"Çiçek 1.jpg"_s, "%C3%87i%C3%A7ek%201.jpg"},
             {u"📷.heic"_s, "%F0%9F%93%B7.heic"},
             {u"100%\"a\"\r\nX: y.png"_s, "100%25%22a%22%0D%0AX:%20y.png"},
             {u"a-b._~!$&'()*+,;=:@/c?#[]"_s, "a-b._~!$&'()*+,%3B=:@/c%3F%23%5B%5D"},
             {QString(251, u'ş'), QByteArray("%C5%9F").repeated(251)},
         }) {
        upload(name);
        EXPECT_EQ(http.requests().back().headers.back().second, encoded);
    }
}

TEST_F(Uploading, WhatIsNoTokenIsAnUploadError) {
    std::vector<std::tuple<int, QByteArray, QString>> rows{
        {200, "", u"[Upload] Bos uploadToken"_s},
        {200, " \r\n", u"[Upload] Bos uploadToken"_s},
        {200, "\xff\xfe token", u"[Upload] Bos uploadToken"_s},
        {200, "to ken", u"[Upload] Gecersiz uploadToken"_s},
        {200, "to\x01ken", u"[Upload] Gecersiz uploadToken"_s},
        {200, "<html></html>", u"[Upload] Gecersiz uploadToken"_s},
        {200, QByteArray(8193, 't'), u"[Upload] Gecersiz uploadToken"_s},
    };
    for (const int status : {0, 201, 204, 302, 401, 403, 404, 408, 413, 429, 500, 503})
        rows.emplace_back(status, "token", u"[Upload] HTTP %1"_s.arg(status));
    for (const auto& [status, body, text] : rows) {
        http.answerAlways(status, body);
        try {
            upload();
            ADD_FAILURE() << status << body.constData();
        } catch (const GoogleError& error) {
            EXPECT_EQ(error.localizedDescription(), text);
        }
    }
    http.answerAlways(200, QByteArray(8192, 't'));
    EXPECT_EQ(upload().size(), 8192);
}

TEST(UploadType, GoesByTheExtension) {
    for (const auto& [names, type] : {std::pair{u"a.jpg a.JPEG"_s, "image/jpeg"},
                                      {u"a.heic"_s, "image/heic"},
                                      {u"a.HEIF"_s, "image/heif"},
                                      {u"a.png"_s, "image/png"},
                                      {u"a.gif"_s, "image/gif"},
                                      {u"a.webp"_s, "image/webp"},
                                      {u"a.mp4"_s, "video/mp4"},
                                      {u"clip.MOV"_s, "video/quicktime"},
                                      {u"a.m4v"_s, "video/x-m4v"},
                                      {u"scan.tiff jpg .jpg"_s, "application/octet-stream"}})
        for (const QString& name : names.split(u' '))
            EXPECT_EQ(uploadType(pathFrom(name)), type) << name.toStdString();
}

} // namespace quorvane

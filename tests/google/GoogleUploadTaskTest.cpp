#include "google/GoogleUploadTask.h"

#include "google/GoogleErrors.h"
#include "google/ScriptedHttp.h"
#include "support/Failures.h"
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

    QString upload() {
        UploadMemory none;
        return task.upload({file, u"IMG_0001.JPG"_s}, none, {}, {});
    }
};

} // namespace

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
        EXPECT_EQ(test::messageOf([&] { upload(); }), text) << status << body.constData();
    }
    http.answerAlways(200, QByteArray(8192, 't'));
    EXPECT_EQ(upload().size(), 8192);
}

} // namespace quorvane

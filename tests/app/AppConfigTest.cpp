#include "app/AppConfig.h"

#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

using Values = AppConfig::Values;

struct AppConfigTest : testing::Test {
    AppConfigTest() { forgetEnvironment(); }
    ~AppConfigTest() override { forgetEnvironment(); }

    static void forgetEnvironment() {
        qunsetenv("GOOGLE_CLIENT_ID");
        qunsetenv("GOOGLE_CLIENT_SECRET");
    }

    TemporaryFolder folder;
    RecordingLog log;
};

TEST_F(AppConfigTest, parseEnvTakesKeysAndValuesAsTheyAre) {
    const struct {
        QString text;
        Values values;
    } cases[]{
        {u"A=b"_s, {{u"A"_s, u"b"_s}}},
        {u"  A \t=  b c  "_s, {{u"A"_s, u"b c"_s}}},
        {u"A=\"abc\"\nB='x y'"_s, {{u"A"_s, u"abc"_s}, {u"B"_s, u"x y"_s}}},
        {u"A=\"abc'"_s, {{u"A"_s, u"\"abc'"_s}}},
        {u"A=\"\"x\"\""_s, {{u"A"_s, u"\"x\""_s}}},
        {u"A=\""_s, {{u"A"_s, QString()}}},
        {u"A='"_s, {{u"A"_s, QString()}}},
        {u"A=a=b="_s, {{u"A"_s, u"a=b="_s}}},
        {u"A=\n=b\n=\nword\n\n"_s, {}},
        {u"# A=b\n  # C=d\nE=f # g"_s, {{u"E"_s, u"f # g"_s}}},
        {u"A=b\r\n\r\nC=d\r\n"_s, {{u"A"_s, u"b"_s}, {u"C"_s, u"d"_s}}},
        {u"A=b\u2028C=d\u0085E=f\vG=h"_s,
         {{u"A"_s, u"b"_s}, {u"C"_s, u"d"_s}, {u"E"_s, u"f"_s}, {u"G"_s, u"h"_s}}},
        {u"A=b\nA=c"_s, {{u"A"_s, u"c"_s}}},
        {u"export A=$B\\n"_s, {{u"export A"_s, u"$B\\n"_s}}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(AppConfig::parseEnv(each.text), each.values) << each.text.toStdString();
}

TEST_F(AppConfigTest, onlyTheFirstReadableFileCounts) {
    const auto first = folder.write("first.env", "GOOGLE_CLIENT_ID=ilk\n");
    const auto second =
        folder.write("second.env", "GOOGLE_CLIENT_ID=ikinci\nGOOGLE_CLIENT_SECRET=gizli\n");
    const auto notText = folder.write("latin.env", "GOOGLE_CLIENT_ID=\xE7\n");
    std::filesystem::create_directory(folder / "folder.env");

    const AppConfig config({{}, folder / "absent", folder / "folder.env", notText, first, second},
                           log);
    EXPECT_EQ(config.googleClientID(), u"ilk");
    EXPECT_EQ(config.googleClientSecret(), std::nullopt);
    EXPECT_EQ(log.messages(), QStringList{u"[Config] ⚙️ .env yüklendi: "_s + pathText(first)});
}

TEST_F(AppConfigTest, theEnvironmentWinsUnlessEmptyAndReloadReadsAgain) {
    const auto file = folder.write(".env", "GOOGLE_CLIENT_ID=dosya\nGOOGLE_CLIENT_SECRET=\"\n");
    qputenv("GOOGLE_CLIENT_ID", "ortam");
    AppConfig config({file}, log);
    EXPECT_EQ(config.googleClientID(), u"ortam");
    EXPECT_EQ(config.googleClientSecret(), std::nullopt) << "a lone quote is an empty value";

    qputenv("GOOGLE_CLIENT_ID", "");
    EXPECT_EQ(config.googleClientID(), u"ortam");
    config.reload();
    EXPECT_EQ(config.googleClientID(), u"dosya");

    folder.write(".env", "GOOGLE_CLIENT_SECRET='yeni'");
    config.reload();
    EXPECT_TRUE(config.googleClientID().endsWith(u".apps.googleusercontent.com"));
    EXPECT_EQ(config.googleClientSecret(), u"yeni");
}

} // namespace

} // namespace quorvane::test

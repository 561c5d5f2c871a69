#include "platform/linux/UrlSchemeHandler.h"

#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace quorvane::test {
namespace {

class UrlSchemeHandlerTest : public testing::Test {
  protected:
    UrlSchemeHandlerTest() {
        environment.dataHome = folder / "data";
        environment.configHome = folder / "config";
        environment.programFolder = folder / R"(a "b" $c `d` \e)";
    }

    TemporaryFolder folder;
    DesktopEnvironment environment;
    const QString scheme = QStringLiteral("com.example.apps.1-a");
    const std::filesystem::path entry = folder / "data/applications/quorvane-url-handler.desktop";
    const std::filesystem::path list = folder / "config/mimeapps.list";
    const QByteArray line = "x-scheme-handler/com.example.apps.1-a=quorvane-url-handler.desktop\n";
};

TEST_F(UrlSchemeHandlerTest, AddsItsDefaultAndLeavesTheRestOfTheListAlone) {
    const QByteArray section = "[Default Applications]\n";
    const struct {
        QByteArray before, after;
    } rows[] = {
        {"", section + line},
        {"[Added Associations]\na=b;", "[Added Associations]\na=b;\n" + section + line},
        {section + "text/html=firefox.desktop\n\n[Removed Associations]\nc=d\n",
         section + line + "text/html=firefox.desktop\n\n[Removed Associations]\nc=d\n"},
        {section + "x-scheme-handler/com.example.apps.1-a=old.desktop\n", section + line},
    };
    for (const auto& row : rows) {
        folder.write("config/mimeapps.list", row.before);
        installUrlSchemeHandler(scheme, environment);
        EXPECT_EQ(readFile(list), row.after);
        const auto written = std::filesystem::last_write_time(list);
        installUrlSchemeHandler(scheme, environment);
        EXPECT_EQ(std::filesystem::last_write_time(list), written) << "nothing to write";
    }
}

TEST_F(UrlSchemeHandlerTest, KeepsAListThatIsALinkALink) {
    const auto real = folder.write("dotfiles/mimeapps.list", "# mine\n");
    std::filesystem::create_directories(environment.configHome);
    std::filesystem::create_symlink(real, list);
    installUrlSchemeHandler(scheme, environment);
    EXPECT_TRUE(std::filesystem::is_symlink(list));
    EXPECT_TRUE(readFile(real).startsWith("# mine\n"));
    EXPECT_TRUE(readFile(real).endsWith(line));
}

TEST_F(UrlSchemeHandlerTest, WritesAnEntryThatTheDesktopRuns) {
    installUrlSchemeHandler(scheme, environment);
    EXPECT_TRUE(readFile(entry).contains("\nMimeType=x-scheme-handler/com.example.apps.1-a;\n"));

    // A program that moved is found again.
    environment.programFolder = folder / R"(x "b" $c `d` \e)";
    installUrlSchemeHandler(scheme, environment);
    if (QStandardPaths::findExecutable(QStringLiteral("gio")).isEmpty())
        GTEST_SKIP() << "the gio command is absent: nobody runs the entry";
    std::filesystem::create_directories(environment.programFolder);
    const auto program = environment.programFolder / "quorvane-cli";
    const auto received = folder / "received";
    replaceFile(program,
                "#!/bin/sh\ncd '" + pathText(folder.path()).toUtf8() +
                    "'\nprintf '%s\\n' \"$@\" > part\nmv part received\n",
                0700);
    const QString url = scheme + QStringLiteral(":/oauth2redirect?state=s&code=4%2F0Ab");
    QProcess gio;
    gio.start(QStringLiteral("env"),
              {QStringLiteral("--unset=DISPLAY"), QStringLiteral("HOME=") + pathText(folder.path()),
               QStringLiteral("XDG_DATA_HOME=") + pathText(environment.dataHome),
               QStringLiteral("XDG_CONFIG_HOME=") + pathText(environment.configHome),
               QStringLiteral("gio"), QStringLiteral("open"), url});
    ASSERT_TRUE(gio.waitForFinished());
    EXPECT_EQ(gio.exitCode(), 0) << gio.readAllStandardError().constData();
    EXPECT_TRUE(waitOnMainThread([&] { return std::filesystem::exists(received); }));
    EXPECT_EQ(readFile(received), "handle-url\n" + url.toUtf8() + "\n");
}

} // namespace
} // namespace quorvane::test

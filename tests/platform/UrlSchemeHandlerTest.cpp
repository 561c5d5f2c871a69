#include "platform/linux/UrlSchemeHandler.h"

#include "support/TemporaryFolder.h"

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
    EXPECT_TRUE(
        readFile(entry).contains(R"(/a \\"b\\" \\$c \\`d\\` \\\\e/quorvane-cli" handle-url %u)"));
    environment.programFolder = "/moved";
    installUrlSchemeHandler(scheme, environment);
    EXPECT_TRUE(readFile(entry).contains("/moved/quorvane-cli"));
}

} // namespace
} // namespace quorvane::test

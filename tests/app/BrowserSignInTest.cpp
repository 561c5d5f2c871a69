#include "CliWorld.h"

#include <QStandardPaths>

#include <sys/stat.h>

namespace quorvane::test {

namespace {

/// A desktop: a display, and a browser that follows the service's redirect to whoever the desktop
/// says opens such addresses.
struct DesktopTest : CliWorld {
    void SetUp() override {
        for (const char* tool : {"Xvfb", "xdg-open", "gio", "curl"})
            if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
                GTEST_SKIP() << tool << " is absent: no desktop to sign in on";
        display.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-nolisten"_s, u"tcp"_s});
        ASSERT_TRUE(display.waitForReadyRead(20'000));
        environment.insert(u"DISPLAY"_s, u':' + QString::fromLatin1(display.readLine()).trimmed());
        // Where xdg-open knows no desktop, it takes a scheme with digits for the name of a file.
        environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"GNOME"_s);
        const auto browser = folder.write(
            "home/browser", "#!/bin/sh\n"
                            "to=$(curl -s -o \"$0.page\" -w '%header{location}' \"$1\")\n"
                            "echo \"$to\" >>\"$0.visited\"\n"
                            "exec xdg-open \"$to\"\n");
        ::chmod(browser.c_str(), 0700);
        folder.write("home/.local/share/applications/browser.desktop",
                     "[Desktop Entry]\nType=Application\nName=Browser\nExec=" +
                         pathText(browser).toUtf8() + " %u\nMimeType=x-scheme-handler/http;\n");
        folder.write("home/.config/mimeapps.list",
                     "[Default Applications]\nx-scheme-handler/http=browser.desktop\n");
    }
    ~DesktopTest() override {
        display.terminate();
        display.waitForFinished();
    }

    /// A sign-in by nothing but the browser: nobody types anything.
    Outcome signInByBrowser() {
        const auto process = start({u"login"_s});
        EXPECT_TRUE(process->waitForFinished(60'000));
        return finish(*process);
    }

    QProcess display;
};

} // namespace

TEST_F(DesktopTest, theBrowsersRedirectReachesTheSignInThatWaits) {
    for (const auto& [kind, redirect] :
         {std::pair{u""_s, ":/oauth2redirect?"}, {u"loopback"_s, "http://127.0.0.1:"}}) {
        environment.insert(u"GOOGLE_REDIRECT"_s, kind);
        const Outcome agreed = signInByBrowser();
        EXPECT_EQ(agreed.code, 0) << agreed.err.toStdString();
        EXPECT_TRUE(agreed.out.contains(u"Oturum açıldı: kullanici@example.com"))
            << agreed.out.toStdString();
        EXPECT_TRUE(readFile(folder / "home/browser.visited").contains(redirect));
        ASSERT_EQ(run({u"logout"_s}).code, 0);

        const auto failure = [this](const auto& change) {
            emulator.change(change);
            const Outcome outcome = signInByBrowser();
            emulator.change([](Behaviour& behaviour) { behaviour = {}; });
            EXPECT_EQ(outcome.code, 1);
            return outcome.err;
        };
        EXPECT_TRUE(failure([](Behaviour& behaviour) {
                        behaviour.consentDenied = true;
                    }).contains(u"OAuth: auth code alinamadi"));
        EXPECT_TRUE(failure([](Behaviour& behaviour) {
                        behaviour.declinedScopes =
                            u"https://www.googleapis.com/auth/photoslibrary.appendonly"_s;
                    }).contains(u"photoslibrary.appendonly"));
    }
}

} // namespace quorvane::test

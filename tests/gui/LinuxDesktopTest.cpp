#include "platform/linux/desktop/LinuxDesktop.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace quorvane::test {

TEST(LinuxDesktopTest, startAtLoginCallsThisProgramAndCanBeTakenBack) {
    const TemporaryFolder folder;
    DesktopEnvironment environment;
    environment.configHome = folder / "config";
    environment.programFolder = "/opt/Quorvane 1";
    RecordingLog log;
    LinuxDesktop desktop(environment, log);
    EXPECT_FALSE(desktop.startsAtLogin());

    desktop.setStartsAtLogin(true);
    EXPECT_TRUE(desktop.startsAtLogin());
    const QByteArray entry = readFile(folder / "config/autostart/quorvane.desktop");
    EXPECT_TRUE(entry.startsWith("[Desktop Entry]\n")) << entry.toStdString();
    EXPECT_TRUE(entry.contains("\nExec=\"/opt/Quorvane 1/quorvane\"\n")) << entry.toStdString();
    EXPECT_EQ(entry.count("Exec="), 1);

    desktop.setStartsAtLogin(false);
    EXPECT_FALSE(desktop.startsAtLogin());
}

} // namespace quorvane::test

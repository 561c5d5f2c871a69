#include "platform/linux/LibsecretStore.h"

#include "support/TemporaryFolder.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace quorvane::test {
namespace {

const QString key = QStringLiteral("com.quorvane.google.refresh_token");

TEST(LibsecretStoreTest, FailsFastWhereThereIsNoKeyring) {
    const QByteArray bus = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    LibsecretStore store;
    QElapsedTimer timer;
    timer.start();
    EXPECT_NE(store.write(key, QStringLiteral("v")), 0);
    EXPECT_EQ(store.read(key), std::nullopt);
    store.remove(key);
    EXPECT_LT(timer.elapsed(), 1000);
    bus.isEmpty() ? qunsetenv("DBUS_SESSION_BUS_ADDRESS")
                  : qputenv("DBUS_SESSION_BUS_ADDRESS", bus);
}

/// The inner half of the test below: runs on a private bus with a real, unlocked keyring.
TEST(LibsecretStoreTest, DISABLED_OnAPrivateBus) {
    LibsecretStore store;
    const QString value = QStringLiteral("1//gizli değer");
    EXPECT_EQ(store.read(key), std::nullopt);
    EXPECT_EQ(store.write(key, QStringLiteral("old")), 0);
    EXPECT_EQ(store.write(key, value), 0);
    EXPECT_EQ(store.write(QStringLiteral("other"), QStringLiteral("o")), 0);
    EXPECT_EQ(LibsecretStore().read(key), value);
    store.remove(key);
    EXPECT_EQ(store.read(key), std::nullopt);
    EXPECT_EQ(store.read(QStringLiteral("other")), QStringLiteral("o"));
}

TEST(LibsecretStoreTest, KeepsSecretsInARealKeyring) {
    for (const char* tool : {"dbus-run-session", "gnome-keyring-daemon", "gdbus"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
            GTEST_SKIP() << tool << " is absent: no keyring to store in";
    }
    const TemporaryFolder home;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("HOME"), pathText(home.path()));
    for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        variables.insert(QString::fromLatin1(name), pathText(home.path()));
    // GIO's proxies leave three weak references per item behind on a thread without a main loop.
    variables.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    QProcess session;
    session.setProcessEnvironment(variables);
    session.setProcessChannelMode(QProcess::MergedChannels);
    session.start(
        QStringLiteral("dbus-run-session"),
        {QStringLiteral("--"), QStringLiteral("sh"), QStringLiteral("-c"),
         QStringLiteral(
             "printf p | gnome-keyring-daemon --foreground --unlock "
             "--components=secrets & gdbus wait --session --timeout 20 "
             "org.freedesktop.secrets && \"$0\" --gtest_also_run_disabled_tests "
             "--gtest_filter='*DISABLED_OnAPrivateBus'; result=$?; kill %1; exit $result"),
         pathText(programFolder() / "test-platform")});
    ASSERT_TRUE(session.waitForFinished(60'000));
    const QByteArray output = session.readAll();
    EXPECT_EQ(session.exitCode(), 0) << output.constData();
    EXPECT_TRUE(output.contains("[  PASSED  ] 1 test")) << output.constData();
}

} // namespace
} // namespace quorvane::test

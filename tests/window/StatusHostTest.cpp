#include "platform/linux/desktop/LinuxStatusHost.h"
#include "ui/window/MenuBarController.h"
#include "window/WindowWorld.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QThread>

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

/// A StatusNotifier watcher with its host, as a desktop's panel has them. On a thread of its own,
/// because the toolkit waits for its answers.
class Watcher final : public QDBusVirtualObject {
  public:
    Watcher() {
        moveToThread(&thread_);
        thread_.start();
    }
    ~Watcher() override {
        thread_.quit();
        thread_.wait();
    }
    void begin() {
        bus_.registerVirtualObject(u"/StatusNotifierWatcher"_s, this);
        ASSERT_TRUE(bus_.registerService(name));
    }
    void end() { bus_.unregisterService(name); }

    QString introspect(const QString&) const override {
        return u"<interface name=\"org.kde.StatusNotifierWatcher\"><property "
               "name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/><method "
               "name=\"RegisterStatusNotifierItem\"><arg type=\"s\" direction=\"in\"/></method>"
               "</interface>"_s;
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() == u"Get") {
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
            return true;
        }
        if (message.member() != u"RegisterStatusNotifierItem")
            return false;
        ++items;
        connection.send(message.createReply());
        return true;
    }

    std::atomic<int> items = 0;

  private:
    const QString name = u"org.kde.StatusNotifierWatcher"_s;
    QDBusConnection bus_ = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"panel"_s);
    QThread thread_;
};

/// The toolkit keeps its first answer for the life of the process, so each test has one of its own.
struct StatusHostTest : testing::Test, WindowWorld {
    void SetUp() override {
        if (QGuiApplication::platformName() != u"xcb" ||
            qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
            GTEST_SKIP() << "no session bus, or no X11";
    }
    bool hasItems(int count) {
        return waitOnMainThread([&] { return panel.items == count; });
    }

    Watcher panel;
    LinuxStatusHost host;
};

} // namespace

TEST_F(StatusHostTest, anItemGoesToAHostThatIsThere) {
    panel.begin();
    MenuBarController controller(*model, window, host);
    controller.setupStatusItem();
    EXPECT_TRUE(hasItems(1));
}

TEST_F(StatusHostTest, anItemGoesToAHostThatComesLateAndToItsSuccessor) {
    MenuBarController controller(*model, window, host);
    controller.setupStatusItem();
    ASSERT_TRUE(awaitView([&] { return window.window() && window.window()->isVisible(); }));
    EXPECT_FALSE(window.dashboard().hint().isEmpty());
    panel.begin();
    ASSERT_TRUE(hasItems(1));
    EXPECT_TRUE(window.dashboard().hint().isEmpty());
    panel.end();
    panel.begin();
    EXPECT_TRUE(hasItems(2));
}

} // namespace quorvane::test

#include "app/gui/AppDelegate.h"
#include "app/gui/UrlEvents.h"
#include "support/Fakes.h"

#include <QCoreApplication>
#include <QStringList>

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

namespace {

/// A platform that answers at once and writes down what happened, with the log lines in between.
struct Launch final : Log {
    void log(const QString& message) override { events += message; }

    AppDelegate::Platform platform() {
        AppDelegate::Platform platform;
        platform.becomeAccessory = [this] { events += u"accessory"_s; };
        platform.createMenuBarController = [this] { events += u"status item"_s; };
        platform.authorizationStatus = [this](auto answer) { answer(atStart); };
        platform.requestAuthorization = [this](auto answer) {
            events += u"request"_s;
            answer(afterRequest);
        };
        platform.showAlert = [this](const AlertText& text, auto answer) {
            events += u"alert: "_s + text.message + u" ["_s + text.primaryButton + u"|"_s +
                      text.secondaryButton + u"]"_s;
            answer(pressesPrimary);
        };
        platform.openPrivacySettings = [this] { events += u"settings"_s; };
        platform.startObserver = [this] { events += u"observer"_s; };
        platform.stopObserver = [this] { events += u"observer stopped"_s; };
        platform.refreshState = [this] { events += u"refresh"_s; };
        platform.handleURL = [this](const QUrl& url) { events += u"url "_s + url.scheme(); };
        return platform;
    }

    AuthorizationStatus atStart = AuthorizationStatus::notDetermined;
    AuthorizationStatus afterRequest = AuthorizationStatus::denied;
    bool pressesPrimary = false;
    QStringList events;
};

TEST(AppDelegateTest, launchesInOrder) {
    const QStringList always{u"🚀 Quorvane applicationDidFinishLaunching"_s, u"accessory"_s,
                             u"status item"_s};
    const QString explained =
        u"alert: Fotoğraflarınızı Güvenle Yedekleyin [Devam Et|Şimdi Değil]"_s;
    const QString refused =
        u"alert: Fotoğraflara Erişim İzni Gerekiyor [Sistem Ayarları'nı Aç|Kapat]"_s;
    const QString was = u"📸 Photos yetki durumu: "_s;
    const QString became = u"📸 Photos yetki sonucu: "_s;
    struct Row {
        AuthorizationStatus atStart, afterRequest;
        bool pressesPrimary;
        QStringList then;
    };
    using enum AuthorizationStatus;
    for (const Row& row : {
             Row{authorized, denied, true, {was + u"3"_s, u"observer"_s, u"refresh"_s}},
             Row{denied, authorized, true, {was + u"2"_s, u"⚠️ Photos yetkisi reddedilmiş"_s}},
             Row{notDetermined,
                 limited,
                 false,
                 {was + u"0"_s, explained, u"request"_s, became + u"4"_s, u"observer"_s,
                  u"refresh"_s}},
             Row{notDetermined,
                 denied,
                 false,
                 {was + u"0"_s, explained, u"request"_s, became + u"2"_s, refused}},
             Row{notDetermined,
                 denied,
                 true,
                 {was + u"0"_s, explained, u"request"_s, became + u"2"_s, refused, u"settings"_s}},
         }) {
        Launch launch;
        launch.atStart = row.atStart;
        launch.afterRequest = row.afterRequest;
        launch.pressesPrimary = row.pressesPrimary;
        AppDelegate(launch.platform(), launch).applicationDidFinishLaunching();
        EXPECT_EQ(launch.events.join(u'\n').toStdString(),
                  (always + row.then).join(u'\n').toStdString());
    }
}

TEST(AppDelegateTest, logsEachAddressThenHandsItOn) {
    Launch launch;
    AppDelegate delegate(launch.platform(), launch);
    UrlEvents events([&](const QUrl& url) { delegate.applicationOpen({url}); });
    QCoreApplication::instance()->installEventFilter(&events);
    for (const QString& url : {u"a:/x?y=%20z"_s, u"b:/"_s}) {
        QFileOpenEvent event{QUrl(url)};
        QCoreApplication::sendEvent(QCoreApplication::instance(), &event);
    }
    delegate.applicationWillTerminate();
    EXPECT_EQ(launch.events, (QStringList{u"[AppDelegate] 🔗 Harici URL alindi: a:/x?y=%20z"_s,
                                          u"url a"_s, u"[AppDelegate] 🔗 Harici URL alindi: b:/"_s,
                                          u"url b"_s, u"observer stopped"_s}));
}

} // namespace

} // namespace quorvane::test

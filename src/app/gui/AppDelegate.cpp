#include "app/gui/AppDelegate.h"

namespace quorvane {

namespace {

const AlertText permissionAlert{
    QStringLiteral("Fotoğraflarınızı Güvenle Yedekleyin"),
    QStringLiteral("• Fotoğraflarınız yalnızca güvenli buluta aktarılır.\n"
                   "• Onayınız olmadan hiçbir anınız silinmez.\n"
                   "• İstediğiniz an ayarları değiştirebilirsiniz."),
    QStringLiteral("Devam Et"), QStringLiteral("Şimdi Değil")};

const AlertText deniedAlert{
    QStringLiteral("Fotoğraflara Erişim İzni Gerekiyor"),
    QStringLiteral("Quorvane'in anılarınızı yedekleyebilmesi için Fotoğraflar arşivinize erişmesi "
                   "gerekir. Sistem Ayarları'ndan kolayca izin verebilirsiniz."),
    QStringLiteral("Sistem Ayarları'nı Aç"), QStringLiteral("Kapat"), true};

bool isGranted(AuthorizationStatus status) {
    return status == AuthorizationStatus::authorized || status == AuthorizationStatus::limited;
}

} // namespace

void AppDelegate::applicationDidFinishLaunching() {
    log_.log(QStringLiteral("🚀 Quorvane applicationDidFinishLaunching"));
    platform_.becomeAccessory();
    platform_.createMenuBarController();
    platform_.authorizationStatus([this](AuthorizationStatus status) { authorize(status); });
}

void AppDelegate::authorize(AuthorizationStatus status) {
    log_.log(QStringLiteral("📸 Photos yetki durumu: %1").arg(static_cast<int>(status)));
    if (isGranted(status))
        startWork();
    else if (status == AuthorizationStatus::notDetermined)
        // The answer is ignored on purpose: the request itself always follows.
        platform_.showAlert(permissionAlert, [this](bool) { requestPhotosAuthorizationSafely(); });
    else
        log_.log(QStringLiteral("⚠️ Photos yetkisi reddedilmiş"));
}

void AppDelegate::requestPhotosAuthorizationSafely() {
    platform_.requestAuthorization([this](AuthorizationStatus status) {
        log_.log(QStringLiteral("📸 Photos yetki sonucu: %1").arg(static_cast<int>(status)));
        if (isGranted(status))
            startWork();
        else
            showPermissionDeniedAlert();
    });
}

void AppDelegate::showPermissionDeniedAlert() {
    platform_.showAlert(deniedAlert, [this](bool opensSettings) {
        if (opensSettings)
            platform_.openPrivacySettings();
    });
}

void AppDelegate::startWork() {
    platform_.startObserver();
    platform_.refreshState();
}

void AppDelegate::applicationOpen(const std::vector<QUrl>& urls) {
    for (const QUrl& url : urls) {
        log_.log(QStringLiteral("[AppDelegate] 🔗 Harici URL alindi: ") +
                 url.toString(QUrl::FullyEncoded));
        platform_.handleURL(url);
    }
}

void AppDelegate::applicationWillTerminate() {
    platform_.stopObserver();
}

} // namespace quorvane

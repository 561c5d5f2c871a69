#include "ui/SettingsModel.h"

#include "foundation/Error.h"

namespace quorvane {

SettingsModel::SettingsModel(const Services& services)
    : s_(services),
      isAutoDeleteEnabled_(services.preferences.boolean(preferenceKeys::isAutoDeleteEnabled)),
      appTheme_(
          appThemeFrom(services.preferences.string(preferenceKeys::appTheme).value_or(QString()))) {
}

void SettingsModel::store(const std::function<void()>& write) {
    try {
        write();
    } catch (const Error& error) {
        Q_EMIT failed(QStringLiteral("Ayar kaydedilemedi: ") + error.localizedDescription());
    }
}

void SettingsModel::setAutoDeleteEnabled(bool enabled) {
    if (enabled == isAutoDeleteEnabled_)
        return;
    store([&] { s_.preferences.setBoolean(preferenceKeys::isAutoDeleteEnabled, enabled); });
    s_.log.log(
        QStringLiteral("[MenuBarViewModel] 🗑️ Otomatik temizlik tercihi güncellendi: ") +
        (enabled ? QStringLiteral("true") : QStringLiteral("false")));
    isAutoDeleteEnabled_ = enabled;
    Q_EMIT changed();
}

void SettingsModel::setAppTheme(AppTheme theme) {
    if (theme == appTheme_)
        return;
    store([&] { s_.preferences.setString(preferenceKeys::appTheme, rawValue(theme)); });
    s_.log.log(QStringLiteral("[MenuBarViewModel] 🎨 Tema tercihi güncellendi: ") + rawValue(theme));
    appTheme_ = theme;
    Q_EMIT changed();
}

bool SettingsModel::areNotificationsEnabled() const {
    return !s_.preferences.boolean(preferenceKeys::notificationsMuted);
}

void SettingsModel::setNotificationsEnabled(bool enabled) {
    store([&] { s_.preferences.setBoolean(preferenceKeys::notificationsMuted, !enabled); });
    Q_EMIT changed();
}

void SettingsModel::setStartsAtLogin(bool starts) {
    s_.desktop.setStartsAtLogin(starts);
    Q_EMIT changed();
}

DateFallbackMode SettingsModel::dateFallbackMode() const {
    const auto stored = s_.preferences.string(preferenceKeys::dateFallbackMode);
    return dateFallbackModeFrom(stored.value_or(QString())).value_or(DateFallbackMode::strictNone);
}

void SettingsModel::setDateFallbackMode(DateFallbackMode mode) {
    store([&] { s_.preferences.setString(preferenceKeys::dateFallbackMode, rawValue(mode)); });
    Q_EMIT changed();
}

void SettingsModel::notify(const Notice& notice) {
    if (areNotificationsEnabled())
        s_.desktop.notify(notice);
}

} // namespace quorvane

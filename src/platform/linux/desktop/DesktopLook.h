#pragma once

#include <QDBusVariant>
#include <QObject>

#include <optional>

namespace quorvane {

/// The look that the person chose for their desktop, as its settings portal tells it
/// (org.freedesktop.portal.Settings). Main thread; nothing is waited for, and without a portal
/// nothing is known.
class DesktopLook final : public QObject {
    Q_OBJECT

  public:
    /// Asks, and listens from now on.
    void watch();

    /// None while the desktop has no preference.
    std::optional<bool> isDark() const { return isDark_; }
    bool reducesMotion() const { return reducesMotion_; }

  Q_SIGNALS:
    void changed();

  private Q_SLOTS:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

  private:
    void read(const QString& space, const QString& key);

    std::optional<bool> isDark_;
    bool reducesMotion_ = false;
};

} // namespace quorvane

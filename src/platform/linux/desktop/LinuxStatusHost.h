#pragma once

#include "ui/StatusHost.h"

#include <QObject>
#include <QTimer>

namespace quorvane {

/// A StatusNotifier host on the session bus, as today's desktops have it, or an X11 system tray
/// (both of freedesktop.org). The bus is not waited for.
class LinuxStatusHost final : public QObject, public StatusHost {
    Q_OBJECT

  public:
    void await(std::function<void()> appeared) override;

  private Q_SLOTS:
    void askForHost();

  private:
    void lookForTray();
    void found();

    std::function<void()> appeared_; ///< empty once it was called
    QTimer trayTimer_;
};

} // namespace quorvane

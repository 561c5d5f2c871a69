#pragma once

#include "foundation/Log.h"
#include "platform/linux/BrowserProcess.h"
#include "platform/linux/DesktopEnvironment.h"
#include "platform/linux/desktop/NetworkMeter.h"
#include "platform/linux/desktop/Notifications.h"
#include "ui/Desktop.h"

#include <QObject>

namespace quorvane {

/// The freedesktop.org desktop: its notification service, its autostart folder, and xdg-open. Main
/// thread.
class LinuxDesktop final : public Desktop {
  public:
    LinuxDesktop(DesktopEnvironment environment, Log& log);

    void notify(const Notice& notice) override { notifications_.show(notice); }
    void open(const std::filesystem::path& file) override;
    void reveal(const std::filesystem::path& file) override;
    bool startsAtLogin() const override;
    void setStartsAtLogin(bool starts) override;
    bool isNetworkMetered() const override { return meter_.isMetered(); }
    void watchNetwork(std::function<void()> changed) override { meter_.watch(std::move(changed)); }

  private:
    std::filesystem::path autostartEntry() const;

    const DesktopEnvironment environment_;
    Log& log_;
    BrowserProcess opener_;
    QObject calls_; ///< what waits for an answer ends with it
    Notifications notifications_;
    NetworkMeter meter_;
};

} // namespace quorvane

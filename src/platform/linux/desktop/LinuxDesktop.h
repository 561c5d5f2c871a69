#pragma once

#include "foundation/Log.h"
#include "platform/linux/BrowserProcess.h"
#include "platform/linux/DesktopEnvironment.h"
#include "platform/linux/desktop/NetworkMeter.h"
#include "ui/Desktop.h"

#include <QObject>

namespace quorvane {

/// The freedesktop.org desktop: its notification service, its autostart folder, and xdg-open. Main
/// thread.
class LinuxDesktop final : public Desktop {
  public:
    LinuxDesktop(DesktopEnvironment environment, Log& log);

    /// Nothing is waited for: a session without a notification service shows nothing.
    void notify(const QString& title, const QString& text) override;
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
    NetworkMeter meter_;
};

} // namespace quorvane

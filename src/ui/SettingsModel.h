#pragma once

#include "foundation/Log.h"
#include "foundation/Preferences.h"
#include "metadata/MetadataTypes.h"
#include "ui/Desktop.h"
#include "ui/ViewTypes.h"

namespace quorvane {

/// What a person chooses once for the program, as it is stored. Main thread.
class SettingsModel final : public QObject {
    Q_OBJECT

  public:
    struct Services {
        Preferences& preferences;
        Log& log;
        Desktop& desktop;
    };

    explicit SettingsModel(const Services& services);

    bool isAutoDeleteEnabled() const { return isAutoDeleteEnabled_; }
    void setAutoDeleteEnabled(bool enabled);
    AppTheme appTheme() const { return appTheme_; }
    void setAppTheme(AppTheme theme);
    bool areNotificationsEnabled() const;
    void setNotificationsEnabled(bool enabled);
    bool startsAtLogin() const { return s_.desktop.startsAtLogin(); }
    void setStartsAtLogin(bool starts);
    DateFallbackMode dateFallbackMode() const;
    void setDateFallbackMode(DateFallbackMode mode);

    /// Shows a notice, unless the person wants none.
    void notify(const Notice& notice);
    /// Writes a setting; that it could not is told.
    void store(const std::function<void()>& write);

  Q_SIGNALS:
    void changed();
    void failed(const QString& message);

  private:
    const Services s_;
    bool isAutoDeleteEnabled_;
    AppTheme appTheme_;
};

} // namespace quorvane

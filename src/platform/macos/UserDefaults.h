#pragma once

#include "foundation/SettingsStore.h"

namespace quorvane {

/// The standard user defaults. Shared by all processes of the application; any thread.
class UserDefaults final : public SettingsStore {
  public:
    QJsonValue value(const QString& key) override;
    void change(const QString& key, const QJsonValue& value) override;
};

} // namespace quorvane

#pragma once

#include <QJsonValue>
#include <QString>

namespace quorvane {

/// Where settings are kept, by key. A value is a text or a boolean. Any thread; other processes may
/// use the same store at the same time.
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;

    /// Undefined when there is none. Throws `Error` when the store cannot be read.
    virtual QJsonValue value(const QString& key) = 0;

    /// Undefined removes the key. Throws `Error`; the store is as it was then.
    virtual void change(const QString& key, const QJsonValue& value) = 0;

    /// Deletes what was kept of a damaged store: there may be secrets in it.
    virtual void removeDamaged() {}
};

} // namespace quorvane

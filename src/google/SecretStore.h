#pragma once

#include <QString>

#include <optional>

namespace quorvane {

/// The system's keychain, keyed by account name. Any thread; no call throws, and each ends within
/// seconds even when the keychain does not answer.
class SecretStore {
  public:
    virtual ~SecretStore() = default;

    /// Replaces the item. 0, or the system's status number when it was refused.
    virtual int write(const QString& key, const QString& value) = 0;

    /// None when there is no item, or it cannot be read without asking the user.
    virtual std::optional<QString> read(const QString& key) = 0;

    virtual void remove(const QString& key) = 0;
};

} // namespace quorvane

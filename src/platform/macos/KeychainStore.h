#pragma once

#include "google/SecretStore.h"

namespace quorvane {

/// The login keychain: a generic password for each key. An item that another build of the program
/// wrote may have the system ask the person. Any thread.
class KeychainStore final : public SecretStore {
  public:
    int write(const QString& key, const QString& value) override;
    std::optional<QString> read(const QString& key) override;
    void remove(const QString& key) override;
};

} // namespace quorvane

#pragma once

#include "google/SecretStore.h"

#include <map>
#include <mutex>

namespace quorvane::test {

/// A keychain that may refuse. Any thread.
class FakeKeychain final : public SecretStore {
  public:
    int write(const QString& key, const QString& value) override {
        const std::lock_guard lock(mutex);
        if (refusal == 0)
            items[key] = value;
        return refusal;
    }
    std::optional<QString> read(const QString& key) override {
        const std::lock_guard lock(mutex);
        const auto item = items.find(key);
        return item == items.end() ? std::nullopt : std::optional(item->second);
    }
    void remove(const QString& key) override {
        const std::lock_guard lock(mutex);
        if (refusal == 0)
            items.erase(key);
    }

    std::mutex mutex;
    int refusal = 0;
    std::map<QString, QString> items;
};

} // namespace quorvane::test

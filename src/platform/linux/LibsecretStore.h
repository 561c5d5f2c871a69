#pragma once

#include "foundation/Guarded.h"
#include "google/SecretStore.h"

#include <chrono>

namespace quorvane {

/// The desktop's keyring (the freedesktop.org Secret Service). Reading never prompts: what is
/// locked counts as absent. After a keyring that did not answer in time, calls fail at once for
/// half a minute, so that one mute service costs one wait and not one per call.
class LibsecretStore final : public SecretStore {
  public:
    /// `patience` is the longest time that one call may take.
    explicit LibsecretStore(std::chrono::milliseconds patience = std::chrono::seconds(5));

    int write(const QString& key, const QString& value) override;
    std::optional<QString> read(const QString& key) override;
    void remove(const QString& key) override;

  private:
    class Call;

    bool isMute();

    const std::chrono::milliseconds patience_;
    Guarded<std::chrono::steady_clock::time_point> muteUntil_;
};

} // namespace quorvane

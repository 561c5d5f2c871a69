#pragma once

#include "app/Composition.h"
#include "google/CurlHttpClient.h"
#include "platform/linux/LibsecretStore.h"

namespace quorvane {

/// The real clock, network and keyring of this computer.
struct SystemPorts {
    SystemClock clock;
    CurlHttpClient http;
    LibsecretStore keychain;

    Ports with(Console& console, DeletionConfirmation& confirmation) {
        const QString baseURL = qEnvironmentVariable("QUORVANE_GOOGLE_BASE_URL");
        return {console,
                clock,
                http,
                keychain,
                confirmation,
                clock,
                baseURL.isEmpty() ? std::nullopt : std::optional(baseURL)};
    }
};

} // namespace quorvane

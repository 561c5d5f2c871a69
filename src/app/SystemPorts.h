#pragma once

#include "app/Composition.h"
#include "google/CurlHttpClient.h"
#ifdef __APPLE__
#include "platform/macos/MacPorts.h"
#else
#include "platform/linux/LinuxPorts.h"
#endif

namespace quorvane {

#ifdef __APPLE__
using PlatformPorts = MacPorts;
#else
using PlatformPorts = LinuxPorts;
#endif

/// The real clock and network, and what the platform has: here it is chosen.
struct SystemPorts {
    SystemClock clock;
    CurlHttpClient http;
    PlatformPorts platform;

    Ports with(Console& console, DeletionConfirmation& confirmation) {
        const QString baseURL = qEnvironmentVariable("QUORVANE_GOOGLE_BASE_URL");
        return {console,
                clock,
                http,
                platform.keychain,
                confirmation,
                clock,
                baseURL.isEmpty() ? std::nullopt : std::optional(baseURL),
                platform.photos(),
                platform.settings(),
                &platform.log};
    }
};

} // namespace quorvane

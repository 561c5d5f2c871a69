#pragma once

#include "foundation/Console.h"
#include "foundation/Log.h"
#include "foundation/SettingsStore.h"
#include "foundation/UserFolders.h"
#include "google/WebAuthSession.h"
#include "library/PhotosApp.h"
#include "platform/linux/LibsecretStore.h"
#include "platform/linux/Syslog.h"

#include <memory>
#include <optional>

namespace quorvane {

/// What Linux gives to the composition.
struct LinuxPorts {
    LibsecretStore keychain;
    Syslog log;

    static PhotosApp* photos() { return nullptr; }
    static SettingsStore* settings() { return nullptr; } ///< a file does

    /// Opens the browser where there is a desktop; the callback URL comes from its URL handler, or
    /// from `input` (a descriptor), whichever is first.
    static std::unique_ptr<WebAuthSession>
    signIn(const UserFolders& folders, std::optional<int> input, Console& console, Log& log);
    /// Gives the URL to the sign-in that waits for it, in whatever process; false: none does.
    static bool handOver(const UserFolders& folders, const QString& url);
};

} // namespace quorvane

#pragma once

#include "foundation/UserFolders.h"

#include <filesystem>

namespace quorvane {

/// What the desktop session tells its programs (freedesktop.org base directories).
struct DesktopEnvironment {
    std::filesystem::path dataHome;      ///< user's applications live in its "applications"
    std::filesystem::path configHome;    ///< holds "mimeapps.list"
    std::filesystem::path runtimeFolder; ///< ours alone; where the sign-in's socket lives
    std::filesystem::path programFolder; ///< where the running program, and its siblings, are
    bool hasDisplay = false;

    std::filesystem::path signInSocket() const { return runtimeFolder / "sign-in.socket"; }

    static DesktopEnvironment ofProcess(const UserFolders& folders);
};

} // namespace quorvane

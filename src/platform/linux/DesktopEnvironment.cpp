#include "platform/linux/DesktopEnvironment.h"

#include "foundation/File.h"

#include <QtGlobal>

namespace quorvane {

namespace {

/// A folder named by the environment; the base-directory rules ignore one that is not absolute.
std::filesystem::path folderFrom(const char* variable, const std::filesystem::path& otherwise) {
    const std::filesystem::path named = pathFrom(qEnvironmentVariable(variable));
    return named.is_absolute() ? named : otherwise;
}

} // namespace

DesktopEnvironment DesktopEnvironment::ofProcess(const UserFolders& folders) {
    DesktopEnvironment environment;
    environment.dataHome = folderFrom("XDG_DATA_HOME", folders.home / ".local/share");
    environment.configHome = folderFrom("XDG_CONFIG_HOME", folders.home / ".config");
    const std::filesystem::path runtime = folderFrom("XDG_RUNTIME_DIR", {});
    environment.runtimeFolder =
        runtime.empty() ? folders.applicationSupport() / "run" : runtime / "quorvane";
    std::error_code ignored;
    environment.programFolder =
        std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
    environment.hasDisplay =
        !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    return environment;
}

} // namespace quorvane

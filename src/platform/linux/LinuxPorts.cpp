#include "platform/linux/LinuxPorts.h"

#include "platform/linux/BrowserAuthSession.h"

namespace quorvane {

std::unique_ptr<WebAuthSession> LinuxPorts::signIn(const UserFolders& folders,
                                                   std::optional<int> input, Console& console,
                                                   Log& log) {
    return std::make_unique<BrowserAuthSession>(DesktopEnvironment::ofProcess(folders),
                                                BrowserAuthSession::Options{input}, console, log);
}

bool LinuxPorts::handOver(const UserFolders& folders, const QString& url) {
    return handOverURL(DesktopEnvironment::ofProcess(folders), url);
}

} // namespace quorvane

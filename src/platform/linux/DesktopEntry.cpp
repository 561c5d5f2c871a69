#include "platform/linux/DesktopEntry.h"

namespace quorvane {

QByteArray desktopExecArgument(const std::filesystem::path& path) {
    QByteArray argument = "\"";
    for (const char c : path.native()) {
        switch (c) {
        case '"':
        case '`':
        case '$':
            argument += "\\\\";
            break;
        case '\\':
            argument += "\\\\\\";
            break;
        case '%':
            argument += '%';
            break;
        default:
            break;
        }
        argument += c;
    }
    return argument + '"';
}

} // namespace quorvane

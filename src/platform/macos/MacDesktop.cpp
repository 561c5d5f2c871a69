#include "platform/macos/MacDesktop.h"

#include "foundation/File.h"

#include <QCoreApplication>

namespace quorvane {

namespace {

/// An agent in the form of launchd.plist(5).
QByteArray agentText(const QString& program) {
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n<dict>\n"
                          "  <key>Label</key><string>com.quorvane.login</string>\n"
                          "  <key>ProgramArguments</key><array><string>%1</string></array>\n"
                          "  <key>RunAtLoad</key><true/>\n"
                          "</dict>\n</plist>\n")
        .arg(program.toHtmlEscaped())
        .toUtf8();
}

} // namespace

std::filesystem::path MacDesktop::loginAgent() const {
    return home_ / "Library/LaunchAgents/com.quorvane.login.plist";
}

bool MacDesktop::startsAtLogin() const {
    std::error_code ignored;
    return std::filesystem::exists(loginAgent(), ignored);
}

void MacDesktop::setStartsAtLogin(bool starts) {
    std::error_code failure;
    if (!starts) {
        std::filesystem::remove(loginAgent(), failure);
        return;
    }
    std::filesystem::create_directories(loginAgent().parent_path(), failure);
    try {
        replaceFile(loginAgent(), agentText(QCoreApplication::applicationFilePath()), 0644);
    } catch (const FileError& error) {
        log_.log(QStringLiteral("[Desktop] ⚠️ ") + error.localizedDescription());
    }
}

} // namespace quorvane

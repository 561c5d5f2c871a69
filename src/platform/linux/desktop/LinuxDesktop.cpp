#include "platform/linux/desktop/LinuxDesktop.h"

#include "foundation/File.h"
#include "platform/linux/DesktopEntry.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QUrl>

namespace quorvane {

namespace {

/// The autostart entry, which calls `program` wherever it was installed.
QByteArray autostartText(const std::filesystem::path& program) {
    QFile form(QStringLiteral(":/quorvane/autostart.desktop"));
    if (!form.open(QIODevice::ReadOnly))
        return {};
    return form.readAll().replace("\nExec=quorvane\n",
                                  "\nExec=" + desktopExecArgument(program) + '\n');
}

} // namespace

LinuxDesktop::LinuxDesktop(DesktopEnvironment environment, Log& log)
    : environment_(std::move(environment)), log_(log) {
    notifications_.onOpened = [this](Notice::About about) {
        if (onNoticeOpened)
            onNoticeOpened(about);
    };
}

void LinuxDesktop::open(const std::filesystem::path& file) {
    if (!opener_.open(QUrl::fromLocalFile(pathText(file))))
        log_.log(QStringLiteral("[Desktop] ⚠️ Dosya açılamadı: ") + pathText(file));
}

/// Any file manager that is running or can be started answers; without one the folder is opened.
void LinuxDesktop::reveal(const std::filesystem::path& file) {
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return open(file.parent_path());
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("/org/freedesktop/FileManager1"),
                                               QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("ShowItems"));
    const QByteArray address =
        "file://" + QByteArray::fromStdString(file.native()).toPercentEncoding("/");
    call.setArguments({QStringList(QString::fromLatin1(address)), QString()});
    auto* answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), &calls_);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &calls_, [this, answer, file] {
        if (answer->isError())
            open(file.parent_path());
        answer->deleteLater();
    });
}

std::filesystem::path LinuxDesktop::autostartEntry() const {
    return environment_.configHome / "autostart/quorvane.desktop";
}

bool LinuxDesktop::startsAtLogin() const {
    std::error_code ignored;
    return std::filesystem::exists(autostartEntry(), ignored);
}

void LinuxDesktop::setStartsAtLogin(bool starts) {
    const std::filesystem::path entry = autostartEntry();
    std::error_code failure;
    if (!starts) {
        std::filesystem::remove(entry, failure);
    } else {
        std::filesystem::create_directories(entry.parent_path(), failure);
        try {
            replaceFile(entry, autostartText(environment_.programFolder / "quorvane"), 0644);
        } catch (const FileError& error) {
            log_.log(QStringLiteral("[Desktop] ⚠️ ") + error.localizedDescription());
        }
    }
}

} // namespace quorvane

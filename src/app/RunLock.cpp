#include "app/RunLock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::int64_t largestLockFile = 4096;

QString holderOf(const std::filesystem::path& file) {
    try {
        return QString::fromUtf8(readWholeFile(file, largestLockFile)).trimmed();
    } catch (const FileError&) {
        return {};
    }
}

/// How a holder of this process names it.
QString ownNumber() {
    return QStringLiteral("(PID %1,").arg(::getpid());
}

} // namespace

std::optional<QString> otherRun(const std::filesystem::path& file) {
    try {
        const FileDescriptor lock = openFile(file, O_RDONLY);
        if (::flock(lock.get(), LOCK_SH | LOCK_NB) == 0)
            return std::nullopt;
    } catch (const FileError&) {
        return std::nullopt; // nobody has run yet
    }
    const QString holder = holderOf(file);
    return holder.contains(ownNumber()) ? std::nullopt : std::optional(holder);
}

RunLock::RunLock(const std::filesystem::path& file) {
    std::error_code ignored; // a missing folder shows when the file is opened
    std::filesystem::create_directories(file.parent_path(), ignored);
    lock_ = FileLock::tryLock(file);
    if (!lock_)
        throw RunLockHeld(QStringLiteral("Başka bir eşitleme çalışıyor: ") + holderOf(file));
    const int fd = lock_->descriptor().get();
    const QByteArray holder =
        QStringLiteral("%1 %2 başlangıç %3)\n")
            .arg(QFileInfo(QCoreApplication::applicationFilePath()).fileName(), ownNumber())
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
            .toUtf8();
    if (::ftruncate(fd, 0) != 0)
        throw FileError(QStringLiteral("Kilit yazılamadı"), file, errno);
    writeAll(fd, viewOf(holder), file);
}

} // namespace quorvane

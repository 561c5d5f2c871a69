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

} // namespace

RunLock::RunLock(const std::filesystem::path& file) {
    std::error_code ignored; // a missing folder shows when the file is opened
    std::filesystem::create_directories(file.parent_path(), ignored);
    file_ = openFile(file, O_RDWR | O_CREAT);
    if (::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK)
            throw FileError(QStringLiteral("Kilit alınamadı"), file, errno);
        throw RunLockHeld(QStringLiteral("Başka bir eşitleme çalışıyor: ") + holderOf(file));
    }
    const QByteArray holder =
        QStringLiteral("%1 (PID %2, başlangıç %3)\n")
            .arg(QFileInfo(QCoreApplication::applicationFilePath()).fileName())
            .arg(::getpid())
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
            .toUtf8();
    if (::ftruncate(file_.get(), 0) != 0)
        throw FileError(QStringLiteral("Kilit yazılamadı"), file, errno);
    writeAll(file_.get(), viewOf(holder), file);
}

} // namespace quorvane

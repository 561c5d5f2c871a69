#include "foundation/FileLock.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include <fcntl.h>
#include <sys/file.h>

namespace quorvane {

namespace {

/// A blocking wait could not be stopped, so a held lock is asked for again this often.
constexpr std::chrono::milliseconds pollInterval{10};

bool tryToLock(const FileDescriptor& file, const std::filesystem::path& path) {
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK)
            return false;
        if (errno != EINTR)
            throw FileError(QStringLiteral("Kilit alınamadı"), path, errno);
    }
    return true;
}

} // namespace

FileLock::FileLock(const std::filesystem::path& file, const std::stop_token& stop)
    : file_(openFile(file, O_RDWR | O_CREAT)) {
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    while (!tryToLock(file_, file)) {
        never.wait_for(lock, stop, pollInterval, [] { return false; });
        if (stop.stop_requested())
            throw Cancelled();
    }
}

std::optional<FileLock> FileLock::tryLock(const std::filesystem::path& file) {
    FileDescriptor opened = openFile(file, O_RDWR | O_CREAT);
    if (!tryToLock(opened, file))
        return std::nullopt;
    return FileLock(std::move(opened));
}

} // namespace quorvane

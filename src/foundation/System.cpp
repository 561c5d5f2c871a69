#include "foundation/System.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __APPLE__
#include <sys/attr.h>
#include <sys/clonefile.h>
#else
#include <linux/fs.h>
#include <linux/sockios.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#endif

namespace quorvane::system {

namespace {

constexpr int newFile = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;

} // namespace

#ifdef __APPLE__

bool flush(int file) noexcept {
    return ::fcntl(file, F_FULLFSYNC) == 0 || ::fsync(file) == 0;
}

/// A clone has the original's permissions and flags as well; one that was locked could not be
/// renamed.
NewFile createAsClone(int original, const std::filesystem::path& path) noexcept {
    if (::fclonefileat(original, AT_FDCWD, path.c_str(), 0) != 0)
        return {FileDescriptor(::open(path.c_str(), newFile, 0600)), false};
    ::lchflags(path.c_str(), 0);
    ::lchmod(path.c_str(), 0600);
    FileDescriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen())
        ::unlink(path.c_str());
    return {std::move(file), true};
}

std::uint64_t copyRange(int, std::uint64_t, std::uint64_t, int) noexcept {
    return 0;
}

int renameToNew(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    return ::renameatx_np(fromFolder, from, toFolder, to, RENAME_EXCL) == 0 ? 0 : errno;
}

timespec modificationTime(const struct stat& status) noexcept {
    return status.st_mtimespec;
}

timespec statusChangeTime(const struct stat& status) noexcept {
    return status.st_ctimespec;
}

void setCreationTime(const std::filesystem::path& file, const timespec& time) noexcept {
    struct attrlist which {};
    which.bitmapcount = ATTR_BIT_MAP_COUNT;
    which.commonattr = ATTR_CMN_CRTIME;
    timespec value = time;
    ::setattrlist(file.c_str(), &which, &value, sizeof value, 0);
}

FileDescriptor openSocket(int family, int type, int protocol) noexcept {
    FileDescriptor socket(::socket(family, type, protocol));
    const int on = 1;
    ::fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
    ::setsockopt(socket.get(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
    return socket;
}

FileDescriptor acceptConnection(int listener) noexcept {
    FileDescriptor socket(::accept(listener, nullptr, nullptr));
    const int on = 1;
    ::fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
    ::setsockopt(socket.get(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
    return socket;
}

ssize_t sendBytes(int socket, const void* bytes, std::size_t size) noexcept {
    return ::send(socket, bytes, size, 0);
}

int unsentBytes(int socket) noexcept {
    int bytes = 0;
    socklen_t size = sizeof bytes;
    return ::getsockopt(socket, SOL_SOCKET, SO_NWRITE, &bytes, &size) == 0 ? bytes : 0;
}

void prepareProcess() noexcept {
    ::setenv("QT_EVENT_DISPATCHER_CORE_FOUNDATION", "1", 0);
}

#else

bool flush(int file) noexcept {
    return ::fsync(file) == 0;
}

NewFile createAsClone(int original, const std::filesystem::path& path) noexcept {
    FileDescriptor file(::open(path.c_str(), newFile, 0600));
    const bool isClone = file.isOpen() && ::ioctl(file.get(), FICLONE, original) == 0;
    return {std::move(file), isClone};
}

std::uint64_t copyRange(int from, std::uint64_t offset, std::uint64_t length, int to) noexcept {
    std::uint64_t copied = 0;
    auto position = static_cast<off64_t>(offset);
    while (copied < length) {
        const ssize_t n = ::copy_file_range(from, &position, to, nullptr, length - copied, 0);
        if (n <= 0)
            break;
        copied += static_cast<std::uint64_t>(n);
    }
    return copied;
}

int renameToNew(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    if (::renameat2(fromFolder, from, toFolder, to, RENAME_NOREPLACE) == 0)
        return 0;
    return errno == EINVAL || errno == ENOSYS ? ENOTSUP : errno;
}

timespec modificationTime(const struct stat& status) noexcept {
    return status.st_mtim;
}

timespec statusChangeTime(const struct stat& status) noexcept {
    return status.st_ctim;
}

void setCreationTime(const std::filesystem::path&, const timespec&) noexcept {}

FileDescriptor openSocket(int family, int type, int protocol) noexcept {
    return FileDescriptor(::socket(family, type | SOCK_CLOEXEC, protocol));
}

FileDescriptor acceptConnection(int listener) noexcept {
    return FileDescriptor(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
}

ssize_t sendBytes(int socket, const void* bytes, std::size_t size) noexcept {
    return ::send(socket, bytes, size, MSG_NOSIGNAL);
}

int unsentBytes(int socket) noexcept {
    int bytes = 0;
    return ::ioctl(socket, SIOCOUTQ, &bytes) == 0 ? bytes : 0;
}

void prepareProcess() noexcept {
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 1); // NOLINT(concurrency-mt-unsafe): nothing runs yet
#endif
}

#endif

} // namespace quorvane::system

#include "platform/linux/BrowserProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvane {

BrowserProcess::~BrowserProcess() {
    if (pid_ > 0)
        ::waitpid(pid_, nullptr, WNOHANG);
}

bool BrowserProcess::open(const QUrl& url) {
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawnattr_init(&attributes);
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&files, fd, "/dev/null", O_RDWR, 0);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);

    QByteArray program = "xdg-open";
    QByteArray address = url.toEncoded();
    char* arguments[] = {program.data(), address.data(), nullptr};
    const int failure =
        ::posix_spawnp(&pid_, program.constData(), &files, &attributes, arguments, environ);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    if (failure != 0) {
        pid_ = -1;
        return false;
    }
    exit_ = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)));
    return true;
}

bool BrowserProcess::succeeded() {
    int status = -1;
    ::waitpid(pid_, &status, 0);
    pid_ = -1;
    exit_ = FileDescriptor();
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace quorvane

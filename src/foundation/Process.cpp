#include "foundation/Process.h"

#include "foundation/System.h"

#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

/// The lowest free number is the one that is missing.
void openStandardStreams() noexcept {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        while (::fcntl(stream, F_GETFD) < 0)
            if (::open("/dev/null", O_RDWR) < 0)
                return;
}

} // namespace

void prepareProcess() noexcept {
    openStandardStreams();
    ::umask(S_IRWXG | S_IRWXO);
    std::signal(SIGPIPE, SIG_IGN);
    system::prepareProcess();
}

} // namespace quorvane

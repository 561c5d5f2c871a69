#include "platform/folder/OpenForWriting.h"

#include "foundation/File.h"

#include <cerrno>
#include <chrono>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvane {

namespace {

using std::chrono::seconds;

constexpr seconds longestWrite = std::chrono::hours(24);
constexpr seconds justNow{3};

enum class Answer { yes, no, unknown };

/// A read lease is granted exactly when nobody has the file open for writing. It is given back
/// with the descriptor; a writer that comes in between waits those microseconds.
Answer askByLease(int folder, const char* name) {
#ifdef F_SETLEASE
    const FileDescriptor file(
        ::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    // The signal of such a writer would end the process, if it were not one that is ignored.
    if (!file.isOpen() || ::fcntl(file.get(), F_SETSIG, SIGURG) != 0)
        return Answer::unknown;
    if (::fcntl(file.get(), F_SETLEASE, F_RDLCK) == 0)
        return Answer::no;
    return errno == EAGAIN ? Answer::yes : Answer::unknown;
#else
    return folder >= 0 && name ? Answer::unknown : Answer::no;
#endif
}

} // namespace

bool isOpenForWriting(int folder, const char* name, const struct stat& status) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto age = std::chrono::abs(now - seconds(status.st_ctime)); // clocks go wrong too
    if (age > longestWrite)
        return false;
    const Answer answer = askByLease(folder, name);
    return answer == Answer::unknown ? age < justNow : answer == Answer::yes;
}

} // namespace quorvane

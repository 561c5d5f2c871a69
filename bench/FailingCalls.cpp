// A library to preload (LD_PRELOAD) that fails one call of a program, as a full or broken disk
// would. FAILING_CALL is "KIND:NUMBER": of the calls of that kind on files below FAILING_BELOW the
// NUMBER-th fails, once; none for 0. FAILING_REPORT names a file that gets a line "KIND CALLS" for
// each kind when the program ends. Kinds: open, read, write, fsync, rename, mmap, statement.
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

enum Kind { opening, reading, writing, flushing, renaming, mapping, statement, kindCount };
constexpr std::array<std::string_view, kindCount> names{"open",   "read", "write",    "fsync",
                                                        "rename", "mmap", "statement"};
std::array<std::atomic<long>, kindCount> calls;

const char* environment(const char* name) {
    return std::getenv(name); // NOLINT(concurrency-mt-unsafe): the program's own, never changed
}

std::string_view textOf(const char* text) {
    return text == nullptr ? "" : text;
}

struct Order {
    Kind kind = kindCount;
    long number = 0;
    std::string_view below;

    Order() {
        below = textOf(environment("FAILING_BELOW"));
        const std::string_view text = textOf(environment("FAILING_CALL"));
        const auto colon = text.find(':');
        if (colon == std::string_view::npos)
            return;
        kind = Kind(std::ranges::find(names, text.substr(0, colon)) - names.begin());
        std::from_chars(text.data() + colon + 1, text.data() + text.size(), number);
    }
};

const Order& order() {
    static const Order theOrder;
    return theOrder;
}

bool isBelow(std::string_view path) {
    return !order().below.empty() && path.starts_with(order().below);
}

bool isBelow(int descriptor) {
    std::array<char, 64> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    std::array<char, PATH_MAX> path{};
    const ssize_t length = ::readlink(link.data(), path.data(), path.size());
    return length > 0 && isBelow(std::string_view(path.data(), static_cast<std::size_t>(length)));
}

/// Counts the call; true when it is the one that fails.
bool fails(Kind kind) {
    return ++calls[kind] == order().number && kind == order().kind;
}

/// The same for a call on a file, with what it leaves in errno.
template <typename File>
bool fails(Kind kind, File file, int error) {
    const int before = errno;
    const bool isIt = isBelow(file) && fails(kind);
    errno = isIt ? error : before;
    return isIt;
}

template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

struct AtExit {
    ~AtExit() {
        const char* file = environment("FAILING_REPORT");
        std::FILE* report = file == nullptr ? nullptr : std::fopen(file, "w");
        if (report == nullptr)
            return;
        for (int kind = 0; kind < kindCount; ++kind)
            std::fprintf(report, "%s %ld\n", names[static_cast<std::size_t>(kind)].data(),
                         calls[static_cast<std::size_t>(kind)].load());
        std::fclose(report);
    }
} atExit;

} // namespace

// The mode is the one argument that may follow. The kernel takes no harm from one too many.
#define QUORVANE_FAILING_OPEN(name)                                                                \
    extern "C" int name(const char* path, int flags, ...) {                                        \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        const mode_t mode = va_arg(rest, mode_t);                                                  \
        va_end(rest);                                                                              \
        static const auto real = next<int (*)(const char*, int, mode_t)>(#name);                   \
        return fails(opening, std::string_view(path), EMFILE) ? -1 : real(path, flags, mode);      \
    }
QUORVANE_FAILING_OPEN(open)
QUORVANE_FAILING_OPEN(open64)

// Arguments in brackets: what the function takes, and what is handed on.
// NOLINTBEGIN(bugprone-macro-parentheses): that is what the brackets are for
#define QUORVANE_FAILING(result, name, kind, file, error, failure, parameters, arguments)          \
    extern "C" result name parameters {                                                            \
        static const auto real = next<result(*) parameters>(#name);                                \
        if (fails(kind, file, error))                                                              \
            return failure;                                                                        \
        return real arguments;                                                                     \
    }
// NOLINTEND(bugprone-macro-parentheses)
QUORVANE_FAILING(ssize_t, read, reading, fd, EIO, -1, (int fd, void* data, size_t size),
                 (fd, data, size))
QUORVANE_FAILING(ssize_t, pread, reading, fd, EIO, -1,
                 (int fd, void* data, size_t size, off_t offset), (fd, data, size, offset))
QUORVANE_FAILING(ssize_t, pread64, reading, fd, EIO, -1,
                 (int fd, void* data, size_t size, off64_t offset), (fd, data, size, offset))
QUORVANE_FAILING(ssize_t, write, writing, fd, ENOSPC, -1, (int fd, const void* data, size_t size),
                 (fd, data, size))
QUORVANE_FAILING(ssize_t, pwrite, writing, fd, ENOSPC, -1,
                 (int fd, const void* data, size_t size, off_t offset), (fd, data, size, offset))
QUORVANE_FAILING(ssize_t, pwrite64, writing, fd, ENOSPC, -1,
                 (int fd, const void* data, size_t size, off64_t offset), (fd, data, size, offset))
QUORVANE_FAILING(ssize_t, copy_file_range, writing, to, ENOSPC, -1,
                 (int from, off64_t* at, int to, off64_t* there, size_t size, unsigned flags),
                 (from, at, to, there, size, flags))
QUORVANE_FAILING(int, fsync, flushing, fd, EIO, -1, (int fd), (fd))
QUORVANE_FAILING(int, fdatasync, flushing, fd, EIO, -1, (int fd), (fd))
QUORVANE_FAILING(int, rename, renaming, std::string_view(to), EIO, -1,
                 (const char* from, const char* to), (from, to))
QUORVANE_FAILING(int, renameat2, renaming, std::string_view(to), EIO, -1,
                 (int there, const char* from, int here, const char* to, unsigned flags),
                 (there, from, here, to, flags))
QUORVANE_FAILING(void*, mmap, mapping, fd, ENOMEM, MAP_FAILED,
                 (void* at, size_t size, int access, int flags, int fd, off_t offset),
                 (at, size, access, flags, fd, offset))
QUORVANE_FAILING(void*, mmap64, mapping, fd, ENOMEM, MAP_FAILED,
                 (void* at, size_t size, int access, int flags, int fd, off64_t offset),
                 (at, size, access, flags, fd, offset))

extern "C" int sqlite3_step(sqlite3_stmt* each) {
    static const auto real = next<int (*)(sqlite3_stmt*)>("sqlite3_step");
    return fails(statement) ? SQLITE_FULL : real(each);
}

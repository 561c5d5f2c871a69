#pragma once

#include "foundation/File.h"

#include <ctime>
#include <optional>

struct stat;

/// What each operating system has under a name of its own: the one place of shared code that knows
/// on which one it runs. Any thread; nothing throws.
namespace quorvane::system {

/// Until the bytes are on the disk itself, not in its cache. False with `errno`.
bool flush(int file) noexcept;

struct NewFile {
    FileDescriptor file;  ///< mode 0600, for reading and writing; not open: `errno`
    bool isClone = false; ///< else it is empty
};
/// A file at `path`, where there must be none: one that shares the bytes of the opened `original`
/// where the file system can do that.
NewFile createAsClone(int original, const std::filesystem::path& path) noexcept;

/// Copies a range inside the system to the position of `to`. How many bytes were copied: less than
/// asked for where the file systems cannot do it.
std::uint64_t copyRange(int from, std::uint64_t offset, std::uint64_t length, int to) noexcept;

/// A rename that replaces nothing; names are of the opened folders. 0, or the error number: ENOTSUP
/// where the file system cannot promise that.
int renameToNew(int fromFolder, const char* from, int toFolder, const char* to) noexcept;

timespec modificationTime(const struct stat& status) noexcept;
timespec statusChangeTime(const struct stat& status) noexcept;
/// When the file came into being, where the system lets one say so.
void setCreationTime(const std::filesystem::path& file, const timespec& time) noexcept;

/// Sockets that no child process gets, and whose writes raise no signal. Not open: `errno`.
FileDescriptor openSocket(int family, int type, int protocol) noexcept;
FileDescriptor acceptConnection(int listener) noexcept;
/// What ::send returns.
ssize_t sendBytes(int socket, const void* bytes, std::size_t size) noexcept;
/// Bytes that were written to the socket and that the other side did not take yet; 0 where the
/// system does not say.
int unsentBytes(int socket) noexcept;

/// Before any thread. On Linux all threads allocate from one arena: with one for each of them, a
/// run that passes records between its threads scatters what it frees, and grows with every picture
/// it has handled. On a Mac the event loop of a program without windows also serves what the
/// system's frameworks send to the main thread.
void prepareProcess() noexcept;

} // namespace quorvane::system

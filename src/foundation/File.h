#pragma once

#include "foundation/ByteReader.h"
#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include <sys/types.h>

namespace quorvane {

/// A file operation that the system refused; carries the system's error number.
class FileError : public Error {
  public:
    /// "Dosya açılamadı: <path> (diskte yer kalmadı)"
    FileError(const QString& what, const std::filesystem::path& path, int errorNumber);
    int errorNumber() const noexcept { return errorNumber_; }

  private:
    int errorNumber_;
};

/// A system error number in the product's language.
QString errorNumberText(int errorNumber);

/// The path as text; bytes that are not UTF-8 become replacement characters.
QString pathText(const std::filesystem::path& path);

/// A path from text.
std::filesystem::path pathFrom(const QString& text);

/// Owns a file descriptor.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) noexcept : fd_(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor();

    int get() const noexcept { return fd_; }
    bool isOpen() const noexcept { return fd_ >= 0; }
    int release() noexcept;

  private:
    int fd_ = -1;
};

/// Calls `visit` with the name of every regular file that is directly in the folder, in no order;
/// links and folders are none. Returns the error number of what ended it early, 0 for nothing.
int visitFiles(const std::filesystem::path& folder,
               const std::function<void(const std::string& name)>& visit);

/// Opens with O_CLOEXEC added. Throws `FileError`.
FileDescriptor openFile(const std::filesystem::path& path, int flags, mode_t mode = 0600);

/// Writes all bytes at the descriptor's position. Throws `FileError` naming `path`.
void writeAll(int fd, ByteView bytes, const std::filesystem::path& path);

/// Flushes the file's data to the disk. Throws `FileError` naming `path`.
void flushFile(int fd, const std::filesystem::path& path);

/// The whole regular file, refused when longer than `limit` bytes. Throws `FileError`.
QByteArray readWholeFile(const std::filesystem::path& path, std::int64_t limit);

/// Replaces `path` by `bytes`: hidden temporary sibling, flush, rename, folder flush. A reader sees
/// the old file or the new one, never a part. Throws `FileError` and leaves the old file as it was.
void replaceFile(const std::filesystem::path& path, const QByteArray& bytes, mode_t mode = 0600);

} // namespace quorvane

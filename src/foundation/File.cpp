#include "foundation/File.h"

#include "foundation/System.h"

#include <cerrno>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

std::optional<Fault> faultOf(int errorNumber) {
    switch (errorNumber) {
    case ENOSPC:
    case EDQUOT:
        return Fault{.code = FaultCode::diskFull};
    case EIO:
    case EMFILE:
    case ENFILE:
    case ENOMEM:
        return Fault{.code = FaultCode::fileTrouble};
    default:
        return std::nullopt;
    }
}

/// So that a rename in it survives a power cut, as far as the system lets us.
void flushFolder(const std::filesystem::path& folder) noexcept {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

} // namespace

FileError::FileError(const QString& what, const std::filesystem::path& path, int errorNumber)
    : Error(QStringLiteral("%1: %2 (%3)").arg(what, pathText(path), errorNumberText(errorNumber)),
            faultOf(errorNumber)),
      errorNumber_(errorNumber) {}

QString errorNumberText(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
        return QStringLiteral("bulunamadı");
    case EACCES:
    case EPERM:
        return QStringLiteral("izin yok");
    case ENOSPC:
        return QStringLiteral("diskte yer kalmadı");
    case EDQUOT:
        return QStringLiteral("disk kotası doldu");
    case EROFS:
        return QStringLiteral("salt okunur dosya sistemi");
    case EIO:
        return QStringLiteral("giriş/çıkış arızası");
    case ENOTDIR:
        return QStringLiteral("klasör değil");
    case EISDIR:
        return QStringLiteral("bir klasör");
    case EINVAL:
        return QStringLiteral("sıradan bir dosya değil");
    case EEXIST:
        return QStringLiteral("zaten var");
    case EMFILE:
    case ENFILE:
        return QStringLiteral("çok fazla açık dosya");
    case ENAMETOOLONG:
        return QStringLiteral("dosya adı çok uzun");
    case EFBIG:
        return QStringLiteral("dosya çok büyük");
    default:
        return QStringLiteral("sistem kodu %1").arg(errorNumber);
    }
}

QString pathText(const std::filesystem::path& path) {
    return QString::fromStdString(path.native());
}

std::filesystem::path pathFrom(const QString& text) {
    return {text.toStdString()};
}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (fd_ >= 0)
        ::close(fd_);
}

int FileDescriptor::release() noexcept {
    return std::exchange(fd_, -1);
}

int visitFiles(const std::filesystem::path& folder,
               const std::function<void(const std::string& name)>& visit) {
    const auto close = [](DIR* directory) { ::closedir(directory); };
    const std::unique_ptr<DIR, decltype(close)> directory(::opendir(folder.c_str()), close);
    if (!directory)
        return errno;
    std::string name;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the directory is this call's own
    for (errno = 0; const dirent* entry = ::readdir(directory.get()); errno = 0) {
        name = entry->d_name;
        struct stat status {};
        if (entry->d_type == DT_REG || (entry->d_type == DT_UNKNOWN &&
                                        ::fstatat(::dirfd(directory.get()), entry->d_name, &status,
                                                  AT_SYMLINK_NOFOLLOW) == 0 &&
                                        S_ISREG(status.st_mode)))
            visit(name);
    }
    return errno;
}

FileDescriptor openFile(const std::filesystem::path& path, int flags, mode_t mode) {
    int fd = -1;
    do {
        fd = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        throw FileError(QStringLiteral("Dosya açılamadı"), path, errno);
    return FileDescriptor(fd);
}

void writeAll(int fd, ByteView bytes, const std::filesystem::path& path) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw FileError(QStringLiteral("Dosyaya yazılamadı"), path, errno);
        bytes = bytes.subspan(static_cast<size_t>(n));
    }
}

void flushFile(int fd, const std::filesystem::path& path) {
    if (!system::flush(fd))
        throw FileError(QStringLiteral("Dosya diske yazılamadı"), path, errno);
}

QByteArray readWholeFile(const std::filesystem::path& path, std::int64_t limit) {
    const FileDescriptor file = openFile(path, O_RDONLY | O_NONBLOCK); // a pipe would wait
    struct stat info {};
    if (::fstat(file.get(), &info) != 0)
        throw FileError(QStringLiteral("Dosya okunamadı"), path, errno);
    if (!S_ISREG(info.st_mode))
        throw FileError(QStringLiteral("Dosya okunamadı"), path,
                        S_ISDIR(info.st_mode) ? EISDIR : EINVAL);
    QByteArray bytes;
    QByteArray chunk(1 << 16, Qt::Uninitialized);
    while (true) {
        const ssize_t n = ::read(file.get(), chunk.data(), static_cast<size_t>(chunk.size()));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw FileError(QStringLiteral("Dosya okunamadı"), path, errno);
        if (n == 0)
            return bytes;
        bytes.append(chunk.constData(), n);
        if (bytes.size() > limit)
            throw FileError(QStringLiteral("Dosya okunamadı"), path, EFBIG);
    }
}

void replaceFile(const std::filesystem::path& path, const QByteArray& bytes, mode_t mode) {
    std::filesystem::path temporary = path;
    temporary.replace_filename("." + path.filename().native() + ".tmp");
    try {
        const FileDescriptor file = openFile(temporary, O_WRONLY | O_CREAT | O_TRUNC, mode);
        writeAll(file.get(), viewOf(bytes), temporary);
        flushFile(file.get(), temporary);
        if (::rename(temporary.c_str(), path.c_str()) != 0)
            throw FileError(QStringLiteral("Dosya değiştirilemedi"), path, errno);
    } catch (...) {
        ::unlink(temporary.c_str());
        throw;
    }
    flushFolder(path.parent_path());
}

} // namespace quorvane

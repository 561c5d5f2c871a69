#include "library/FileExport.h"

#include "foundation/Crypto.h"
#include "foundation/System.h"
#include "library/PhotoLibrary.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::int64_t chunkSize = 1 << 20;
/// Dirty pages are written out this often, so that a stop never waits for gigabytes of them.
constexpr std::int64_t flushInterval = 8 << 20;
/// So much of a file is freed within some tens of milliseconds.
constexpr off_t removalStep = 32 << 20;
// O_NONBLOCK: a FIFO that took a file's place must not hang the reader.
constexpr int readFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

FileDescriptor requireRegularFile(FileDescriptor file, const std::filesystem::path& path) {
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        throw FileError(QStringLiteral("Dosya okunamadı"), path, errno);
    if (!S_ISREG(status.st_mode))
        throw FileError(QStringLiteral("Dosya okunamadı"), path,
                        S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    return file;
}

FileDescriptor openIn(const FileDescriptor& folder, const std::filesystem::path& name, int flags,
                      const std::filesystem::path& path) {
    int fd = -1;
    do {
        fd = ::openat(folder.get(), name.c_str(), flags);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        throw FileError(QStringLiteral("Dosya açılamadı"), path, errno);
    return FileDescriptor(fd);
}

[[noreturn]] void throwChanged(const std::filesystem::path& path) {
    throw PhotoLibraryError(
        QStringLiteral("Özgün dosya okunurken değişti: %1").arg(pathText(path)));
}

void requireRoom(std::int64_t bytes, const std::filesystem::path& destination) {
    struct statvfs disk {};
    if (::statvfs(destination.parent_path().c_str(), &disk) != 0)
        throw FileError(QStringLiteral("Dosya kopyalanamadı"), destination, errno);
    if (disk.f_bavail < static_cast<std::uint64_t>(bytes) / std::max(disk.f_frsize, 1UL) + 1)
        throw FileError(QStringLiteral("Dosya kopyalanamadı"), destination, ENOSPC);
}

/// A hidden sibling of the destination; removed unless it was published.
class PartFile {
  public:
    PartFile(const std::filesystem::path& destination, const FileDescriptor& original)
        : path_(destination.parent_path() /
                ("." + secureRandomBytes(8).toHex().toStdString() + ".part")) {
        system::NewFile made = system::createAsClone(original.get(), path_);
        if (!made.file.isOpen())
            throw FileError(QStringLiteral("Dosya açılamadı"), path_, errno);
        file_ = std::move(made.file);
        isClone_ = made.isClone;
    }
    ~PartFile() {
        if (file_.isOpen() && !isLeft_)
            ::unlink(path_.c_str());
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    /// To be called on a stop, which must not wait for the removal.
    void leaveIfLarge() {
        struct stat status {};
        isLeft_ = ::fstat(file_.get(), &status) == 0 && status.st_size > removalStep;
    }

    int fd() const { return file_.get(); }
    bool isClone() const { return isClone_; } ///< of the original, whole

    void write(ByteView bytes) {
        writeAll(file_.get(), bytes, path_);
        unflushed_ += static_cast<std::int64_t>(bytes.size());
        if (unflushed_ >= flushInterval)
            flush();
    }

    void setModified(std::int64_t nanoseconds) {
        constexpr std::int64_t second = 1'000'000'000;
        const std::int64_t fraction = ((nanoseconds % second) + second) % second;
        const struct timespec times[2] = {{0, UTIME_OMIT},
                                          {(nanoseconds - fraction) / second, fraction}};
        if (::futimens(file_.get(), times) != 0)
            throw FileError(QStringLiteral("Dosyanın tarihi yazılamadı"), path_, errno);
    }

    /// The content is flushed first, so that a whole name never stands for half a file. The folder
    /// is not: a name that a power cut takes back is exported again.
    void publish(const std::filesystem::path& destination, std::int64_t size) {
        flush();
        struct stat written {};
        struct stat named {};
        if (::fstat(file_.get(), &written) != 0 || ::lstat(path_.c_str(), &named) != 0 ||
            written.st_dev != named.st_dev || written.st_ino != named.st_ino ||
            written.st_size != size)
            throw PhotoLibraryError(
                QStringLiteral("Kopya yazılırken başka bir program onu değiştirdi: %1")
                    .arg(pathText(destination)));
        if (const int error = renameToNew(AT_FDCWD, path_, AT_FDCWD, destination))
            throw FileError(QStringLiteral("Dosya yerine konamadı"), destination, error);
        file_ = FileDescriptor();
    }

  private:
    void flush() {
        flushFile(file_.get(), path_);
        unflushed_ = 0;
    }

    std::filesystem::path path_;
    FileDescriptor file_;
    std::int64_t unflushed_ = 0;
    bool isLeft_ = false;
    bool isClone_ = false;
};

/// Reads `size` bytes up to the end of a file, handing each chunk to `take`. Returns their digest.
template <typename Take>
QString digestOf(int file, std::int64_t size, const std::filesystem::path& path,
                 const std::stop_token& stop, Take take) {
    std::vector<std::uint8_t> buffer(
        static_cast<size_t>(std::clamp(size, std::int64_t(1), chunkSize)));
    Sha256 hash;
    std::int64_t done = 0;
    while (true) {
        if (stop.stop_requested())
            throw Cancelled();
        const ssize_t n = ::read(file, buffer.data(), buffer.size());
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw FileError(QStringLiteral("Dosya okunamadı"), path, errno);
        done += n;
        if (n == 0 ? done < size : done > size)
            throwChanged(path);
        if (n == 0)
            return QString::fromLatin1(hash.finish().toHex());
        const ByteView chunk(buffer.data(), static_cast<size_t>(n));
        hash.add(QByteArrayView(chunk.data(), n));
        take(chunk);
    }
}

/// What the version still has, now that it was read.
SourceContent settled(const FileDescriptor& original, const std::filesystem::path& path,
                      const FileVersion& before, const QString& digest) {
    if (fileVersion(original.get(), path) != before)
        throwChanged(path);
    return {digest, before, contentSample(original, path)};
}

} // namespace

FileDescriptor openOriginal(const std::filesystem::path& file) {
    return requireRegularFile(openFile(file, readFlags), file);
}

FileDescriptor openFolderOf(const std::filesystem::path& root,
                            const std::filesystem::path& relative) {
    const std::filesystem::path path = root / relative;
    if (relative.empty() || relative.is_absolute())
        throw FileError(QStringLiteral("Dosya açılamadı"), path, EACCES);
    FileDescriptor folder = openFile(root, O_RDONLY | O_DIRECTORY);
    const std::filesystem::path parent = relative.parent_path();
    for (const std::filesystem::path& name : parent) {
        if (name == "..")
            throw FileError(QStringLiteral("Dosya açılamadı"), path, EACCES);
        folder = openIn(folder, name, readFlags | O_DIRECTORY, path);
    }
    return folder;
}

FileDescriptor openOriginalBeneath(const std::filesystem::path& root,
                                   const std::filesystem::path& relative) {
    const std::filesystem::path path = root / relative;
    return requireRegularFile(
        openIn(openFolderOf(root, relative), relative.filename(), readFlags, path), path);
}

SourceContent readContent(const FileDescriptor& original, const std::filesystem::path& originalPath,
                          const std::stop_token& stop) {
    const FileVersion before = fileVersion(original.get(), originalPath);
    const QString digest =
        digestOf(original.get(), before.size, originalPath, stop, [](ByteView) {});
    return settled(original, originalPath, before, digest);
}

SourceContent exportFile(const FileDescriptor& original, const std::filesystem::path& originalPath,
                         const std::filesystem::path& destination, const std::stop_token& stop) {
    struct stat there {};
    if (::lstat(destination.c_str(), &there) == 0)
        throw FileError(QStringLiteral("Dosya kopyalanamadı"), destination, EEXIST);
    const FileVersion before = fileVersion(original.get(), originalPath);
    PartFile part(destination, original);
    QString digest;
    try {
        if (part.isClone()) {
            digest = digestOf(part.fd(), before.size, originalPath, stop, [](ByteView) {});
        } else {
            requireRoom(before.size, destination);
            digest = digestOf(original.get(), before.size, originalPath, stop,
                              [&part](ByteView chunk) { part.write(chunk); });
        }
    } catch (const Cancelled&) {
        part.leaveIfLarge();
        throw;
    }
    SourceContent content = settled(original, originalPath, before, digest);
    part.setModified(before.modified);
    part.publish(destination, before.size);
    return content;
}

std::int64_t contentSample(const FileDescriptor& original,
                           const std::filesystem::path& originalPath) {
    const std::int64_t size = fileVersion(original.get(), originalPath).size;
    const auto read = [&](std::int64_t offset) {
        QByteArray bytes(sampledBytes, Qt::Uninitialized);
        const ssize_t n = ::pread(original.get(), bytes.data(), sampledBytes, offset);
        if (n < 0)
            throw FileError(QStringLiteral("Dosya okunamadı"), originalPath, errno);
        bytes.truncate(n);
        return bytes;
    };
    return contentSample(read(0), read(std::max(std::int64_t{0}, size - sampledBytes)), size);
}

std::int64_t contentSample(QByteArrayView beginning, QByteArrayView end, std::int64_t size) {
    Sha256 hash;
    hash.add(beginning);
    hash.add(end);
    std::int64_t sample = 0;
    std::memcpy(&sample, hash.finish().constData(), sizeof sample);
    return sample ^ size;
}

int renameToNew(int fromFolder, const std::filesystem::path& from, int toFolder,
                const std::filesystem::path& to) noexcept {
    const int error = system::renameToNew(fromFolder, from.c_str(), toFolder, to.c_str());
    if (error != ENOTSUP)
        return error;
    // A file system that cannot promise it: what appears in between is not expected.
    struct stat there {};
    if (::fstatat(toFolder, to.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    return ::renameat(fromFolder, from.c_str(), toFolder, to.c_str()) == 0 ? 0 : errno;
}

bool removeInSteps(const std::filesystem::path& file, const std::stop_token& stop) noexcept {
    struct stat status {};
    if (::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1) {
        for (off_t size = status.st_size; size > removalStep; size -= removalStep)
            if (stop.stop_requested() || ::truncate(file.c_str(), size - removalStep) != 0)
                return false;
    }
    return ::unlink(file.c_str()) == 0 || errno == ENOENT;
}

QString resourceFilename(const QString& name, const QString& fallback) {
    constexpr qsizetype limit = 255;
    QString clean = name;
    for (QChar& character : clean)
        if (character == u'/' || character.category() == QChar::Other_Control)
            character = u'_';
    if (clean.isEmpty() || clean == QLatin1String(".") || clean == QLatin1String(".."))
        return fallback;
    const qsizetype dot = clean.lastIndexOf(u'.');
    QString extension = dot > 0 ? clean.mid(dot) : QString();
    if (extension.toUtf8().size() > 16)
        extension.clear();
    QString base = clean.chopped(extension.size());
    while (base.toUtf8().size() + extension.toUtf8().size() > limit)
        base.chop(base.size() > 1 && base.back().isLowSurrogate() ? 2 : 1);
    return base + extension;
}

} // namespace quorvane

#include "library/FileExport.h"

#include "library/PhotoLibrary.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/fs.h>
#endif

namespace quorvane {

namespace {

constexpr std::int64_t chunkSize = 1 << 20;
/// Dirty pages are written out this often, so that a stop never waits for gigabytes of them.
constexpr std::int64_t flushInterval = 8 << 20;
/// So much of a file is freed within some tens of milliseconds.
constexpr off_t removalStep = 32 << 20;
// O_NONBLOCK: a FIFO that took a file's place must not hang the reader.
constexpr int readFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

struct stat statusOf(const FileDescriptor& file, const std::filesystem::path& path) {
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        throw FileError(QStringLiteral("Dosya okunamadı"), path, errno);
    return status;
}

FileDescriptor requireRegularFile(FileDescriptor file, const std::filesystem::path& path) {
    const mode_t mode = statusOf(file, path).st_mode;
    if (!S_ISREG(mode))
        throw FileError(QStringLiteral("Dosya okunamadı"), path, S_ISDIR(mode) ? EISDIR : EINVAL);
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
        QStringLiteral("Özgün dosya kopyalanırken değişti: %1").arg(pathText(path)));
}

bool cloneWhole(int from, int to) {
#ifdef FICLONE
    return ::ioctl(to, FICLONE, from) == 0;
#else
    return from == to;
#endif
}

/// Bytes copied inside the kernel, 0 or less where it cannot.
ssize_t copyInKernel(int from, int to, size_t count) {
#ifdef __linux__
    return ::copy_file_range(from, nullptr, to, nullptr, count, 0);
#else
    return from == to ? static_cast<ssize_t>(count) : -1;
#endif
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
    PartFile(const std::filesystem::path& destination, const std::stop_token& stop)
        : path_(destination.parent_path() / ("." + destination.filename().native() + ".part")) {
        if (!removeInSteps(path_, stop) && stop.stop_requested())
            throw Cancelled();
        file_ = openFile(path_, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
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
    const std::filesystem::path& path() const { return path_; }

    /// The content is flushed first, so that a whole name never stands for half a file. The folder
    /// is not: a name that a power cut takes back is exported again.
    void publish(const std::filesystem::path& destination) {
        flushFile(file_.get(), path_);
        if (::rename(path_.c_str(), destination.c_str()) != 0)
            throw FileError(QStringLiteral("Dosya yerine konamadı"), destination, errno);
        file_ = FileDescriptor();
    }

  private:
    std::filesystem::path path_;
    FileDescriptor file_;
    bool isLeft_ = false;
};

class Copy {
  public:
    Copy(int from, const std::filesystem::path& originalPath, const PartFile& part)
        : from_(from), originalPath_(originalPath), part_(part) {}

    void run(std::int64_t size, const std::stop_token& stop) {
        std::int64_t flushed = 0;
        for (std::int64_t done = 0; done < size;) {
            if (stop.stop_requested())
                throw Cancelled();
            done += chunk(static_cast<size_t>(std::min(chunkSize, size - done)));
            if (done - flushed >= flushInterval) {
                flushFile(part_.fd(), part_.path());
                flushed = done;
            }
        }
        if (stop.stop_requested())
            throw Cancelled();
    }

  private:
    ssize_t chunk(size_t count) {
        if (inKernel_) {
            const ssize_t copied = copyInKernel(from_, part_.fd(), count);
            if (copied > 0)
                return copied;
            inKernel_ = false; // Streaming either works or says what is wrong.
        }
        buffer_.resize(chunkSize);
        ssize_t n = 0;
        do {
            n = ::read(from_, buffer_.data(), count);
        } while (n < 0 && errno == EINTR);
        if (n < 0)
            throw FileError(QStringLiteral("Dosya okunamadı"), originalPath_, errno);
        if (n == 0)
            throwChanged(originalPath_);
        writeAll(part_.fd(), {buffer_.data(), static_cast<size_t>(n)}, part_.path());
        return n;
    }

    int from_;
    const std::filesystem::path& originalPath_;
    const PartFile& part_;
    bool inKernel_ = true;
    std::vector<std::uint8_t> buffer_;
};

} // namespace

FileDescriptor openOriginal(const std::filesystem::path& file) {
    return requireRegularFile(openFile(file, readFlags), file);
}

FileDescriptor openOriginalBeneath(const std::filesystem::path& root,
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
    return requireRegularFile(openIn(folder, relative.filename(), readFlags, path), path);
}

void exportFile(const FileDescriptor& original, const std::filesystem::path& originalPath,
                const std::filesystem::path& destination, std::stop_token stop) {
    struct stat there {};
    if (::lstat(destination.c_str(), &there) == 0)
        throw FileError(QStringLiteral("Dosya kopyalanamadı"), destination, EEXIST);
    const struct stat before = statusOf(original, originalPath);
    PartFile part(destination, stop);
    if (!cloneWhole(original.get(), part.fd())) {
        requireRoom(before.st_size, destination);
        try {
            Copy(original.get(), originalPath, part).run(before.st_size, stop);
        } catch (const Cancelled&) {
            part.leaveIfLarge();
            throw;
        }
    }
    const struct stat after = statusOf(original, originalPath);
    if (after.st_size != before.st_size || after.st_mtim.tv_sec != before.st_mtim.tv_sec ||
        after.st_mtim.tv_nsec != before.st_mtim.tv_nsec)
        throwChanged(originalPath);
    const struct timespec times[2] = {{0, UTIME_OMIT}, before.st_mtim};
    if (::futimens(part.fd(), times) != 0)
        throw FileError(QStringLiteral("Dosyanın tarihi yazılamadı"), part.path(), errno);
    part.publish(destination);
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
    constexpr qsizetype limit = 200;
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

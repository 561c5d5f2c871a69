#include "foundation/Crypto.h"
#include "foundation/File.h"
#include "library/FileExport.h"
#include "platform/macos/PhotoKitLibrary.h"
#include "platform/macos/PhotoKitResources.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvane {

namespace {

/// PhotoKit's version before and after: what differs was edited meanwhile.
FileVersion settledVersion(const PhotoAssetResource& resource,
                           const std::optional<FileVersion>& before) {
    const auto after = photokit::versionOf(resource);
    if (!before || after != before)
        throw PhotoLibraryError(
            QStringLiteral("Özgün dosya okunurken değişti: %1").arg(resource.originalFilename));
    return *after;
}

/// Digest and sample of bytes that come one after another.
class StreamedContent {
  public:
    void add(ByteView bytes) {
        const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
        hash_.add(view);
        size_ += view.size();
        beginning_.append(view.first(std::min(view.size(), sampledBytes - beginning_.size())));
        end_ += view.last(std::min<qsizetype>(view.size(), sampledBytes));
        end_.remove(0, std::max<qsizetype>(0, end_.size() - sampledBytes));
    }

    SourceContent finish(const FileVersion& version) {
        return {QString::fromLatin1(hash_.finish().toHex()), version,
                contentSample(beginning_, end_, size_)};
    }

  private:
    Sha256 hash_;
    QByteArray beginning_, end_; ///< at most `sampledBytes` each
    std::int64_t size_ = 0;
};

void giveDate(const std::filesystem::path& file, const FileVersion& version) {
    constexpr std::int64_t second = 1'000'000'000;
    if (version.modified <= 0)
        return;
    const struct timespec times[2] = {{0, UTIME_OMIT},
                                      {version.modified / second, version.modified % second}};
    if (::utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
        throw FileError(QStringLiteral("Dosyanın tarihi yazılamadı"), file, errno);
}

/// What was downloaded, flushed and closed to others; then it gets its name.
SourceContent publish(const std::filesystem::path& part, const std::filesystem::path& destination,
                      const FileVersion& version, const std::stop_token& stop) {
    const FileDescriptor file = openOriginal(part);
    SourceContent content = readContent(file, part, stop);
    content.version = version;
    if (::fchmod(file.get(), 0600) != 0)
        throw FileError(QStringLiteral("Dosya kopyalanamadı"), part, errno);
    giveDate(part, version);
    flushFile(file.get(), part);
    if (const int error = renameToNew(AT_FDCWD, part, AT_FDCWD, destination))
        throw FileError(QStringLiteral("Dosya yerine konamadı"), destination, error);
    return content;
}

} // namespace

SourceContent PhotoKitLibrary::writeData(const PhotoAssetResource& resource,
                                         const std::filesystem::path& destination,
                                         std::stop_token stop) {
    requireReadable();
    struct stat there {};
    if (::lstat(destination.c_str(), &there) == 0)
        throw FileError(QStringLiteral("Dosya kopyalanamadı"), destination, EEXIST);
    if (stop.stop_requested())
        throw Cancelled();
    const std::filesystem::path part =
        destination.parent_path() / ("." + secureRandomBytes(8).toHex().toStdString() + ".part");
    const auto before = photokit::versionOf(resource);
    try {
        photokit::download(resource, part, stop);
        return publish(part, destination, settledVersion(resource, before), stop);
    } catch (...) {
        removeInSteps(part, stop);
        throw;
    }
}

SourceContent PhotoKitLibrary::readContent(const PhotoAssetResource& resource,
                                           std::stop_token stop) {
    requireReadable();
    if (stop.stop_requested())
        throw Cancelled();
    const auto before = photokit::versionOf(resource);
    StreamedContent content;
    photokit::read(
        resource, [&](ByteView bytes) { content.add(bytes); }, stop);
    return content.finish(settledVersion(resource, before));
}

} // namespace quorvane

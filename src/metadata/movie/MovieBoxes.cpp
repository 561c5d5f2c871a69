#include "metadata/movie/MovieBoxes.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

MovieFile::MovieFile(const std::filesystem::path& path, int flags)
    : path_(path), file_(openFile(path, flags)) {
    struct stat info {};
    if (::fstat(file_.get(), &info) != 0)
        throw FileError(QStringLiteral("Dosya okunamadı"), path_, errno);
    size_ = static_cast<std::uint64_t>(info.st_size);
}

QByteArray MovieFile::read(std::uint64_t offset, std::uint64_t count) const {
    QByteArray bytes(static_cast<qsizetype>(count), Qt::Uninitialized);
    qsizetype filled = 0;
    while (filled < bytes.size()) {
        const ssize_t n =
            ::pread(file_.get(), bytes.data() + filled, static_cast<size_t>(bytes.size() - filled),
                    static_cast<off_t>(offset) + filled);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw FileError(QStringLiteral("Dosya okunamadı"), path_, errno);
        if (n == 0)
            break;
        filled += n;
    }
    bytes.truncate(filled);
    return bytes;
}

void MovieFile::write(std::uint64_t offset, const QByteArray& bytes) const {
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t n = ::pwrite(file_.get(), bytes.constData() + written,
                                   static_cast<size_t>(bytes.size() - written),
                                   static_cast<off_t>(offset) + written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw FileError(QStringLiteral("Dosyaya yazılamadı"), path_, errno);
        written += n;
    }
}

void MovieFile::flush() const noexcept {
    ::fsync(file_.get());
}

std::optional<MovieBox> MovieBoxes::Children::next() {
    constexpr std::uint64_t shortHeader = 8;
    constexpr std::uint64_t longHeader = 16;
    if (!offset_ || parent_.end < shortHeader || *offset_ > parent_.end - shortHeader)
        return std::nullopt;
    const std::uint64_t start = *offset_;
    offset_.reset(); // whatever is wrong from here on ends the walk

    const std::uint64_t room = parent_.end - start;
    const QByteArray header = boxes_.file_.read(start, std::min(room, longHeader));
    ByteReader reader(viewOf(header));
    if (reader.remaining() < shortHeader)
        return std::nullopt;
    std::uint64_t size = reader.u32();
    MovieBox box{reader.u32(), start + shortHeader, 0, parent_.level + 1};
    if (size == 1) {
        if (reader.remaining() < longHeader - shortHeader)
            return std::nullopt;
        size = reader.u64();
        box.payload = start + longHeader;
    }
    if (size < box.payload - start)
        return std::nullopt;
    boxes_.countBox();
    box.end = start + std::min(size, room);
    if (size <= std::numeric_limits<std::uint64_t>::max() - start)
        offset_ = start + size;
    return box;
}

MovieBoxes::Children MovieBoxes::childrenOf(const MovieBox& parent, std::uint64_t skip) {
    if (parent.level >= limits_.nesting)
        throw ParseError(QStringLiteral("Film kutuları çok derin iç içe"));
    return {*this, parent, parent.payload + skip};
}

std::optional<MovieBox> MovieBoxes::find(const MovieBox& parent, std::uint32_t type,
                                         std::uint64_t skip) {
    Children children = childrenOf(parent, skip);
    while (const auto child = children.next())
        if (child->type == type)
            return child;
    return std::nullopt;
}

QByteArray MovieBoxes::head(const MovieBox& box, std::uint64_t count) const {
    return file_.read(box.payload, std::min(count, box.end - box.payload));
}

QByteArray MovieBoxes::text(const MovieBox& box) const {
    if (box.end - box.payload > limits_.textBytes)
        throw ParseError(QStringLiteral("Film kutusundaki metin çok uzun"));
    return head(box, limits_.textBytes);
}

void MovieBoxes::countBox() {
    if (limits_.stop.stop_requested())
        throw Cancelled();
    if (++counted_ > limits_.boxes)
        throw ParseError(QStringLiteral("Filmde çok fazla kutu var"));
}

} // namespace quorvane

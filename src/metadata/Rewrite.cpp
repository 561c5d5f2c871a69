#include "metadata/Rewrite.h"

#include "foundation/System.h"

#include <algorithm>
#include <cerrno>

#include <unistd.h>

namespace quorvane {

namespace {

/// `range` is of the source. Throws `FileError`, also for what made the system's own copy stop.
void copyTo(int fd, const MappedFile& source, ByteView range, const std::filesystem::path& path,
            const std::stop_token& stop) {
    constexpr size_t atOnce = 64U << 20; // a stop is heeded between two of these
    while (!range.empty()) {
        if (stop.stop_requested())
            throw Cancelled();
        const ByteView part = range.first(std::min(range.size(), atOnce));
        const auto offset = static_cast<std::uint64_t>(part.data() - source.bytes().data());
        // A third cheaper than to write it from the mapping.
        writeAll(fd, part.subspan(system::copyRange(source.descriptor(), offset, part.size(), fd)),
                 path);
        range = range.subspan(part.size());
    }
}

} // namespace

ByteView Rewrite::Piece::in(ByteView source) const {
    if (bytes)
        return viewOf(*bytes);
    if (offset > source.size() || length > source.size() - offset)
        throw ContainerError(QStringLiteral("Parça kaynağın dışında"));
    return source.subspan(offset, length);
}

void Rewrite::keep(std::uint64_t offset, std::uint64_t length) {
    if (length == 0)
        return;
    if (!pieces_.empty() && !pieces_.back().bytes &&
        pieces_.back().offset + pieces_.back().length == offset)
        pieces_.back().length += length;
    else
        pieces_.push_back({offset, length, std::nullopt});
}

void Rewrite::insert(QByteArray bytes) {
    if (!bytes.isEmpty())
        pieces_.push_back({0, static_cast<std::uint64_t>(bytes.size()), std::move(bytes)});
}

std::uint64_t Rewrite::size() const {
    std::uint64_t total = 0;
    for (const Piece& piece : pieces_)
        total += piece.length;
    return total;
}

bool Rewrite::isIdentity(ByteView source) const {
    if (size() != source.size())
        return false;
    std::uint64_t at = 0;
    for (const Piece& piece : pieces_) {
        const bool inPlace = !piece.bytes && piece.offset == at;
        if (!inPlace && !std::ranges::equal(piece.in(source), source.subspan(at, piece.length)))
            return false;
        at += piece.length;
    }
    return true;
}

bool Rewrite::isPatch(ByteView source) const {
    std::uint64_t at = 0;
    for (const Piece& piece : pieces_) {
        if (!piece.bytes && piece.offset != at)
            return false;
        at += piece.length;
    }
    return at == source.size();
}

/// One copy and the new bytes over it, where nothing moves: piece by piece, every page behind an
/// odd offset would be written twice.
void Rewrite::patchTo(int fd, const MappedFile& source, const std::filesystem::path& path,
                      const std::stop_token& stop) const {
    copyTo(fd, source, source.bytes(), path, stop);
    std::uint64_t at = 0;
    for (const Piece& piece : pieces_) {
        if (piece.bytes) {
            if (::lseek(fd, static_cast<off_t>(at), SEEK_SET) < 0)
                throw FileError(QStringLiteral("Dosyaya yazılamadı"), path, errno);
            writeAll(fd, viewOf(*piece.bytes), path);
        }
        at += piece.length;
    }
}

void Rewrite::writeTo(int fd, const MappedFile& source, const std::filesystem::path& path,
                      const std::stop_token& stop) const {
    if (isPatch(source.bytes()))
        return patchTo(fd, source, path, stop);
    for (const Piece& piece : pieces_) {
        const ByteView bytes = piece.in(source.bytes());
        if (piece.bytes)
            writeAll(fd, bytes, path);
        else
            copyTo(fd, source, bytes, path, stop);
    }
}

QByteArray Rewrite::apply(ByteView source) const {
    QByteArray result;
    result.reserve(static_cast<qsizetype>(size()));
    for (const Piece& piece : pieces_) {
        const ByteView part = piece.in(source);
        result.append(reinterpret_cast<const char*>(part.data()),
                      static_cast<qsizetype>(part.size()));
    }
    return result;
}

} // namespace quorvane

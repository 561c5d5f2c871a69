#include "metadata/Rewrite.h"

#include "foundation/File.h"

#include <algorithm>

namespace quorvane {

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

void Rewrite::writeTo(int fd, ByteView source, const std::filesystem::path& path) const {
    for (const Piece& piece : pieces_)
        writeAll(fd, piece.in(source), path);
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

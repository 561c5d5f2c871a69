#pragma once

#include "foundation/ByteReader.h"
#include "metadata/MappedFile.h"

#include <QByteArray>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <vector>

namespace quorvane {

/// A container whose layout cannot be rewritten with certainty; the description says why.
class ContainerError : public Error {
  public:
    using Error::Error;
};

/// A new file, told as pieces of the old one and new bytes between them. Writing it copies only;
/// nothing is held in memory but the new bytes. Offsets and lengths are in bytes.
class Rewrite {
  public:
    /// The next part of the new file is this range of the source.
    void keep(std::uint64_t offset, std::uint64_t length);

    /// The next part of the new file is these bytes.
    void insert(QByteArray bytes);

    /// The length of the new file.
    std::uint64_t size() const;

    /// True when the new file has the very bytes of `source`.
    bool isIdentity(ByteView source) const;

    /// Writes the new file at the descriptor's position. Throws `FileError` naming `path`, and
    /// `Cancelled` when `stop` is requested.
    void writeTo(int fd, const MappedFile& source, const std::filesystem::path& path,
                 const std::stop_token& stop = {}) const;

    /// The new file in memory.
    QByteArray apply(ByteView source) const;

  private:
    struct Piece {
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
        std::optional<QByteArray> bytes; ///< when set, the piece; else a range of the source

        ByteView in(ByteView source) const;
    };

    /// True when every kept range stays where it is.
    bool isPatch(ByteView source) const;
    void patchTo(int fd, const MappedFile& source, const std::filesystem::path& path,
                 const std::stop_token& stop) const;

    std::vector<Piece> pieces_;
};

} // namespace quorvane

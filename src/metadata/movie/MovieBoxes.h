#pragma once

#include "foundation/ByteReader.h"
#include "foundation/File.h"

#include <QByteArray>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>

/// The box structure of MP4 and QuickTime movies (ISO/IEC 14496-12, QuickTime File Format), read
/// from the file header by header: media data is never touched. Offsets and lengths are in bytes.
namespace quorvane {

/// In bytes: two empty boxes.
inline constexpr std::uint64_t smallestMovie = 16;

/// What a movie may ask of its reader; beyond it the reader gives up with `ParseError`.
struct MovieLimits {
    unsigned nesting = 8;
    std::uint64_t boxes = 100'000;
    std::uint64_t textBytes = 1 << 16; ///< of a list of keys, or of one text
    std::stop_token stop = {};         ///< when requested, `Cancelled` is thrown
};

/// An open movie. Throws `FileError` where the system refuses.
class MovieFile {
  public:
    /// `flags` as of open(2).
    MovieFile(const std::filesystem::path& path, int flags);

    const std::filesystem::path& path() const { return path_; }
    std::uint64_t size() const { return size_; }

    /// The bytes there: `count` of them, fewer where the file ends.
    QByteArray read(std::uint64_t offset, std::uint64_t count) const;

    void write(std::uint64_t offset, const QByteArray& bytes) const;

    /// Hands the written bytes to the disk; whether it took them is not reported.
    void flush() const noexcept;

  private:
    std::filesystem::path path_;
    FileDescriptor file_;
    std::uint64_t size_ = 0;
};

/// The four characters of a box type as the number they are stored as.
constexpr std::uint32_t boxType(const char (&text)[5]) {
    std::uint32_t type = 0;
    for (int i = 0; i < 4; ++i)
        type = (type << 8) | static_cast<std::uint8_t>(text[i]);
    return type;
}

/// A box: its payload is the range from `payload` to `end`, both inside its parent.
struct MovieBox {
    std::uint32_t type = 0;
    std::uint64_t payload = 0;
    std::uint64_t end = 0;
    unsigned level = 0; ///< 0 is the file itself
};

/// Walks the boxes of one file. All walks of an object together keep to its limits.
class MovieBoxes {
  public:
    MovieBoxes(const MovieFile& file, const MovieLimits& limits) : file_(file), limits_(limits) {}

    /// The children of a box, one after the other. What is not a box ends the walk in silence: the
    /// end of the range, a size below the header's, a size that runs past all numbers.
    class Children {
      public:
        std::optional<MovieBox> next();

      private:
        friend class MovieBoxes;
        Children(MovieBoxes& boxes, const MovieBox& parent, std::uint64_t start)
            : boxes_(boxes), parent_(parent), offset_(start) {}

        MovieBoxes& boxes_;
        MovieBox parent_;
        std::optional<std::uint64_t> offset_;
    };

    /// The whole file, as the parent of its top-level boxes.
    MovieBox file() const { return {0, 0, file_.size(), 0}; }

    /// The children that start `skip` bytes behind the start of the payload.
    Children childrenOf(const MovieBox& parent, std::uint64_t skip = 0);

    /// The first child of this type.
    std::optional<MovieBox> find(const MovieBox& parent, std::uint32_t type,
                                 std::uint64_t skip = 0);

    /// The first bytes of a payload: `count` of them, fewer where the payload or the file ends.
    QByteArray head(const MovieBox& box, std::uint64_t count) const;

    /// The whole payload. Throws `ParseError` when it is longer than a text may be.
    QByteArray text(const MovieBox& box) const;

  private:
    void countBox();

    const MovieFile& file_;
    MovieLimits limits_;
    std::uint64_t counted_ = 0;
};

} // namespace quorvane

#include "metadata/movie/MovieDates.h"

#include "metadata/LocalCalendar.h"
#include "metadata/movie/MoviePatch.h"

#include <QByteArrayList>

#include <algorithm>
#include <string_view>

#include <fcntl.h>

namespace quorvane {

namespace {

constexpr std::uint32_t dayType = boxType("\xA9"
                                          "day");
constexpr int yearOfMovieEpoch = 1904;
constexpr int yearOfReencodings = 2026;

/// A movie clock that was never set says 1904. A date of 2026 is the stamp of a re-encoding rather
/// than of a capture, unless the file's name agrees.
std::optional<Date> trusted(std::optional<Date> date, const QString& name) {
    date = writableDate(date);
    if (!date)
        return std::nullopt;
    const int year = localYear(*date);
    const bool reencoded =
        year == yearOfReencodings && !name.contains(QString::number(yearOfReencodings));
    return year <= yearOfMovieEpoch || reencoded ? std::nullopt : date;
}

std::optional<Date> headerDate(MovieBoxes& boxes, const MovieBox& moov) {
    const auto mvhd = boxes.find(moov, boxType("mvhd"));
    if (!mvhd)
        return std::nullopt;
    const QByteArray head = boxes.head(*mvhd, 12);
    ByteReader reader(viewOf(head));
    const unsigned version = reader.u8();
    if (version > 1)
        return std::nullopt;
    reader.skip(3);
    const std::uint64_t time = version == 0 ? reader.u32() : reader.u64();
    if (time < movieEpochOffset)
        return std::nullopt;
    return dateFromUnixSeconds(static_cast<double>(time - movieEpochOffset));
}

/// The texts of a movie that tell when it was made. An unreadable one ends the search of its kind.
class CreationTexts {
  public:
    CreationTexts(MovieBoxes& boxes, const MovieBox& moov) : boxes_(boxes), moov_(moov) {}

    /// The first text that holds a date which passes.
    std::optional<Date> firstTrusted(const QString& name) {
        for (const auto& kind : {&CreationTexts::quickTimeKey, &CreationTexts::keyOfUserData,
                                 &CreationTexts::userData, &CreationTexts::iTunesItem}) {
            try {
                for (const QByteArray& text : (this->*kind)())
                    if (const auto date = trusted(parseIsoDate(QString::fromUtf8(text)), name))
                        return date;
            } catch (const ParseError&) {
                continue;
            }
        }
        return std::nullopt;
    }

  private:
    QByteArrayList quickTimeKey() { return keyIn(moov_); }

    QByteArrayList keyOfUserData() {
        const auto udta = boxes_.find(moov_, boxType("udta"));
        return udta ? keyIn(*udta) : QByteArrayList();
    }

    QByteArrayList keyIn(const MovieBox& parent) {
        const auto meta = boxes_.find(parent, boxType("meta"));
        if (!meta)
            return {};
        const std::uint64_t skip = headerOfMeta(*meta);
        const auto keys = boxes_.find(*meta, boxType("keys"), skip);
        const auto list = boxes_.find(*meta, boxType("ilst"), skip);
        const std::uint32_t index = keys ? indexOfCreationDate(boxes_.text(*keys)) : 0;
        return list && index ? items(*list, index) : QByteArrayList();
    }

    QByteArrayList userData() {
        QByteArrayList texts;
        const auto udta = boxes_.find(moov_, boxType("udta"));
        if (!udta)
            return texts;
        auto children = boxes_.childrenOf(*udta);
        while (const auto child = children.next()) {
            if (child->type == dayType)
                texts += internationalText(boxes_.text(*child));
            else if (child->type == boxType("date"))
                texts += isoUserText(boxes_.text(*child));
        }
        return texts;
    }

    QByteArrayList iTunesItem() {
        const auto udta = boxes_.find(moov_, boxType("udta"));
        const auto meta = udta ? boxes_.find(*udta, boxType("meta")) : std::nullopt;
        const auto list =
            meta ? boxes_.find(*meta, boxType("ilst"), headerOfMeta(*meta)) : std::nullopt;
        return list ? items(*list, dayType) : QByteArrayList();
    }

    /// ISO gives `meta` four bytes of version and flags, QuickTime does not.
    std::uint64_t headerOfMeta(const MovieBox& meta) const {
        return boxes_.head(meta, 8).endsWith("hdlr") ? 0 : 4;
    }

    /// The number, from 1, under which the items of the list stand for the creation date; 0: none.
    static std::uint32_t indexOfCreationDate(const QByteArray& keys) {
        ByteReader reader(viewOf(keys));
        reader.skip(4);
        const std::uint32_t count = reader.u32();
        for (std::uint32_t index = 1; index <= count; ++index) {
            constexpr std::uint32_t header = 8;
            const std::uint32_t size = reader.u32();
            if (size < header)
                return 0;
            const bool metadataKey = reader.u32() == boxType("mdta");
            const ByteView name = reader.take(size - header);
            if (metadataKey &&
                std::ranges::equal(name, std::string_view("com.apple.quicktime.creationdate")))
                return index;
        }
        return 0;
    }

    /// The values of the list's items of one type, without their type and locale words.
    QByteArrayList items(const MovieBox& list, std::uint32_t type) {
        QByteArrayList texts;
        auto children = boxes_.childrenOf(list);
        while (const auto item = children.next())
            if (item->type == type)
                if (const auto data = boxes_.find(*item, boxType("data")))
                    texts += boxes_.text(*data).mid(8);
        return texts;
    }

    /// A length, a language, the text; further languages follow and say the same.
    static QByteArray internationalText(const QByteArray& bytes) {
        ByteReader reader(viewOf(bytes));
        const std::uint16_t length = reader.u16();
        reader.skip(2);
        return bytes.mid(4, length);
    }

    /// Version and flags, in some files a language, and a text that may end with a NUL.
    static QByteArray isoUserText(const QByteArray& bytes) {
        const bool language = bytes.size() > 4 && (bytes[4] < '0' || bytes[4] > '9');
        return bytes.mid(language ? 6 : 4).split('\0').first();
    }

    MovieBoxes& boxes_;
    MovieBox moov_;
};

/// What `read` finds in the file's first `moov` box; none for whatever is wrong with the file.
template <typename Read>
std::optional<Date> readMovie(const std::filesystem::path& path, const MovieLimits& limits,
                              Read&& read) {
    try {
        const MovieFile file(path, O_RDONLY);
        if (file.size() < smallestMovie)
            return std::nullopt;
        MovieBoxes boxes(file, limits);
        const auto moov = boxes.find(boxes.file(), boxType("moov"));
        return moov ? read(boxes, *moov) : std::nullopt;
    } catch (const std::exception& error) {
        if (isSystems(error))
            throw;
        return std::nullopt;
    }
}

QString nameOf(const std::filesystem::path& path, const QString& originalName) {
    return originalName.isEmpty() ? pathText(path.filename()) : originalName;
}

} // namespace

std::optional<Date> readMP4CreationDate(const std::filesystem::path& path,
                                        const MovieLimits& limits, const QString& originalName) {
    return readMovie(path, limits, [&](MovieBoxes& boxes, const MovieBox& moov) {
        return trusted(headerDate(boxes, moov), nameOf(path, originalName));
    });
}

std::optional<Date> readExistingVideoDate(const std::filesystem::path& path,
                                          const MovieLimits& limits, const QString& originalName) {
    if (const auto date = readMP4CreationDate(path, limits, originalName))
        return date;
    return readMovie(path, limits, [&](MovieBoxes& boxes, const MovieBox& moov) {
        return CreationTexts(boxes, moov).firstTrusted(nameOf(path, originalName));
    });
}

} // namespace quorvane

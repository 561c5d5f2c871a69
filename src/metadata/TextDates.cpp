#include "metadata/TextDates.h"

#include "metadata/LocalCalendar.h"
#include "metadata/MappedFile.h"

#include <QDateTime>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <string_view>

namespace quorvane {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t headSize = 256 << 10;
constexpr std::size_t tailSize = 64 << 10;
constexpr std::size_t packetLimit = 256 << 10;

std::string_view textOf(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

QString latin(std::string_view text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

/// Every other form that a date is written in: Exif's own, and the one of mail headers, which the
/// PNG standard recommends (ISO/IEC 15948).
std::optional<Date> anyDate(const QString& text) {
    if (const auto date = parseTypedDate(text))
        return date;
    if (const auto date = parseExifDate(text))
        return date;
    const QDateTime mail = QDateTime::fromString(text.trimmed(), Qt::RFC2822Date);
    return mail.isValid() ? std::optional(Date(std::chrono::milliseconds(mail.toMSecsSinceEpoch())))
                          : std::nullopt;
}

/// The properties that tell when a picture was taken (ISO 16684-1), the surest first.
constexpr std::array<const char16_t*, 3> properties{u"DateTimeOriginal", u"DateCreated",
                                                    u"CreateDate"};

/// A property is an attribute of a description, or an element of its own.
std::optional<Date> dateInPacket(std::string_view packet) {
    QXmlStreamReader xml(
        QByteArray::fromRawData(packet.data(), static_cast<qsizetype>(packet.size())));
    std::array<std::optional<Date>, properties.size()> found;
    const auto take = [&](QStringView name, const QString& value) {
        for (std::size_t i = 0; i < properties.size(); ++i)
            if (name == properties.at(i) && !found.at(i))
                found.at(i) = writableDate(anyDate(value));
    };
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        for (const QXmlStreamAttribute& attribute : xml.attributes())
            take(attribute.name(), attribute.value().toString());
        const QString name = xml.name().toString();
        if (std::ranges::find(properties, name, [](const char16_t* property) {
                return QString::fromUtf16(property);
            }) != properties.end())
            take(name, xml.readElementText(QXmlStreamReader::SkipChildElements));
    }
    const auto first = std::ranges::find_if(found, [](const auto& date) { return bool(date); });
    return first == found.end() ? std::nullopt : *first;
}

std::optional<Date> xmpDate(std::string_view text) {
    const auto begin = text.find("<x:xmpmeta"sv);
    if (begin == std::string_view::npos)
        return std::nullopt;
    constexpr auto end = "</x:xmpmeta>"sv;
    const auto at = text.substr(begin, packetLimit).find(end);
    return at == std::string_view::npos ? std::nullopt
                                        : dateInPacket(text.substr(begin, at + end.size()));
}

/// What follows a dataset's marker, number and length (IPTC-NAA IIM 4.1): `digits` and more.
std::string_view dataset(std::string_view text, std::string_view marker, std::size_t size) {
    const auto at = text.find(marker);
    return at == std::string_view::npos ? std::string_view()
                                        : text.substr(at + marker.size(), size);
}

/// 2:55 is the day, "20190503", and 2:60 the time with its zone, "142210+0300".
std::optional<Date> iptcDate(std::string_view text) {
    const QString day = latin(dataset(text, "\x1C\x02\x37\0\x08"sv, 8));
    if (day.size() != 8)
        return std::nullopt;
    const QString iso = QStringLiteral("%1-%2-%3").arg(day.left(4), day.mid(4, 2), day.right(2));
    const QString time = latin(dataset(text, "\x1C\x02\x3C\0\x0B"sv, 11));
    if (time.size() == 11)
        if (const auto date = parseIsoDate(
                QStringLiteral("%1T%2:%3:%4%5")
                    .arg(iso, time.left(2), time.mid(2, 2), time.mid(4, 2), time.right(5))))
            return date;
    return parseIsoDate(iso);
}

/// A text chunk's keyword (ISO/IEC 15948, "Keywords and text strings") and its text.
std::optional<Date> pngDate(std::string_view text) {
    for (const auto keyword : {"tEXtCreation Time\0"sv, "iTXtCreation Time\0\0\0\0\0"sv}) {
        const auto at = text.find(keyword);
        if (at == std::string_view::npos || at < 4)
            continue;
        ByteReader length(viewOf(QByteArrayView(text.data() + at - 4, 4)));
        const std::size_t size = length.u32();
        const std::size_t before = keyword.size() - 4; // the chunk's type is not counted
        if (size <= before || size - before > 100)
            continue;
        if (const auto date = anyDate(latin(text.substr(at + keyword.size(), size - before))))
            return date;
    }
    return std::nullopt;
}

} // namespace

std::vector<TextDate> textDatesIn(ByteView bytes) {
    const std::string_view text = textOf(bytes);
    std::vector<TextDate> dates;
    const auto add = [&](const std::optional<Date>& date, const QString& form) {
        if (const auto written = writableDate(date))
            dates.push_back({*written, form});
    };
    add(xmpDate(text), QStringLiteral("XMP"));
    add(iptcDate(text), QStringLiteral("IPTC"));
    add(pngDate(text), QStringLiteral("PNG"));
    return dates;
}

std::vector<TextDate> readTextDates(const std::filesystem::path& file) noexcept {
    try {
        const MappedFile mapped(file);
        const ByteView bytes = mapped.bytes();
        if (bytes.size() <= headSize + tailSize)
            return textDatesIn(bytes);
        const auto head = textDatesIn(bytes.first(headSize));
        return head.empty() ? textDatesIn(bytes.last(tailSize)) : head;
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace quorvane

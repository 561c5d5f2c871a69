#include "metadata/heif/HeifBoxes.h"

#include <limits>

namespace quorvane::heif {

namespace {

QString nameOf(std::uint32_t type) {
    QString name;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto character = static_cast<char>((type >> shift) & 0xFF);
        name += character >= 0x20 && character < 0x7F ? QLatin1Char(character) : QLatin1Char('?');
    }
    return name;
}

Box boxAt(ByteView file, std::uint64_t offset, const Range& range) {
    ByteReader reader(bytesOf(file, {offset, range.end() - offset}));
    std::uint64_t length = reader.u32();
    const std::uint32_t type = reader.u32();
    if (length == 1)
        length = reader.u64();
    else if (length == 0 && range == Range{0, file.size()})
        length = reader.size();
    if (length < reader.offset() || length > reader.size())
        throw ParseError(QStringLiteral("“%1” kutusunun boyu geçersiz").arg(nameOf(type)));
    return {type, {offset, length}, {offset + reader.offset(), length - reader.offset()}};
}

} // namespace

void Allowance::spend(std::uint64_t count) {
    if (stop_.stop_requested())
        throw Cancelled();
    if (count > left_)
        throw ParseError(QStringLiteral("Dosyada sınırdan fazla öğe var"));
    left_ -= count;
}

ByteView bytesOf(ByteView file, const Range& range) {
    if (range.offset > file.size() || range.length > file.size() - range.offset)
        throw ParseError(QStringLiteral("Veri dosyanın dışında"));
    return file.subspan(range.offset, range.length);
}

std::vector<Box> boxesIn(ByteView file, const Range& range, Allowance& boxes) {
    std::vector<Box> found;
    for (std::uint64_t at = range.offset; at < range.end(); at = found.back().whole.end()) {
        boxes.spend();
        found.push_back(boxAt(file, at, range));
    }
    return found;
}

std::optional<Box> onlyBox(const std::vector<Box>& boxes, std::uint32_t type) {
    std::optional<Box> found;
    for (const Box& box : boxes) {
        if (box.type != type)
            continue;
        if (found)
            throw ParseError(QStringLiteral("Birden fazla “%1” kutusu var").arg(nameOf(type)));
        found = box;
    }
    return found;
}

Box requiredBox(const std::vector<Box>& boxes, std::uint32_t type) {
    if (const std::optional<Box> box = onlyBox(boxes, type))
        return *box;
    throw ParseError(QStringLiteral("“%1” kutusu yok").arg(nameOf(type)));
}

FullBox::FullBox(ByteView file, const Box& box)
    : reader(bytesOf(file, box.body)),
      version(reader.u8()),
      flags(static_cast<std::uint32_t>(reader.unsignedOf(3))) {}

void ByteWriter::number(std::uint64_t value, unsigned width) {
    for (unsigned i = width; i-- > 0;)
        bytes_.append(static_cast<char>((value >> (8 * i)) & 0xFF));
}

void ByteWriter::fullBoxHeader(std::uint8_t version, std::uint32_t flags) {
    number(version, 1);
    number(flags, 3);
}

void ByteWriter::bytes(ByteView bytes) {
    bytes_.append(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<qsizetype>(bytes.size()));
}

QByteArray boxHeader(std::uint32_t type, std::uint64_t bodyLength) {
    const bool isLong = bodyLength > std::numeric_limits<std::uint32_t>::max() - 8;
    ByteWriter header;
    header.number(isLong ? 1 : bodyLength + 8, 4);
    header.number(type, 4);
    if (isLong)
        header.number(bodyLength + 16, 8);
    return header.take();
}

QByteArray boxOf(std::uint32_t type, const QByteArray& body) {
    return boxHeader(type, static_cast<std::uint64_t>(body.size())) + body;
}

} // namespace quorvane::heif

#include "HeifTestFile.h"

#include <stdexcept>

namespace quorvane::test {

QByteArray tiffBlock(qsizetype length, char filling) {
    return (QByteArray("II\x2A\0\x08\0\0\0\0\0\0\0\0\0", 14) + QByteArray(length, filling))
        .first(length);
}

namespace {

QByteArray piece(const HeifTestItem& item, int index) {
    const qsizetype length = item.bytes.size() / item.extents;
    return item.bytes.mid(index * length, index + 1 < item.extents ? length : -1);
}

} // namespace

QByteArray HeifTestFile::iloc(const Places& places) const {
    const int baseSize = sizes >> 4 & 15;
    QByteArray body = bigEndian(ilocVersion, 1) + bigEndian(0, 3) + bigEndian(sizes, 2) +
                      bigEndian(items.size(), ilocVersion == 2 ? 4 : 2);
    for (const HeifTestItem& item : items) {
        const auto at = places.find(item.id);
        const std::uint64_t base = baseSize > 0 && at != places.end() ? at->second[0] : 0;
        body += bigEndian(item.id, ilocVersion == 2 ? 4 : 2);
        if (ilocVersion > 0)
            body += bigEndian(item.method, 2);
        body += bigEndian(item.dataReference, 2) + bigEndian(base, baseSize) +
                bigEndian(item.extents, 2);
        for (int i = 0; i < item.extents; ++i)
            body += bigEndian(0, sizes & 15) +
                    bigEndian(at != places.end() ? at->second[i] - base : 0, sizes >> 12) +
                    bigEndian(piece(item, i).size(), sizes >> 8 & 15);
    }
    return box("iloc", body);
}

QByteArray HeifTestFile::iinf() const {
    QByteArray body =
        bigEndian(longIds ? 1 : 0, 1) + bigEndian(0, 3) + bigEndian(items.size(), longIds ? 4 : 2);
    for (const HeifTestItem& item : items)
        body += box("infe", bigEndian(longIds ? 3 : 2, 1) + bigEndian(0, 3) +
                                bigEndian(item.id, longIds ? 4 : 2) +
                                bigEndian(item.protection, 2) + item.type + '\0');
    return box("iinf", body);
}

QByteArray HeifTestFile::meta(const Places& places) const {
    const int idSize = longIds ? 4 : 2;
    const QByteArray full = bigEndian(longIds ? 1 : 0, 1) + bigEndian(0, 3);
    QByteArray body(4, '\0');
    body += box("hdlr", QByteArray(8, '\0') + "pict" + QByteArray(13, '\0'));
    body += box("pitm", full + bigEndian(primary, idSize));
    body += iloc(places) + iinf();
    if (!references.empty()) {
        QByteArray iref = full;
        for (const HeifTestReference& reference : references) {
            QByteArray entry = bigEndian(reference.from, idSize);
            entry += bigEndian(reference.to.size(), 2);
            for (const std::uint32_t id : reference.to)
                entry += bigEndian(id, idSize);
            iref += box(reference.type, entry);
        }
        body += box("iref", iref);
    }
    body += box("iprp", box("ipco", "properties"));
    if (!groups.isEmpty())
        body += box("grpl", groups);
    QByteArray idat;
    for (const HeifTestItem& item : items)
        if (item.method == 1)
            idat += item.bytes;
    if (!idat.isEmpty())
        body += box("idat", idat);
    return longMetaSize ? largeBox("meta", body) : box("meta", body);
}

QByteArray HeifTestFile::moov(const Places& places) const {
    const int width = chunkTable == "co64" ? 8 : 4;
    QByteArray table = bigEndian(0, 4) + bigEndian(items.size(), 4);
    for (const HeifTestItem& item : items) // items of the file only: see the tests
        table += bigEndian(places.contains(item.id) ? places.at(item.id)[0] : 0, width);
    const QByteArray url = box("url ", bigEndian(1, 4));
    const QByteArray dref = box("dref", bigEndian(0, 4) + bigEndian(1, 4) + url);
    const QByteArray stbl = box("stbl", box(chunkTable, table) + inTable);
    const QByteArray minf = box("minf", box("dinf", dref) + stbl);
    return box("moov", box("mvhd", "head") + box("trak", box("mdia", minf)));
}

QByteArray HeifTestFile::pass(Places& places) const {
    const Places before = places;
    const auto mediaBoxes = static_cast<std::size_t>(order.count("mdat"));
    std::size_t mediaBox = 0;
    std::uint64_t idatAt = 0;
    for (const HeifTestItem& item : items)
        if (item.method == 1) {
            places[item.id] = {idatAt};
            idatAt += item.bytes.size();
        }
    QByteArray file;
    for (const QByteArray& type : order.split(' ')) {
        if (type == "ftyp") {
            file += box("ftyp", "heic" + bigEndian(0, 4) + "mif1heic");
            file += chunkTable.isEmpty() ? QByteArray() : moov(before);
        } else if (type == "meta") {
            file += meta(before);
        } else if (type.startsWith("mdat")) {
            const qsizetype bodyAt = file.size() + (longMediaSizes ? 16 : 8);
            QByteArray body = "before";
            for (std::size_t i = mediaBox++; i < items.size(); i += mediaBoxes) {
                if (items[i].method != 0)
                    continue;
                std::vector<std::uint64_t>& at = places[items[i].id];
                at.clear();
                for (int extent = 0; extent < items[i].extents; ++extent) {
                    at.push_back(bodyAt + body.size());
                    body += piece(items[i], extent) + "gap";
                }
            }
            if (type == "mdat0")
                file += bigEndian(0, 4) + "mdat" + body;
            else
                file += longMediaSizes ? largeBox("mdat", body) : box("mdat", body);
        } else {
            file += box(type, "private content");
        }
    }
    return file;
}

QByteArray HeifTestFile::build() const {
    Places places;
    pass(places); // the lengths of the boxes
    return pass(places);
}

namespace {

/// Deliberately simple, and nothing of the product's code.
struct Cursor {
    QByteArray bytes;
    qsizetype at = 0;

    QByteArray take(std::uint64_t count) {
        if (count > static_cast<std::uint64_t>(bytes.size() - at))
            throw std::runtime_error("past the end");
        at += static_cast<qsizetype>(count);
        return bytes.sliced(at - static_cast<qsizetype>(count), static_cast<qsizetype>(count));
    }
    std::uint64_t number(unsigned width) {
        std::uint64_t value = 0;
        for (const char byte : take(width))
            value = value << 8 | static_cast<std::uint8_t>(byte);
        return value;
    }
    bool atEnd() const { return at == bytes.size(); }

    std::pair<QByteArray, Cursor> box() {
        std::uint64_t length = number(4);
        const QByteArray type = take(4);
        std::uint64_t header = 8;
        if (length == 1) {
            length = number(8);
            header = 16;
        } else if (length == 0) {
            length = static_cast<std::uint64_t>(bytes.size() - at) + header;
        }
        return {type, {take(length - header)}};
    }
};

void readLocations(Cursor box, const QByteArray& file, const QByteArray& idat,
                   std::map<std::uint32_t, QByteArray>& items) {
    const unsigned version = box.number(1);
    box.take(3);
    const unsigned sizes = box.number(2);
    const std::uint64_t count = box.number(version == 2 ? 4 : 2);
    for (std::uint64_t i = 0; i < count; ++i) {
        QByteArray& bytes = items[box.number(version == 2 ? 4 : 2)];
        const std::uint64_t method = version > 0 ? box.number(2) : 0;
        const bool isElsewhere = box.number(2) != 0 || method == 2;
        const std::uint64_t base = box.number(sizes >> 4 & 15);
        const std::uint64_t extents = box.number(2);
        for (std::uint64_t j = 0; j < extents; ++j) {
            box.number(version > 0 ? sizes & 15 : 0);
            const std::uint64_t offset = base + box.number(sizes >> 12 & 15);
            const std::uint64_t length = box.number(sizes >> 8 & 15);
            Cursor source{method == 1 ? idat : file};
            if (isElsewhere)
                continue;
            source.take(offset);
            bytes += source.take(length);
        }
        if (!box.atEnd() && i + 1 == count)
            throw std::runtime_error("iloc is longer than its entries");
    }
}

void readChunks(Cursor box, const QByteArray& file, std::vector<QByteArray>& chunks) {
    while (!box.atEnd()) {
        auto [type, body] = box.box();
        if (type == "stco" || type == "co64") {
            body.take(8);
            while (!body.atEnd()) {
                Cursor source{file};
                source.take(body.number(type == "stco" ? 4 : 8));
                chunks.push_back(source.take(4));
            }
        } else if (type == "trak" || type == "mdia" || type == "minf" || type == "stbl") {
            readChunks(body, file, chunks);
        }
    }
}

} // namespace

HeifContent::HeifContent(const QByteArray& file) {
    Cursor boxes{file};
    Cursor meta;
    while (!boxes.atEnd()) {
        const auto [type, body] = boxes.box();
        if (type == "meta")
            meta = body;
        else if (type == "moov")
            readChunks(body, file, chunks);
        else if (type != "mdat")
            others.emplace_back(type, body.bytes);
    }
    meta.take(4);
    std::map<QByteArray, Cursor> parts;
    while (!meta.atEnd()) {
        const auto [type, body] = meta.box();
        parts[type] = body;
        if (type != "iloc" && type != "iinf" && type != "iref" && type != "idat")
            metaBoxes.emplace_back(type, body.bytes);
    }
    Cursor& iinf = parts.at("iinf");
    const bool longCount = iinf.number(1) == 1;
    iinf.take(3);
    for (std::uint64_t left = iinf.number(longCount ? 4 : 2); left > 0; --left) {
        Cursor infe = iinf.box().second;
        const std::uint64_t version = infe.number(1);
        const std::uint64_t itemFlags = infe.number(3);
        const std::uint32_t id = infe.number(version == 3 ? 4 : 2);
        infe.take(2);
        types[id] = infe.take(4);
        flags[id] = static_cast<int>(itemFlags);
    }
    if (!iinf.atEnd())
        throw std::runtime_error("iinf has more entries than it says");
    if (const auto found = parts.find("iref"); found != parts.end()) {
        Cursor iref = found->second;
        const unsigned width = iref.number(1) == 1 ? 4 : 2;
        for (iref.take(3); !iref.atEnd();) {
            auto [type, body] = iref.box();
            HeifTestReference reference{type, static_cast<std::uint32_t>(body.number(width)), {}};
            for (body.take(2); !body.atEnd();)
                reference.to.push_back(body.number(width));
            references.push_back(reference);
        }
    }
    primary = parts.at("pitm").bytes.size() == 8 ? Cursor{parts["pitm"].bytes, 4}.number(4)
                                                 : Cursor{parts.at("pitm").bytes, 4}.number(2);
    readLocations(parts.at("iloc"), file, parts["idat"].bytes, items);
}

} // namespace quorvane::test

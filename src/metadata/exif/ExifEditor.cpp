#include "metadata/exif/ExifEditor.h"

#include <algorithm>

namespace quorvane::exif {

using tiff::Directory;
using tiff::Entry;
using tiff::Field;

namespace {

bool startsWith(ByteView bytes, const QByteArray& beginning) {
    return bytes.size() >= static_cast<size_t>(beginning.size()) &&
           std::equal(beginning.begin(), beginning.end(), bytes.begin(),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

} // namespace

void Editor::overwrite(std::uint64_t offset, const QByteArray& bytes) {
    const auto length = static_cast<std::uint64_t>(bytes.size());
    if (startsWith(block_.subspan(offset, length), bytes))
        return;
    const auto [place, isNew] = patches_.try_emplace(offset, bytes);
    const auto behind = std::next(place);
    bool clash = !isNew && place->second != bytes;
    clash |= behind != patches_.end() && behind->first < offset + length;
    if (place != patches_.begin()) {
        const auto before = std::prev(place);
        clash |= before->first + static_cast<std::uint64_t>(before->second.size()) > offset;
    }
    if (clash)
        throw ContainerError(QStringLiteral("Exif alanları birbiriyle çakışıyor"));
}

std::uint64_t Editor::append(const QByteArray& bytes) {
    const std::uint64_t offset = end();
    tail_ += bytes;
    if (tail_.size() % 2 != 0)
        tail_ += '\0'; // everything begins on a word
    return offset;
}

/// A date or an offset of the usual length keeps its place. What does not look like one is never
/// overwritten there: a broken file may point anywhere.
bool Editor::overwriteText(Entry& entry, const Field& field) {
    const auto isOfDates = [](std::uint8_t c) {
        return c == 0 || c == ' ' || c == '+' || c == 'Z' || (c >= '-' && c <= ':');
    };
    if (entry.type != tiff::asciiType || entry.isInline() || entry.count < field.count ||
        fitsInline(field, format_))
        return false;
    const auto value = valueOf(entry, format_, block_);
    if (!value || !std::ranges::all_of(value->first(field.count), isOfDates))
        return false;
    overwrite(entry.slotNumber(format_), field.bytes);
    entry.count = field.count;
    return true;
}

void Editor::set(Directory& directory, const Field& field) {
    bool found = false;
    for (Entry& entry : directory.entries) {
        if (entry.tag != field.tag)
            continue;
        found = true;
        if (field.type == tiff::asciiType && overwriteText(entry, field))
            continue;
        entry = entryOf(field, format_, fitsInline(field, format_) ? 0 : append(field.bytes));
    }
    if (found)
        return;
    const auto behind = std::ranges::find_if(
        directory.entries, [&](const Entry& entry) { return entry.tag > field.tag; });
    directory.entries.insert(
        behind, entryOf(field, format_, fitsInline(field, format_) ? 0 : append(field.bytes)));
}

std::uint64_t Editor::place(const Directory& directory, size_t entriesBefore) {
    if (directory.entries.size() != entriesBefore)
        return append(directoryBytes(directory, format_));
    overwrite(directory.offset + format_.countWidth(), entryBytes(directory.entries, format_));
    return directory.offset;
}

Rewrite Editor::finish() const {
    Rewrite rewrite;
    std::uint64_t at = 0;
    for (const auto& [offset, bytes] : patches_) {
        rewrite.keep(at, offset - at);
        rewrite.insert(bytes);
        at = offset + static_cast<std::uint64_t>(bytes.size());
    }
    rewrite.keep(at, block_.size() - at);
    if (!tail_.isEmpty())
        rewrite.insert(QByteArray(static_cast<qsizetype>(tailAt() - block_.size()), '\0') + tail_);
    return rewrite;
}

} // namespace quorvane::exif

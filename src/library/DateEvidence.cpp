#include "library/DateEvidence.h"

#include "library/ItemNames.h"

#include <algorithm>

namespace quorvane {

namespace {

using std::chrono::days;

constexpr auto sameTime = days(1);    ///< what two files of one picture may differ
constexpr auto widestSpan = days(31); ///< what spans more tells too little
constexpr int farthestNeighbour = 10; ///< steps of the counter
constexpr auto copyingTime = std::chrono::minutes(1);
constexpr int copiedTogether = 3;

QString folderOf(const DatedItem& item) {
    return item.folder.value_or(QString());
}

DateSpan widened(const std::optional<DateSpan>& span, Date date) {
    return span ? DateSpan{std::min(span->from, date), std::max(span->to, date)}
                : DateSpan{date, date};
}

bool isNarrow(const DateSpan& span, days limit) {
    return span.to - span.from <= limit;
}

} // namespace

DateReasoning::DateReasoning(std::vector<DatedItem> items, const std::vector<ItemAlbum>& albums,
                             Date now)
    : items_(std::move(items)), now_(now) {
    for (Position position = 0; position < items_.size(); ++position)
        take(position);
    for (Group& folder : folders_)
        std::ranges::sort(folder.fileTimes);
    for (const ItemAlbum& album : albums)
        takeAlbum(album);
}

void DateReasoning::take(Position position) {
    const DatedItem& item = items_[position];
    byIdentifier_[item.identifier] = position;
    byStem_[stemOf(item.name)].push_back(position);
    if (const auto counter = counterOf(item.name); counter && item.date) {
        auto& series = byCounter_[folderOf(item) + u'/' + counter->series];
        const auto known = series.find(counter->number);
        if (known == series.end())
            series[counter->number] = {{*item.date, *item.date}, item.name};
        else
            known->second.span = widened(known->second.span, *item.date);
    }
    Group& folder = folders_[folderOf(item)];
    folder.title = folderOf(item).section(u'/', -1);
    if (item.fileTime)
        folder.fileTimes.push_back(*item.fileTime);
    if (!item.date)
        return;
    folder.span = widened(folder.span, *item.date);
    ++folder.dated;
    if (!item.fileTime)
        return;
    ++folder.datedWithFile;
    if (*item.fileTime - *item.date <= sameTime && *item.date - *item.fileTime <= sameTime)
        ++folder.datedLikeFile;
}

void DateReasoning::takeAlbum(const ItemAlbum& album) {
    Group group;
    group.title = album.title;
    for (const QString& identifier : album.identifiers) {
        const auto found = byIdentifier_.constFind(identifier);
        if (found == byIdentifier_.constEnd())
            continue;
        albumsOf_[identifier].push_back(albums_.size());
        if (const auto& date = items_[*found].date) {
            group.span = widened(group.span, *date);
            ++group.dated;
        }
    }
    albums_.push_back(std::move(group));
}

std::vector<DateEvidence> DateReasoning::about(const QString& identifier,
                                               const std::vector<TextDate>& texts) const {
    const auto found = byIdentifier_.constFind(identifier);
    if (found == byIdentifier_.constEnd())
        return {};
    const DatedItem& item = items_[*found];
    std::vector<DateEvidence> evidence;
    const auto add = [&](std::optional<DateEvidence> one) {
        if (one && one->span.from <= now_)
            evidence.push_back(std::move(*one));
    };
    add(fromPartner(item));
    add(fromSameName(item));
    add(fromNeighbours(item));
    add(fromAlbums(item));
    for (const TextDate& text : texts)
        add(DateEvidence{EvidenceKind::text, {text.date, text.date}, {text.form}});
    add(fromFolderName(item));
    add(fromFileTime(item));
    return evidence;
}

std::optional<DateEvidence> DateReasoning::fromPartner(const DatedItem& item) const {
    if (item.partnerDate)
        return DateEvidence{EvidenceKind::partner, {*item.partnerDate, *item.partnerDate}, {}};
    for (const Position position : byStem_.value(stemOf(item.name))) {
        const DatedItem& other = items_[position];
        if (other.date && other.isMovie != item.isMovie && other.folder == item.folder &&
            item.folder && plainStemOf(other.name) == plainStemOf(item.name))
            return DateEvidence{EvidenceKind::partner, {*other.date, *other.date}, {other.name}};
    }
    return std::nullopt;
}

std::optional<DateEvidence> DateReasoning::fromSameName(const DatedItem& item) const {
    const QString stem = stemOf(item.name);
    if (!isTelling(stem))
        return std::nullopt;
    std::optional<DateSpan> span;
    QStringList witnesses;
    for (const Position position : byStem_.value(stem)) {
        const DatedItem& other = items_[position];
        if (!other.date || other.identifier == item.identifier)
            continue;
        span = widened(span, *other.date);
        if (witnesses.size() < 3)
            witnesses += other.folder.value_or(QString()).isEmpty()
                             ? other.name
                             : *other.folder + u'/' + other.name;
    }
    if (!span || !isNarrow(*span, sameTime)) // names that come again tell nothing
        return std::nullopt;
    return DateEvidence{EvidenceKind::sameName, *span, witnesses};
}

/// The nearest dated item on each side; what lies between them was taken between them.
std::optional<DateEvidence> DateReasoning::fromNeighbours(const DatedItem& item) const {
    const auto counter = counterOf(item.name);
    if (!counter)
        return std::nullopt;
    const auto series = byCounter_.constFind(folderOf(item) + u'/' + counter->series);
    if (series == byCounter_.constEnd())
        return std::nullopt;
    const auto after = series->upper_bound(counter->number);
    auto before = series->lower_bound(counter->number);
    if (after == series->end() || before == series->begin())
        return std::nullopt;
    --before;
    const DateSpan span{before->second.span.from, after->second.span.to};
    const bool isNear = counter->number - before->first <= farthestNeighbour &&
                        after->first - counter->number <= farthestNeighbour;
    const bool isClear = isNarrow(before->second.span, sameTime) &&
                         isNarrow(after->second.span, sameTime) && span.from <= span.to &&
                         isNarrow(span, widestSpan);
    if (!isNear || !isClear)
        return std::nullopt;
    return DateEvidence{EvidenceKind::neighbours, span, {before->second.name, after->second.name}};
}

/// The album of the narrowest span.
std::optional<DateEvidence> DateReasoning::fromAlbums(const DatedItem& item) const {
    std::vector<const Group*> groups;
    for (const std::size_t album : albumsOf_.value(item.identifier))
        groups.push_back(&albums_[album]);
    const auto folder = folders_.constFind(folderOf(item));
    if (!folderOf(item).isEmpty() && folder != folders_.constEnd())
        groups.push_back(&*folder);
    const Group* best = nullptr;
    for (const Group* group : groups)
        if (group->dated >= 2 && isNarrow(*group->span, widestSpan) &&
            (best == nullptr ||
             group->span->to - group->span->from < best->span->to - best->span->from))
            best = group;
    if (best == nullptr)
        return std::nullopt;
    return DateEvidence{EvidenceKind::album, *best->span, {best->title}};
}

std::optional<DateEvidence> DateReasoning::fromFolderName(const DatedItem& item) const {
    const auto span = dateOfFolder(folderOf(item), now_);
    if (!span)
        return std::nullopt;
    return DateEvidence{EvidenceKind::folder, *span, {folderOf(item)}};
}

/// A copy bears the time of the copying, or shares it with what was copied along. Where the folder
/// holds dated items, they show whether its file times are those of the pictures.
std::optional<DateEvidence> DateReasoning::fromFileTime(const DatedItem& item) const {
    if (!item.fileTime || *item.fileTime > now_ - days(1))
        return std::nullopt;
    const Group& folder = *folders_.constFind(folderOf(item));
    if (folder.datedWithFile > 0) {
        if (folder.datedLikeFile * 2 <= folder.datedWithFile)
            return std::nullopt;
    } else {
        const auto& times = folder.fileTimes;
        const auto first = std::ranges::lower_bound(times, *item.fileTime - copyingTime);
        const auto last = std::ranges::upper_bound(times, *item.fileTime + copyingTime);
        if (last - first > copiedTogether) // the item itself is one of them
            return std::nullopt;
    }
    return DateEvidence{EvidenceKind::fileTime, {*item.fileTime, *item.fileTime}, {}};
}

} // namespace quorvane

#include "ui/HeldListModel.h"

#include "foundation/File.h"
#include "sync/ProductState.h"

#include <algorithm>
#include <set>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

using Kind = HeldGroup::Kind;

constexpr std::size_t shownMore = 20;

/// What a person reads of a group.
FailedCategorySummary wordsOf(const HeldGroup& group) {
    if (group.kind == Kind::undated)
        return {u"Tarih Eksik"_s, 0, u"Çekim tarihi tespit edilemeyen öğeler"_s,
                u"calendar.badge.exclamationmark"_s};
    if (group.kind == Kind::undatable)
        return {u"Tarih Yazılamayan Biçimler"_s, 0, u"Dosya biçiminde çekim tarihine yer yok"_s,
                u"calendar.badge.xmark"_s};
    return group.category;
}

QString keyOf(const HeldGroup& group) {
    return wordsOf(group).categoryName;
}

/// The bytes of a path as an image address carries them, whatever they are.
QString thumbnailOf(const HeldItem& item) {
    if (item.file.empty() || item.isMovie)
        return {};
    return u"image://thumbnails/"_s +
           QString::fromLatin1(QByteArray::fromStdString(item.file.native()).toHex());
}

} // namespace

int HeldListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QHash<int, QByteArray> HeldListModel::roleNames() const {
    return {
        {kindRole, "kind"},           {titleRole, "title"},         {textRole, "text"},
        {symbolRole, "symbol"},       {countRole, "count"},         {isWarningRole, "isWarning"},
        {isOpenRole, "isOpen"},       {isFirstRole, "isFirst"},     {isLastRole, "isLast"},
        {thumbnailRole, "thumbnail"}, {actionRole, "action"},       {actionNameRole, "actionName"},
        {isDateRole, "isDate"},       {canRevealRole, "canReveal"}, {nameRole, "name"}};
}

const HeldGroup& HeldListModel::groupOf(const Row& row) const {
    return *std::ranges::find(groups_, row.group, keyOf);
}

QVariant HeldListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const auto place = static_cast<std::size_t>(index.row());
    const Row& row = rows_[place];
    if (role == isFirstRole)
        return row.kind == Row::Kind::group;
    if (role == isLastRole)
        return place + 1 == rows_.size() || rows_[place + 1].kind == Row::Kind::group;
    const HeldGroup& group = groupOf(row);
    switch (row.kind) {
    case Row::Kind::group:
        return groupData(group, role);
    case Row::Kind::item:
        return dataOfItem(group, row.place, role);
    case Row::Kind::link:
        break;
    }
    if (role == kindRole)
        return u"link"_s;
    return role == titleRole || role == nameRole ? linkTitle(row)
           : role == isWarningRole || role == isOpenRole || role == isDateRole ||
                   role == canRevealRole
               ? QVariant(false)
               : QVariant(QString());
}

QVariant HeldListModel::groupData(const HeldGroup& group, int role) const {
    const FailedCategorySummary words = wordsOf(group);
    switch (role) {
    case kindRole:
        return u"group"_s;
    case titleRole:
        return words.categoryName;
    case textRole:
        return words.explanation;
    case symbolRole:
        return words.systemImage;
    case countRole:
        return groupedCount(std::ssize(group.places));
    case isWarningRole:
        return group.kind != Kind::failed;
    case isOpenRole:
        return unfolded_.value(keyOf(group)).isOpen;
    case nameRole:
        return u"%1, %2 öğe, %3. %4"_s.arg(
            words.categoryName, groupedCount(std::ssize(group.places)),
            unfolded_.value(keyOf(group)).isOpen ? u"açık"_s : u"kapalı"_s, words.explanation);
    case isDateRole:
    case canRevealRole:
        return false;
    default:
        return QString();
    }
}

QVariant HeldListModel::dataOfItem(const HeldGroup& group, std::int64_t place, int role) const {
    const HeldItem* item = items_.object(place);
    if (role == kindRole)
        return u"item"_s;
    if (role == isWarningRole || role == isOpenRole)
        return false;
    if (role == isDateRole)
        return group.kind == Kind::undated;
    if (item == nullptr) {
        if (wanted_.empty())
            Q_EMIT const_cast<HeldListModel*>(this)->wanted(); // NOLINT: it tells, nothing changes
        wanted_.push_back(place);
        return role == canRevealRole ? QVariant(false)
               : role == symbolRole  ? QVariant(u"photo"_s)
                                     : QVariant(QString());
    }
    const UndatedItem* evidence = evidenceOf(item->held.record.assetLocalIdentifier);
    const QString text = group.kind == Kind::undated ? evidenceText(*item) : item->reason;
    switch (role) {
    case titleRole:
        return item->name;
    case textRole:
        return text;
    case symbolRole:
        return item->isMovie ? u"film"_s : u"photo"_s;
    case thumbnailRole:
        return thumbnailOf(*item);
    case actionRole:
        return group.kind == Kind::failed ? u"Tekrar Dene"_s
               : evidence != nullptr      ? u"Bu tarihi kullan"_s
                                          : QString();
    case actionNameRole:
        return group.kind == Kind::failed ? u"Tekrar Dene: "_s + item->name
               : evidence != nullptr      ? u"%1 tarihini kullan: %2"_s.arg(
                                                evidence->evidence.front().spanText(), item->name)
                                     : QString();
    case canRevealRole:
        return !item->file.empty();
    case nameRole:
        return item->name + u". "_s + text;
    default:
        return QString();
    }
}

QString HeldListModel::evidenceText(const HeldItem& item) const {
    if (!evidence_)
        return u"İpuçları aranıyor…"_s;
    const UndatedItem* undated = evidenceOf(item.held.record.assetLocalIdentifier);
    return undated == nullptr ? u"İpucu bulunamadı"_s
                              : undated->evidence.front().spanText() + u" · "_s +
                                    undated->evidence.front().sourceText();
}

QString HeldListModel::linkTitle(const Row& row) const {
    const HeldGroup& group = groupOf(row);
    const std::size_t shown = std::min(group.places.size(), unfolded_.value(row.group).shown);
    const auto rest = static_cast<qint64>(group.places.size() - shown);
    switch (row.link) {
    case Link::more:
        return u"%1 öğe daha göster"_s.arg(groupedCount(std::min<qint64>(rest, shownMore)));
    case Link::all:
        return u"Tümünü göster (%1)"_s.arg(groupedCount(rest));
    case Link::retryGroup:
        return u"Hepsini tekrar dene (%1)"_s.arg(groupedCount(std::ssize(group.places)));
    case Link::acceptKind:
        break;
    }
    return u"Hepsini kullan: %1 (%2)"_s.arg(kindText(row.evidence),
                                            groupedCount(evidenceCounts_.at(row.evidence)));
}

// What is known.

void HeldListModel::setGroups(std::vector<HeldGroup> groups) {
    for (const HeldGroup& group : groups)
        if (!unfolded_.contains(keyOf(group)))
            unfolded_[keyOf(group)].isOpen = group.kind != Kind::undatable;
    groups_ = std::move(groups);
    layOut();
}

void HeldListModel::setEvidence(std::optional<QHash<QString, UndatedItem>> evidence) {
    evidence_ = std::move(evidence);
    layOut();
}

void HeldListModel::putItems(const std::map<std::int64_t, HeldItem>& items) {
    for (const auto& [place, item] : items)
        items_.insert(place, new HeldItem(item)); // the cache owns it
    if (!rows_.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

void HeldListModel::take(const std::vector<std::int64_t>& places) {
    const std::set<std::int64_t> taken(places.begin(), places.end());
    for (HeldGroup& group : groups_)
        std::erase_if(group.places, [&](std::int64_t place) { return taken.contains(place); });
    std::erase_if(groups_, [](const HeldGroup& group) { return group.places.empty(); });
    for (const std::int64_t place : places) {
        const HeldItem* item = items_.object(place);
        if (item != nullptr && evidence_)
            evidence_->remove(item->held.record.assetLocalIdentifier);
    }
    layOut();
}

void HeldListModel::clear() {
    groups_.clear();
    unfolded_.clear();
    evidence_.reset();
    items_.clear();
    wanted_.clear();
    layOut();
}

void HeldListModel::unfold(int row) {
    const Row chosen = rows_[static_cast<std::size_t>(row)];
    Unfolding& unfolding = unfolded_[chosen.group];
    if (chosen.kind == Row::Kind::group)
        unfolding.isOpen = !unfolding.isOpen;
    else
        unfolding.shown =
            chosen.link == Link::all ? groupOf(chosen).places.size() : unfolding.shown + shownMore;
    layOut();
}

std::vector<std::int64_t> HeldListModel::placesOf(int row) const {
    return groupOf(rows_[static_cast<std::size_t>(row)]).places;
}

const HeldItem* HeldListModel::itemAt(int row) const {
    return items_.object(rows_[static_cast<std::size_t>(row)].place);
}

const UndatedItem* HeldListModel::evidenceOf(const QString& identifier) const {
    if (!evidence_)
        return nullptr;
    const auto found = evidence_->constFind(identifier);
    return found == evidence_->constEnd() || found->evidence.empty() ? nullptr : &*found;
}

std::vector<UndatedItem> HeldListModel::undatedBy(EvidenceKind kind) const {
    std::vector<UndatedItem> items;
    for (const UndatedItem& item : evidence_.value_or(QHash<QString, UndatedItem>()))
        if (!item.evidence.empty() && item.evidence.front().kind == kind)
            items.push_back(item);
    return items;
}

std::vector<std::int64_t> HeldListModel::takeWanted(std::size_t limit) {
    std::vector<std::int64_t> places;
    for (auto place = wanted_.rbegin(); place != wanted_.rend() && places.size() < limit; ++place)
        if (std::ranges::find(places, *place) == places.end())
            places.push_back(*place);
    wanted_.clear(); // what scrolled by is asked for when it is looked at again
    return places;
}

// The rows.

void HeldListModel::addItems(std::vector<Row>& rows, const HeldGroup& group) const {
    const QString key = keyOf(group);
    const std::size_t shown = std::min(group.places.size(), unfolded_.value(key).shown);
    const std::size_t rest = group.places.size() - shown;
    for (std::size_t i = 0; i < shown; ++i)
        rows.push_back({.kind = Row::Kind::item, .group = key, .place = group.places[i]});
    const auto addLink = [&](Link link, EvidenceKind evidence = EvidenceKind::partner) {
        rows.push_back({.kind = Row::Kind::link, .group = key, .link = link, .evidence = evidence});
    };
    if (rest > 0)
        addLink(Link::more);
    if (rest > shownMore)
        addLink(Link::all);
    if (group.kind == Kind::failed && group.places.size() > 1)
        addLink(Link::retryGroup);
    if (group.kind == Kind::undated)
        for (const auto& [kind, count] : evidenceCounts_)
            if (count > 1)
                addLink(Link::acceptKind, kind);
}

std::vector<HeldListModel::Row> HeldListModel::wantedRows() const {
    std::vector<Row> rows;
    for (const HeldGroup& group : groups_) {
        rows.push_back({.kind = Row::Kind::group, .group = keyOf(group)});
        if (unfolded_.value(keyOf(group)).isOpen)
            addItems(rows, group);
    }
    return rows;
}

/// Only what differs between a common beginning and a common end goes and comes, so that a view
/// stays where it is.
void HeldListModel::layOut() {
    evidenceCounts_.clear();
    if (evidence_)
        for (const UndatedItem& item : *evidence_)
            if (!item.evidence.empty())
                ++evidenceCounts_[item.evidence.front().kind];
    std::vector<Row> rows = wantedRows();
    const auto [was, is] = std::ranges::mismatch(rows_, rows);
    const auto first = static_cast<int>(was - rows_.begin());
    auto lastWas = rows_.end();
    auto lastIs = rows.end();
    while (lastWas != was && lastIs != is && *(lastWas - 1) == *(lastIs - 1)) {
        --lastWas;
        --lastIs;
    }
    if (const auto gone = static_cast<int>(lastWas - was); gone > 0) {
        beginRemoveRows({}, first, first + gone - 1);
        rows_.erase(was, lastWas);
        endRemoveRows();
    }
    if (const auto came = static_cast<int>(lastIs - is); came > 0) {
        beginInsertRows({}, first, first + came - 1);
        rows_.insert(rows_.begin() + first, is, lastIs);
        endInsertRows();
    }
    if (!rows_.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

} // namespace quorvane

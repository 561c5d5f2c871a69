#include "store/HeldRecords.h"

#include "store/RecordFaults.h"
#include "store/Statements.h"

#include <QHash>

#include <algorithm>

namespace quorvane {

namespace {

HeldGroup groupOf(const QString& status, const QString& error, const QString& fault,
                  bool isUndatable) {
    if (status != rawValue(SyncStatus::failed))
        return {isUndatable ? HeldGroup::Kind::undatable : HeldGroup::Kind::undated, {}, {}};
    return {HeldGroup::Kind::failed, categoryOf({error, 0, faultCodeFrom(fault)}), {}};
}

std::size_t takeUp(std::vector<HeldGroup>& groups, HeldGroup group) {
    const auto known = std::ranges::find_if(groups, [&](const HeldGroup& other) {
        return other.kind == group.kind &&
               other.category.categoryName == group.category.categoryName;
    });
    const auto place = static_cast<std::size_t>(known - groups.begin());
    if (known == groups.end())
        groups.push_back(std::move(group));
    return place;
}

} // namespace

std::vector<HeldGroup> HeldRecords::groups() {
    std::vector<HeldGroup> groups;
    db_.onConnection([&](sqlite::Connection& database) {
        QHash<QString, std::size_t> known; // by all that decides it
        sqlite::Statement row(database, statements::heldPlaces);
        while (row.step()) {
            const QString status = row.text(1);
            const QString fault = row.text(2);
            const bool isUndatable = !row.isNull(3);
            const QString error = row.text(4);
            const QString key =
                QStringList{status, fault, QString::number(isUndatable), error}.join(u'\n');
            auto found = known.constFind(key);
            if (found == known.constEnd())
                found =
                    known.insert(key, takeUp(groups, groupOf(status, error, fault, isUndatable)));
            groups[*found].places.push_back(row.integer(0));
        }
    });
    for (HeldGroup& group : groups)
        group.category.count = static_cast<int>(group.places.size());
    std::ranges::stable_sort(groups, [](const HeldGroup& a, const HeldGroup& b) {
        return a.kind != b.kind ? a.kind < b.kind : a.places.size() > b.places.size();
    });
    return groups;
}

std::map<std::int64_t, HeldRecord> HeldRecords::at(const std::vector<std::int64_t>& places) {
    std::map<std::int64_t, HeldRecord> records;
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, statements::heldAt);
        for (const std::int64_t place : places) {
            row.reset();
            row.bind(1, place);
            if (!row.step())
                continue;
            auto record = db_.fetchRecord(row.text(0), row.text(1), row.text(2));
            if (!record)
                continue;
            const auto fault = record->syncStatus == SyncStatus::failed
                                   ? RecordFaults(db_).of(*record)
                                   : std::nullopt;
            records.emplace(place, HeldRecord{std::move(*record), fault});
        }
    });
    return records;
}

} // namespace quorvane

#include "ui/TransferListModel.h"

#include <algorithm>
#include <cmath>

namespace quorvane {

int TransferListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

QVariant TransferListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ActiveTransferItem& item = items_[static_cast<std::size_t>(index.row())];
    const int percent = static_cast<int>(std::floor(item.progress() * 100));
    switch (role) {
    case fileNameRole:
        return item.fileName;
    case symbolRole:
        return item.isVideo ? QStringLiteral("film") : QStringLiteral("photo");
    case progressRole:
        return item.progress();
    case percentRole:
        return QStringLiteral("%%1").arg(percent);
    case nameRole:
        return QStringLiteral("Yükleme ilerlemesi, yüzde %1").arg(percent);
    default:
        return {};
    }
}

QHash<int, QByteArray> TransferListModel::roleNames() const {
    return {{fileNameRole, "fileName"},
            {symbolRole, "symbol"},
            {progressRole, "progress"},
            {percentRole, "percent"},
            {nameRole, "progressName"}};
}

void TransferListModel::setItems(const std::vector<ActiveTransferItem>& items) {
    for (int row = rowCount() - 1; row >= 0; --row) {
        const QString& id = items_[static_cast<std::size_t>(row)].id;
        if (std::ranges::find(items, id, &ActiveTransferItem::id) != items.end())
            continue;
        beginRemoveRows({}, row, row);
        items_.erase(items_.begin() + row);
        endRemoveRows();
    }
    for (const ActiveTransferItem& item : items) {
        const auto known = std::ranges::find(items_, item.id, &ActiveTransferItem::id);
        const int row = static_cast<int>(known - items_.begin());
        if (known == items_.end()) {
            beginInsertRows({}, row, row);
            items_.push_back(item);
            endInsertRows();
        } else if (*known != item) {
            *known = item;
            Q_EMIT dataChanged(index(row), index(row));
        }
    }
}

} // namespace quorvane

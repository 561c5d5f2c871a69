#include "ui/MenuModel.h"

#include <QLocale>

#include <algorithm>

namespace quorvane {

namespace {

/// As it is typed: without a symbol in front, in small letters.
QString typedForm(const QString& text) {
    static const QLocale turkish(QLocale::Turkish, QLocale::Turkey);
    const auto* const first =
        std::ranges::find_if(text, [](QChar letter) { return letter.isLetterOrNumber(); });
    return turkish.toLower(text.mid(first - text.begin()));
}

} // namespace

bool MenuRow::isLike(const MenuRow& other) const {
    return kind == other.kind && title == other.title && symbol == other.symbol && id == other.id &&
           isChecked == other.isChecked && isEnabled == other.isEnabled;
}

int MenuModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant MenuModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const MenuRow& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case titleRole:
        return row.title;
    case symbolRole:
        return row.symbol;
    case isEntryRole:
        return row.kind == MenuRow::Kind::entry;
    case isCheckableRole:
        return row.isChecked.has_value();
    case isCheckedRole:
        return row.isChecked.value_or(false);
    case isAvailableRole:
        return isAvailable(index.row());
    default:
        return {};
    }
}

QHash<int, QByteArray> MenuModel::roleNames() const {
    return {{titleRole, "title"},         {symbolRole, "symbol"},
            {isEntryRole, "isEntry"},     {isCheckableRole, "isCheckable"},
            {isCheckedRole, "isChecked"}, {isAvailableRole, "isAvailable"}};
}

void MenuModel::setRows(std::vector<MenuRow> rows) {
    const auto isLike = [](const MenuRow& a, const MenuRow& b) { return a.isLike(b); };
    const auto [keptTo, sameTo] = std::ranges::mismatch(rows_, rows, isLike);
    const int first = static_cast<int>(keptTo - rows_.begin());
    int last = rowCount() - 1;
    int newLast = static_cast<int>(rows.size()) - 1;
    while (last >= first && newLast >= first &&
           isLike(rows_[static_cast<std::size_t>(last)], rows[static_cast<std::size_t>(newLast)])) {
        --last;
        --newLast;
    }
    const int changed =
        std::min(last, newLast); // these stay where they are, and say something else
    if (last > changed)
        beginRemoveRows({}, changed + 1, last);
    else if (newLast > changed)
        beginInsertRows({}, changed + 1, newLast);
    const int difference = newLast - last;
    rows_ = std::move(rows);
    if (difference < 0)
        endRemoveRows();
    else if (difference > 0)
        endInsertRows();
    if (changed >= first)
        Q_EMIT dataChanged(index(first), index(changed));
    Q_EMIT rowsChanged();
}

int MenuModel::count(MenuRow::Kind kind) const {
    return static_cast<int>(std::ranges::count(rows_, kind, &MenuRow::kind));
}

bool MenuModel::isAvailable(int row) const {
    if (row < 0 || row >= rowCount())
        return false;
    const MenuRow& wanted = rows_[static_cast<std::size_t>(row)];
    return wanted.kind == MenuRow::Kind::entry && wanted.isEnabled;
}

void MenuModel::choose(int row) {
    if (!isAvailable(row))
        return;
    const auto choose = rows_[static_cast<std::size_t>(row)].choose; // which may change the rows
    choose();
}

int MenuModel::chosenRow() const {
    for (int row = 0; row < rowCount(); ++row)
        if (isAvailable(row) && rows_[static_cast<std::size_t>(row)].isChecked.value_or(false))
            return row;
    return isAvailable(0) ? 0 : rowFrom(0, 1);
}

int MenuModel::rowFrom(int row, int by) const {
    const int step = by < 0 ? -1 : 1;
    int next = std::clamp(row + by, 0, rowCount() - 1);
    while (next != row && next >= 0 && next < rowCount() && !isAvailable(next))
        next += step;
    return next != row && isAvailable(next) ? next : -1;
}

int MenuModel::rowTyped(const QString& letters, int row) const {
    const QString typed = typedForm(letters);
    const int count = rowCount();
    if (typed.isEmpty() || count == 0)
        return -1;
    const bool isOneLetter = typed.count(typed.front()) == typed.size();
    const QString wanted = isOneLetter ? typed.left(1) : typed;
    for (int i = isOneLetter ? 1 : 0; i <= count; ++i) {
        const int candidate = (std::max(row, 0) + i) % count;
        if (isAvailable(candidate) &&
            typedForm(rows_[static_cast<std::size_t>(candidate)].title).startsWith(wanted))
            return candidate;
    }
    return -1;
}

} // namespace quorvane

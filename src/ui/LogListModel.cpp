#include "ui/LogListModel.h"

#include "foundation/MainThread.h"

#include <QDateTime>
#include <QTimer>

#include <algorithm>

namespace quorvane {

namespace {

constexpr int takeOverInterval = 100; // milliseconds

QString nameOf(LogLevel level) {
    switch (level) {
    case LogLevel::network:
        return QStringLiteral("network");
    case LogLevel::success:
        return QStringLiteral("success");
    case LogLevel::warning:
        return QStringLiteral("warning");
    case LogLevel::error:
        return QStringLiteral("error");
    case LogLevel::info:
        break;
    }
    return QStringLiteral("info");
}

} // namespace

LogListModel::LogListModel(const std::vector<LogEntry>& earlier, Publisher<LogEntry>& publisher,
                           QObject* parent)
    : QAbstractListModel(parent),
      entries_(earlier.begin(), earlier.end()),
      subscription_(
          publisher.subscribe([inbox = inbox_](const LogEntry& entry) { inbox->receive(entry); })) {
    inbox_->owner = this;
}

int LogListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant LogListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const LogEntry& entry = entries_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case timeRole:
        return QDateTime::fromMSecsSinceEpoch(entry.timestamp.time_since_epoch().count())
            .toString(QStringLiteral("HH:mm:ss"));
    case messageRole:
        return entry.message;
    case lineRole:
        return entry.id.toString(QUuid::WithoutBraces);
    case aboutRole:
        return entry.about;
    case levelRole:
        return nameOf(entry.level);
    default:
        return {};
    }
}

QHash<int, QByteArray> LogListModel::roleNames() const {
    return {{timeRole, "time"},
            {messageRole, "message"},
            {lineRole, "line"},
            {aboutRole, "about"},
            {levelRole, "level"}};
}

void LogListModel::clear() {
    beginResetModel();
    entries_.clear();
    endResetModel();
}

void LogListModel::Inbox::receive(const LogEntry& entry) {
    {
        const auto waiting = entries.lock();
        waiting->push_back(entry);
        if (waiting->size() > 1)
            return; // the take-over that the first one asked for brings this one too
    }
    onMainThread([model = owner] {
        if (model)
            QTimer::singleShot(takeOverInterval, model, &LogListModel::takeOver);
    });
}

void LogListModel::takeOver() {
    auto arrived = std::exchange(*inbox_->entries.lock(), {});
    if (arrived.size() > maxEntries)
        arrived.erase(arrived.begin(), arrived.end() - maxEntries);
    if (arrived.empty())
        return;
    const int tooMany = static_cast<int>(entries_.size() + arrived.size()) - maxEntries;
    if (tooMany > 0) {
        beginRemoveRows({}, 0, tooMany - 1);
        entries_.erase(entries_.begin(), entries_.begin() + tooMany);
        endRemoveRows();
    }
    const int first = static_cast<int>(entries_.size());
    beginInsertRows({}, first, first + static_cast<int>(arrived.size()) - 1);
    entries_.insert(entries_.end(), arrived.begin(), arrived.end());
    endInsertRows();
}

} // namespace quorvane

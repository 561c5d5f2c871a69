#pragma once

#include "foundation/Guarded.h"
#include "foundation/LogEntry.h"
#include "foundation/Publisher.h"

#include <QAbstractListModel>
#include <QPointer>

#include <deque>
#include <memory>
#include <vector>

namespace quorvane {

/// The latest lines of the application log, oldest first, at most `maxEntries`. Lives on the main
/// thread; entries arrive from any, and are taken over together a few times a second, so that a
/// busy log costs the main thread little and a silent one nothing.
class LogListModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    enum Role {
        timeRole = Qt::UserRole + 1, ///< "14:32:09", local time
        messageRole,
        lineRole,  ///< tells it from every other
        aboutRole, ///< the asset that it speaks of; empty for none
        levelRole, ///< "info", "network", "success", "warning", "error"
    };

    static constexpr int maxEntries = 500;

    LogListModel(const std::vector<LogEntry>& earlier, Publisher<LogEntry>& publisher,
                 QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Empties the list; the log itself stays as it is.
    void clear();

    const std::deque<LogEntry>& entries() const { return entries_; }

  private:
    /// Where entries wait; shared with the senders, which may outlive the model.
    struct Inbox {
        QPointer<LogListModel> owner; ///< none once the model is gone
        Guarded<std::vector<LogEntry>> entries;

        void receive(const LogEntry& entry); ///< any thread
    };

    void takeOver();

    std::deque<LogEntry> entries_;
    const std::shared_ptr<Inbox> inbox_ = std::make_shared<Inbox>();
    Subscription subscription_;
};

} // namespace quorvane

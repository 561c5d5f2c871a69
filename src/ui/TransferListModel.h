#pragma once

#include "google/TransferActivityTracker.h"

#include <QAbstractListModel>

#include <vector>

namespace quorvane {

/// The transfers on the way. Main thread. A row stays the same row while its transfer lasts, so
/// that a progress bar glides instead of starting anew.
class TransferListModel : public QAbstractListModel {
    Q_OBJECT

  public:
    enum Role {
        fileNameRole = Qt::UserRole + 1,
        symbolRole,
        progressRole, ///< 0...1
        percentRole,  ///< "%64"
        nameRole,     ///< "Yükleme ilerlemesi, yüzde 64"
    };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setItems(const std::vector<ActiveTransferItem>& items);

  private:
    std::vector<ActiveTransferItem> items_;
};

} // namespace quorvane

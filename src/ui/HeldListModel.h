#pragma once

#include "library/UndatedReview.h"
#include "ui/HeldItems.h"

#include <QAbstractListModel>
#include <QCache>
#include <QHash>

namespace quorvane {

/// The rows of the review: a header for each group, the items that are unfolded, and what can be
/// done with the group. Of an item it holds its place in the store; what a row says is asked for
/// when the row is looked at, and the latest of these are kept. Main thread.
class HeldListModel : public QAbstractListModel {
    Q_OBJECT

  public:
    enum Role {
        kindRole = Qt::UserRole + 1, ///< "group", "item", "link"
        titleRole,
        textRole,
        symbolRole,
        countRole, ///< of a group, "2.340"
        isWarningRole,
        isOpenRole,
        isFirstRole, ///< of its table
        isLastRole,
        thumbnailRole,  ///< an address; empty for none
        actionRole,     ///< "Tekrar Dene" or "Bu tarihi kullan"; empty for none
        actionNameRole, ///< the same for a screen reader
        isDateRole,     ///< the action accepts a date
        canRevealRole,
        nameRole, ///< of the row, for a screen reader
    };
    enum class Link { more, all, retryGroup, acceptKind };

    struct Row {
        enum class Kind { group, item, link };
        Kind kind = Kind::group;
        QString group;
        std::int64_t place = 0; ///< of an item
        Link link = Link::more; ///< of a link
        EvidenceKind evidence = EvidenceKind::partner;

        bool operator==(const Row&) const = default;
    };

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setGroups(std::vector<HeldGroup> groups);
    /// What speaks for the undated, by identifier; none before it is known.
    void setEvidence(std::optional<QHash<QString, UndatedItem>> evidence);
    /// What was asked for.
    void putItems(const std::map<std::int64_t, HeldItem>& items);
    /// The items leave their groups at once; the store is asked later.
    void take(const std::vector<std::int64_t>& places);
    /// As before it was first filled.
    void clear();

    /// Of a group's row: unfolds it or folds it. Of "more" and "all": unfolds more.
    void unfold(int row);

    const Row& row(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    /// Places of the group that the row stands in.
    std::vector<std::int64_t> placesOf(int row) const;
    /// None before it was read.
    const HeldItem* itemAt(int row) const;
    /// The strongest evidence of the item; none where nothing speaks for a date.
    const UndatedItem* evidenceOf(const QString& identifier) const;
    /// All that such an evidence, as their strongest, speaks for.
    std::vector<UndatedItem> undatedBy(EvidenceKind kind) const;

    /// Places that were looked at and are not known, the latest look first, at most `limit`; they
    /// count as asked for.
    std::vector<std::int64_t> takeWanted(std::size_t limit);

  Q_SIGNALS:
    void wanted(); ///< somebody looked at what is not known

  private:
    struct Unfolding {
        bool isOpen = true;
        std::size_t shown = 2;
    };

    QVariant groupData(const HeldGroup& group, int role) const;
    QVariant dataOfItem(const HeldGroup& group, std::int64_t place, int role) const;
    QString evidenceText(const HeldItem& item) const;
    QString linkTitle(const Row& row) const;
    const HeldGroup& groupOf(const Row& row) const;
    std::vector<Row> wantedRows() const;
    void addItems(std::vector<Row>& rows, const HeldGroup& group) const;
    void layOut();

    std::vector<HeldGroup> groups_;
    QHash<QString, Unfolding> unfolded_; ///< by group
    std::vector<Row> rows_;
    std::optional<QHash<QString, UndatedItem>> evidence_;
    std::map<EvidenceKind, int> evidenceCounts_;
    QCache<std::int64_t, HeldItem> items_{1000};
    mutable std::vector<std::int64_t> wanted_; ///< the latest last
};

} // namespace quorvane

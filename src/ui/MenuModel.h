#pragma once

#include <QAbstractListModel>

#include <functional>
#include <optional>
#include <vector>

namespace quorvane {

/// A row of a menu.
struct MenuRow {
    enum class Kind {
        entry,
        header, ///< of the entries below it
        line,   ///< between two groups
    };
    Kind kind = Kind::entry;
    QString title = {};
    QString symbol = {};
    QString id = {};                    ///< tells entries of one title from one another
    std::optional<bool> isChecked = {}; ///< of an entry that is one of several to choose from
    bool isEnabled = true;
    std::function<void()> choose = [] {};

    /// Whether it looks and does the same.
    bool isLike(const MenuRow& other) const;
};

/// A menu: its rows, and what the keyboard finds among them. Main thread.
class MenuModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int entryCount READ entryCount NOTIFY rowsChanged)
    Q_PROPERTY(int headerCount READ headerCount NOTIFY rowsChanged)
    Q_PROPERTY(int lineCount READ lineCount NOTIFY rowsChanged)

  public:
    enum Role {
        titleRole = Qt::UserRole + 1, ///< of a line none
        symbolRole,
        isEntryRole,
        isCheckableRole,
        isCheckedRole,
        isAvailableRole, ///< can be chosen
    };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Rows that stay keep their place on the screen.
    void setRows(std::vector<MenuRow> rows);
    int entryCount() const { return count(MenuRow::Kind::entry); }
    int headerCount() const { return count(MenuRow::Kind::header); }
    int lineCount() const { return count(MenuRow::Kind::line); }

    /// Does what the row stands for; nothing for one that cannot be chosen.
    Q_INVOKABLE void choose(int row);
    /// What is chosen now; else the first row that can be.
    Q_INVOKABLE int chosenRow() const;
    /// The nearest row that can be chosen, `by` rows away or further; -1 where there is none.
    Q_INVOKABLE int rowFrom(int row, int by) const;
    /// The next row whose title begins with what was typed, in Turkish, from `row` on and around;
    /// one letter, also a repeated one, finds the row after. -1 for none.
    Q_INVOKABLE int rowTyped(const QString& letters, int row) const;

  Q_SIGNALS:
    void rowsChanged();

  private:
    int count(MenuRow::Kind kind) const;
    bool isAvailable(int row) const;

    std::vector<MenuRow> rows_;
};

} // namespace quorvane

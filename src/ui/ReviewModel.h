#pragma once

#include "ui/HeldListModel.h"
#include "ui/MenuBarViewModel.h"

namespace quorvane {

/// The review of what is held back: the items, what is to be done with those that have no date, and
/// another try for one, for a group, for all. Main thread; the store and the library are read in
/// the background, and the sheet shows itself when there is something to show.
class ReviewModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isShown READ isShown NOTIFY changed)
    Q_PROPERTY(quorvane::HeldListModel* items READ items CONSTANT)
    Q_PROPERTY(QVariantList choices READ choices NOTIFY changed)
    Q_PROPERTY(QString chosen READ chosen NOTIFY changed)
    Q_PROPERTY(QString undatableTitle READ undatableTitle NOTIFY changed)
    Q_PROPERTY(bool sendsUndatable READ sendsUndatable NOTIFY changed)
    Q_PROPERTY(QString retryTitle READ retryTitle NOTIFY changed)
    Q_PROPERTY(bool canRetry READ canRetry NOTIFY changed)

  public:
    explicit ReviewModel(MenuBarViewModel& model);

    bool isShown() const { return isShown_; }
    HeldListModel* items() { return &items_; }
    /// {value, title}; none when every record has its date.
    QVariantList choices() const;
    /// The value of a choice.
    QString chosen() const;
    /// Empty when there is nothing that takes no date.
    QString undatableTitle() const;
    bool sendsUndatable() const { return sendsUndatable_; }
    QString retryTitle() const;
    bool canRetry() const { return retryCount() > 0; }

    Q_INVOKABLE void choose(const QString& value);
    Q_INVOKABLE void chooseUndatable(bool sends);
    /// What the row is there for: folds a group, shows more, tries again, accepts dates.
    Q_INVOKABLE void act(int row);
    /// Shows the original of the item in the file manager.
    Q_INVOKABLE void reveal(int row);
    /// All that the choices allow go back into the queue, and the sheet closes.
    Q_INVOKABLE void retryAll();
    Q_INVOKABLE void close();

    /// True while anything of it is read or written.
    bool isWorking() { return !(tasks_.isIdle() && evidenceTasks_.isIdle()); }

  Q_SIGNALS:
    void changed();

  private:
    using Session = std::shared_ptr<const LibrarySession>;

    void follow();
    void open();
    void hide();
    void load();
    void findEvidence();
    void readWanted();
    void retry(std::vector<std::int64_t> places);
    void accept(const std::vector<UndatedItem>& accepted);
    void change(const std::function<void(const LibrarySession&)>& write);
    int undatedCount() const { return model_.dateUnresolvedCount() - model_.undatableCount(); }
    int retryCount() const;
    void report(const Error& error) const;
    /// Runs `work` on the main thread while the review of that library is still there.
    template <typename Work>
    void post(const Session& session, Work work);

    MenuBarViewModel& model_;
    HeldListModel items_;
    bool isWanted_ = false; ///< by the person
    bool isShown_ = false;
    QString chosen_; ///< empty: what is stored
    bool sendsUndatable_ = false;
    // Last: their work uses the rest.
    TaskRunner tasks_;         ///< the store, in the order of asking
    TaskRunner evidenceTasks_; ///< lists the whole library
};

} // namespace quorvane

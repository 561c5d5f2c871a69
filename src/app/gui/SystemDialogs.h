#pragma once

#include "app/gui/AppDelegate.h"
#include "library/DeletionConfirmation.h"

#include <QPointer>
#include <QWidget>

#include <condition_variable>
#include <mutex>
#include <set>

namespace quorvane {

/// The dialogs that the operating system of a photo library with one behind it shows by itself.
/// Main thread. They never block it, and none is left unanswered: at the end of this object all
/// that are open answer as if they had been closed.
class SystemDialogs {
  public:
    ~SystemDialogs();

    /// True for the first button.
    void showAlert(const AlertText& text, std::function<void(bool)> answer);

    /// None when the person chose nothing.
    void chooseLibrary(const std::filesystem::path& startAt,
                       std::function<void(std::optional<std::filesystem::path>)> answer);

  private:
    void show(QWidget* dialog);

    std::set<QPointer<QWidget>> open_;
};

/// Asks in a dialog before originals go to the Trash.
class DialogConfirmation final : public DeletionConfirmation {
  public:
    explicit DialogConfirmation(SystemDialogs& dialogs) : dialogs_(dialogs) {}

    bool confirmDeletion(const DeletionQuestion& question) override;

    /// From now on, and for whoever waits, the answer is no. Main thread.
    void close();

  private:
    SystemDialogs& dialogs_;
    std::mutex mutex_; ///< guards the two below
    std::condition_variable changed_;
    bool isClosed_ = false;
    std::optional<bool> answer_;
};

} // namespace quorvane

#pragma once

#include "app/gui/AppDelegate.h"

#include <QPointer>
#include <QWidget>

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

    /// Where a file is to be written, and as which of the kinds, by its place among them ("Rapor
    /// (*.txt)", the first is offered). Nothing is answered when the person chose nothing.
    void chooseFile(const QString& title, const std::filesystem::path& suggested,
                    const QStringList& kinds,
                    std::function<void(std::filesystem::path, qsizetype kind)> answer);

  private:
    void show(QWidget* dialog);

    std::set<QPointer<QWidget>> open_;
};

} // namespace quorvane

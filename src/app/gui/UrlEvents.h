#pragma once

#include <QFileOpenEvent>
#include <QUrl>

#include <functional>

namespace quorvane {

/// URLs that the system hands to the running application (Apple's kAEGetURL, for one). Main thread.
class UrlEvents final : public QObject {
  public:
    explicit UrlEvents(std::function<void(const QUrl&)> opened) : opened_(std::move(opened)) {}

    /// To be installed on the application.
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::FileOpen)
            return QObject::eventFilter(watched, event);
        opened_(static_cast<QFileOpenEvent*>(event)->url());
        return true;
    }

  private:
    const std::function<void(const QUrl&)> opened_;
};

} // namespace quorvane

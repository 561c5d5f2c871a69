#pragma once

#include "ui/Desktop.h"

#include <QObject>

#include <map>

namespace quorvane {

/// The desktop's notification service (org.freedesktop.Notifications). Main thread; nothing is
/// waited for: a session without the service shows nothing.
class Notifications final : public QObject {
    Q_OBJECT

  public:
    void show(const Notice& notice);

    /// A notice was clicked. The desktop's leave to come to the front is in force by then.
    std::function<void(Notice::About)> onOpened;

  private Q_SLOTS:
    void activationToken(uint id, const QString& token);
    void actionInvoked(uint id, const QString& action);

  private:
    void listen();

    bool isListening_ = false;
    std::map<uint, Notice::About> shown_; ///< the latest few, by the service's number
};

} // namespace quorvane

#pragma once

#include <QDBusVariant>
#include <QObject>

#include <functional>

namespace quorvane {

/// Whether the network costs by what is sent, as NetworkManager knows it
/// (org.freedesktop.NetworkManager, property Metered). Main thread; nothing is waited for, and
/// without a NetworkManager nothing costs.
class NetworkMeter final : public QObject {
    Q_OBJECT

  public:
    /// Asks, and listens from now on; `changed` is called for every answer that differs.
    void watch(std::function<void()> changed);
    bool isMetered() const { return isMetered_; }

  private Q_SLOTS:
    void propertiesChanged(const QString& interface, const QVariantMap& values);

  private:
    void learn(uint metered);

    std::function<void()> changed_;
    bool isMetered_ = false;
};

} // namespace quorvane

#pragma once

#include <QQuickItem>

namespace quorvane {

/// How far something is, for those who hear it: the toolkit gives its own items of this role no
/// value. What it is called stands in its `Accessible.name`. Draws nothing.
class Progress : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged)

  public:
    using QQuickItem::QQuickItem;

    double value() const { return value_; } ///< 0...100
    void setValue(double value);

    /// Before the first of them is made; once.
    static void makeAccessible();

  Q_SIGNALS:
    void valueChanged();

  private:
    double value_ = 0;
};

} // namespace quorvane

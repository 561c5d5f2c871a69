#pragma once

#include <QQuickPaintedItem>

namespace quorvane {

/// A symbol in the colour and size of its place. Painted once, anew only when one of them changes.
class Symbol : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name MEMBER name_ NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
    Q_PROPERTY(double stroke MEMBER stroke_ NOTIFY changed)
    Q_PROPERTY(double size READ width WRITE setSize NOTIFY changed)

  public:
    explicit Symbol(QQuickItem* parent = nullptr);
    void setSize(double size);
    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void changed();

  private:
    QString name_;
    QColor color_;
    double stroke_ = 1.75; ///< in units of the symbol's grid of 24
};

/// A disc in a ring whose arc grows from twelve o'clock, clockwise.
class Ring : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor disc MEMBER disc_ NOTIFY changed)
    Q_PROPERTY(QColor track MEMBER track_ NOTIFY changed)
    Q_PROPERTY(QColor arc MEMBER arc_ NOTIFY changed)
    Q_PROPERTY(double fraction MEMBER fraction_ NOTIFY changed)
    Q_PROPERTY(double stroke MEMBER stroke_ NOTIFY changed)

  public:
    explicit Ring(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void changed();

  private:
    QColor disc_ = Qt::transparent;
    QColor track_;
    QColor arc_;
    double fraction_ = 0; ///< 0...1
    double stroke_ = 6;
};

} // namespace quorvane

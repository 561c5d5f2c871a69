#include "ui/window/PaintedItems.h"

#include "ui/window/Symbols.h"

#include <QPainter>

namespace quorvane {

Symbol::Symbol(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setImplicitSize(18, 18);
    connect(this, &Symbol::changed, this, [this] { update(); });
}

void Symbol::setSize(double size) {
    setImplicitSize(size, size);
    Q_EMIT changed();
}

void Symbol::paint(QPainter* painter) {
    symbols::draw(*painter, name_, boundingRect(), color_, stroke_);
}

Ring::Ring(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &Ring::changed, this, [this] { update(); });
}

void Ring::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF bounds = boundingRect();
    const double inset = stroke_ / 2;
    const QRectF circle = bounds.adjusted(inset, inset, -inset, -inset);
    painter->setPen(Qt::NoPen);
    painter->setBrush(disc_);
    painter->drawEllipse(circle);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(track_, stroke_));
    painter->drawEllipse(circle);
    if (fraction_ <= 0)
        return;
    painter->setPen(QPen(arc_, stroke_, Qt::SolidLine, Qt::RoundCap));
    painter->drawArc(circle, 90 * 16, qRound(-std::min(fraction_, 1.0) * 360 * 16));
}

} // namespace quorvane

#include "ui/window/StatusBadge.h"

#include "ui/window/Symbols.h"

#include <QPainter>

#include <cmath>

namespace quorvane {

namespace {

constexpr double inset = 1;
constexpr double cornerRadius = 3.5;
constexpr double symbolMargin = 3;

} // namespace

QImage drawBadge(QSizeF size, double scale, QRgb color,
                 const std::function<void(QPainter&)>& content) {
    QImage image(static_cast<int>(std::lround(size.width() * scale)),
                 static_cast<int>(std::lround(size.height() * scale)),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(color));
    painter.drawRoundedRect(QRectF(QPointF(), size).adjusted(inset, inset, -inset, -inset),
                            cornerRadius, cornerRadius);
    content(painter);
    return image;
}

QImage drawSymbolBadge(const QString& symbol, double side, double scale, QRgb color,
                       double stroke) {
    return drawBadge({side, side}, scale, color, [&](QPainter& painter) {
        const double room = side - 2 * symbolMargin;
        symbols::draw(painter, symbol, QRectF(symbolMargin, symbolMargin, room, room), Qt::white,
                      stroke);
    });
}

} // namespace quorvane

#pragma once

#include <QImage>

#include <functional>

class QPainter;

namespace quorvane {

/// The rounded squares of the status item: visible on dark and on light panels alike.
inline constexpr QRgb badgeBlue = qRgb(37, 99, 235);
inline constexpr QRgb badgeRed = qRgb(180, 35, 24);

/// A badge of `size` points in `scale` pixels a point, with what `content` draws on it in points.
QImage drawBadge(QSizeF size, double scale, QRgb color,
                 const std::function<void(QPainter&)>& content);

/// The badge with a white symbol.
QImage drawSymbolBadge(const QString& symbol, double side, double scale, QRgb color);

} // namespace quorvane

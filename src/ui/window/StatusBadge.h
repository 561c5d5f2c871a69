#pragma once

#include <QImage>

#include <functional>

class QPainter;

namespace quorvane {

/// The rounded squares of the status item: visible on dark and on light panels alike.
inline constexpr QRgb badgeBlue = qRgb(37, 99, 235);
inline constexpr QRgb badgeRed = qRgb(180, 35, 24);
inline constexpr QRgb badgeAmber = qRgb(180, 83, 9);
inline constexpr QRgb badgeGrey = qRgb(99, 109, 126);

/// A badge of `size` points in `scale` pixels a point, with what `content` draws on it in points.
QImage drawBadge(QSizeF size, double scale, QRgb color,
                 const std::function<void(QPainter&)>& content);

/// The badge with a white symbol, whose stroke has a width in units of its grid of 24.
QImage drawSymbolBadge(const QString& symbol, double side, double scale, QRgb color,
                       double stroke = 2);

} // namespace quorvane

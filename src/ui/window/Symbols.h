#pragma once

#include <QColor>
#include <QPainterPath>

class QPainter;

namespace quorvane::symbols {

/// The outline of a symbol on its grid of 24; empty for an unknown name. Main thread.
const QPainterPath& outline(const QString& name);

/// Draws a symbol into a square, in its stroke of `width` grid units.
void draw(QPainter& painter, const QString& name, const QRectF& square, const QColor& color,
          double width = 1.75);

} // namespace quorvane::symbols

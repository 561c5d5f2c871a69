#include "ui/window/Symbols.h"

#include "ui/window/SvgPath.h"

#include <QFile>
#include <QHash>
#include <QPainter>

namespace quorvane::symbols {

namespace {

constexpr double grid = 24;

QHash<QString, QPainterPath> readOutlines() {
    QHash<QString, QPainterPath> outlines;
    QFile table(QStringLiteral(":/Quorvane/symbols.tsv"));
    if (!table.open(QIODevice::ReadOnly))
        return outlines;
    const QString text = QString::fromUtf8(table.readAll());
    for (const QString& line : text.split(u'\n'))
        if (const auto outline = parseSvgPath(line.section(u'\t', 1)))
            outlines.insert(line.section(u'\t', 0, 0), *outline);
    return outlines;
}

} // namespace

const QPainterPath& outline(const QString& name) {
    static const QHash<QString, QPainterPath> outlines = readOutlines();
    static const QPainterPath none;
    const auto found = outlines.constFind(name);
    return found == outlines.cend() ? none : *found;
}

void draw(QPainter& painter, const QString& name, const QRectF& square, const QColor& color,
          double width) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width() / grid, square.height() / grid);
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(outline(name));
    painter.restore();
}

} // namespace quorvane::symbols

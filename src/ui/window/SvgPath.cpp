#include "ui/window/SvgPath.h"

#include <QRegularExpression>

#include <cmath>
#include <numbers>
#include <vector>

namespace quorvane {

namespace {

/// Splits a command's arguments; the two flags of an arc may touch what follows them.
class Arguments {
  public:
    explicit Arguments(QStringView text) : rest_(text) {}

    bool atEnd() {
        while (!rest_.isEmpty() && (rest_.front().isSpace() || rest_.front() == u','))
            rest_ = rest_.sliced(1);
        return rest_.isEmpty();
    }

    std::optional<double> number() {
        static const QRegularExpression pattern(
            QStringLiteral("^[-+]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][-+]?[0-9]+)?"));
        return atEnd() ? std::nullopt : take(pattern.match(rest_.toString()).capturedLength());
    }

    std::optional<double> flag() {
        return atEnd() || (rest_.front() != u'0' && rest_.front() != u'1') ? std::nullopt : take(1);
    }

  private:
    std::optional<double> take(qsizetype length) {
        bool isNumber = false;
        const double value = rest_.first(length).toDouble(&isNumber);
        rest_ = rest_.sliced(length);
        return isNumber ? std::optional(value) : std::nullopt;
    }

    QStringView rest_;
};

/// Adds the arc of a circle of `radius` from where the path stands to `end`.
void addArc(QPainterPath& path, double radius, bool isLarge, bool isSweep, QPointF end) {
    const QPointF start = path.currentPosition();
    const QPointF half = (end - start) / 2;
    const double halfLength = std::hypot(half.x(), half.y());
    if (halfLength == 0 || radius == 0) {
        path.lineTo(end);
        return;
    }
    radius = std::max(radius, halfLength); // a circle that is too small grows until it fits
    const double height = std::sqrt(radius * radius - halfLength * halfLength);
    const QPointF normal(-half.y() / halfLength, half.x() / halfLength);
    const QPointF centre = start + half + normal * (isLarge == isSweep ? -height : height);
    // Qt counts its angles against the clock, in degrees.
    const auto angleOf = [&](QPointF point) {
        return -std::atan2(point.y() - centre.y(), point.x() - centre.x()) * 180 / std::numbers::pi;
    };
    double sweep = angleOf(end) - angleOf(start);
    if (isSweep && sweep > 0)
        sweep -= 360;
    if (!isSweep && sweep < 0)
        sweep += 360;
    path.arcTo(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius),
               angleOf(start), sweep);
}

/// Draws one command with one set of its arguments.
bool draw(QPainterPath& path, QChar command, bool isRelative, Arguments& arguments) {
    const QPointF origin = isRelative ? path.currentPosition() : QPointF();
    std::vector<double> v;
    static const QStringView kinds = u"MLHVCA";
    static constexpr std::array counts{2, 2, 1, 1, 6, 7};
    const auto kind = kinds.indexOf(command);
    if (kind < 0)
        return false;
    for (int i = 0; i < counts[static_cast<std::size_t>(kind)]; ++i) {
        const bool isFlag = command == u'A' && (i == 3 || i == 4);
        const auto value = isFlag ? arguments.flag() : arguments.number();
        if (!value)
            return false;
        v.push_back(*value);
    }
    const QPointF here = path.currentPosition();
    const auto point = [&](std::size_t i) { return origin + QPointF(v[i], v[i + 1]); };
    switch (command.unicode()) {
    case u'M':
        path.moveTo(point(0));
        break;
    case u'L':
        path.lineTo(point(0));
        break;
    case u'H':
        path.lineTo(origin.x() + v[0], here.y());
        break;
    case u'V':
        path.lineTo(here.x(), origin.y() + v[0]);
        break;
    case u'C':
        path.cubicTo(point(0), point(2), point(4));
        break;
    default:
        if (v[0] != v[1])
            return false;
        addArc(path, v[0], v[3] != 0, v[4] != 0, point(5));
    }
    return true;
}

} // namespace

std::optional<QPainterPath> parseSvgPath(QStringView data) {
    static const QRegularExpression commands(QStringLiteral("([A-Za-z])([^A-DF-Za-df-z]*)"));
    QPainterPath path;
    auto matches = commands.globalMatch(data.toString());
    while (matches.hasNext()) {
        const auto match = matches.next();
        QChar command = match.captured(1).front();
        const bool isRelative = command.isLower();
        command = command.toUpper();
        const QString text = match.captured(2);
        Arguments arguments(text);
        if (command == u'Z') {
            path.closeSubpath();
            continue;
        }
        do {
            if (!draw(path, command, isRelative, arguments))
                return std::nullopt;
            if (command == u'M')
                command = u'L'; // further pairs are lines
        } while (!arguments.atEnd());
    }
    return path;
}

} // namespace quorvane

#pragma once

#include <QPainterPath>
#include <QStringView>

#include <optional>

namespace quorvane {

/// The outline that the `d` of an SVG path describes: the commands M L H V C Z and A of circles, in
/// both cases. None for anything else.
std::optional<QPainterPath> parseSvgPath(QStringView data);

} // namespace quorvane

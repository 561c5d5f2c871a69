#pragma once

#include "library/PhotoLibrary.h"
#include "store/RecordRemainders.h"

#include <QString>

#include <vector>

namespace quorvane {

/// A number of items, as a person is told of it. Two spaces before the label: a part of the figure
/// before it.
struct Figure {
    QString label;
    const char* key = nullptr; ///< its name in JSON
    int count = 0;
    bool evenIfNone = false; ///< told when it is 0
};

/// What of the assets stays in the library alone.
std::vector<Figure> figuresOf(const RemainderCounts& behind);
/// What the library left out, by reason.
std::vector<Figure> figuresOf(const LeftOut& leftOut);

} // namespace quorvane

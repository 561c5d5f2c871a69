import QtQuick

/// A surface with a hairline. Its content is placed by who uses it.
Rectangle {
    color: Theme.surface
    radius: Theme.cardRadius
    border.width: 1
    border.color: Theme.border
}

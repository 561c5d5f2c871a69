import QtQuick
import QtQuick.Controls.Basic

/// What a symbol means, above it.
ToolTip {
    id: tip

    property bool shown: false

    visible: shown
    delay: 600
    y: -implicitHeight - 4
    margins: 6
    padding: 6
    contentItem: Words { role: Theme.caption; text: tip.text }
    background: Rectangle {
        color: Theme.surface
        radius: Theme.controlRadius
        border.width: 1
        border.color: Theme.borderControl
    }
}

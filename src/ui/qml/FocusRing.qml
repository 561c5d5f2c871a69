import QtQuick

/// The frame around the control that the keyboard is on: outside it, or inside where there is no
/// room around.
Rectangle {
    property bool shown: false
    property bool inside: false
    property real controlRadius: Theme.controlRadius

    anchors.fill: parent
    anchors.margins: inside ? 2 : -4
    radius: inside ? Math.max(0, controlRadius - 2) : controlRadius + 4
    color: "transparent"
    border.width: 2
    border.color: Theme.focus
    visible: shown
}

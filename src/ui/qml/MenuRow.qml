import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// A row of a menu: an entry to choose, the header of a group, or a line between two.
AbstractButton {
    id: control

    required property var modelData
    readonly property bool isEntry: modelData.kind === "entry"

    enabled: modelData.isEnabled
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: isEntry ? Accessible.MenuItem : Accessible.StaticText
    Accessible.name: modelData.title
    Accessible.ignored: modelData.kind === "line"
    Accessible.checkable: modelData.isChecked
    Accessible.checked: modelData.isChecked

    background: Rectangle {
        visible: control.isEntry
        radius: Theme.controlRadius
        color: control.down ? Theme.surfacePressed
            : control.hovered || control.activeFocus ? Theme.accentTint : "transparent"
        FocusRing { shown: control.visualFocus; inside: true }
    }
    Item {
        anchors.fill: parent

        Rectangle {
            visible: control.modelData.kind === "line"
            x: 8
            y: 4
            width: parent.width - 16
            height: 1
            color: Theme.divider
        }
        Symbol {
            visible: control.modelData.isChecked
            x: 8
            size: 16
            stroke: 2
            name: "x.checkmark"
            color: Theme.accentText
            anchors.verticalCenter: parent.verticalCenter
        }
        Symbol {
            visible: control.isEntry
            x: 32
            name: control.modelData.symbol
            color: control.enabled ? Theme.textSecondary : Theme.textDisabled
            anchors.verticalCenter: parent.verticalCenter
        }
        Words {
            x: control.isEntry ? 58 : 8
            width: Math.min(implicitWidth, parent.width - x - 8)
            role: control.isEntry ? Theme.body : Theme.menuHeader
            text: control.modelData.title
            color: !control.isEntry ? Theme.textTertiary
                : control.enabled ? Theme.textPrimary : Theme.textDisabled
            elide: Text.ElideRight
            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
        }
    }
}

import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// How many items wait for a review; opens the sheet.
AbstractButton {
    id: control

    implicitHeight: 36
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Accessible.name: text
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.warningTint
        border.width: 1
        border.color: control.hovered || control.down ? Theme.warningIcon : Theme.warningBorder
        FocusRing { shown: control.visualFocus }
    }
    Item {
        anchors.fill: parent

        Symbol {
            x: 13
            name: "exclamationmark.circle.fill"
            color: Theme.warningIcon
            anchors.verticalCenter: parent.verticalCenter
        }
        Words {
            x: 39
            width: parent.width - 78
            role: Theme.strong
            text: control.text
            color: Theme.warning
            elide: Text.ElideRight
            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
        }
        Symbol {
            x: parent.width - 27
            size: 16
            name: "x.chevron.right"
            color: Theme.warning
            anchors.verticalCenter: parent.verticalCenter
        }
    }
}

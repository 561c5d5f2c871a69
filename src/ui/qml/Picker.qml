import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// A row of the route: what it is, what is chosen, and a menu of what else there is.
AbstractButton {
    id: control

    property string symbol
    property string caption
    property string value
    property string detail
    /// Shown while the pointer rests on the row.
    property string tip
    required property MenuModel rows
    property alias menuGap: menu.gap

    implicitHeight: 52
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    onClicked: menu.openByKeyboard(visualFocus)
    Accessible.role: Accessible.Button
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Accessible.name: caption + ": " + value + (detail ? ", " + detail : "")
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()
    Keys.onDownPressed: control.clicked()

    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: 4
        anchors.rightMargin: 4
        radius: Theme.controlRadius
        color: control.down ? Theme.surfacePressed : control.hovered ? Theme.surfaceHover : "transparent"
        FocusRing { shown: control.visualFocus; inside: true }
    }
    Item {
        anchors.fill: parent

        Tile {
            x: 16
            anchors.verticalCenter: parent.verticalCenter
            symbol: control.symbol
        }
        Column {
            x: 60
            width: count.x - x - 8
            anchors.verticalCenter: parent.verticalCenter

            Words {
                width: parent.width
                role: Theme.caption
                text: control.caption
                color: control.enabled ? Theme.textSecondary : Theme.textDisabled
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            Words {
                width: parent.width
                role: Theme.value
                text: control.value
                color: control.enabled ? Theme.textPrimary : Theme.textDisabled
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        Words {
            id: count
            x: parent.width - 42 - width
            width: Math.min(implicitWidth, 130)
            elide: Text.ElideMiddle
            role: Theme.caption
            text: control.detail
            color: Theme.textSecondary
            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
        }
        Symbol {
            x: parent.width - 31
            size: 16
            anchors.verticalCenter: parent.verticalCenter
            name: "chevron.up.chevron.down"
            color: control.enabled ? Theme.textSecondary : Theme.textDisabled
        }
    }

    Tip { shown: control.tip.length > 0 && control.hovered && !menu.visible; text: control.tip }
    ChoiceMenu {
        id: menu
        x: -1
        width: control.width + 2
        name: control.caption
        rows: control.rows
    }
}

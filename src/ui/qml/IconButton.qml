import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// A button with a symbol alone; its name is spoken, and shown when the pointer rests on it.
AbstractButton {
    id: control

    property string symbol
    property string name
    property bool active: false
    /// Since the pointer came: nothing is to be explained any more, and what opened stays free.
    property bool pressedHere: false

    implicitWidth: 36
    implicitHeight: 36
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    onHoveredChanged: pressedHere = false
    onPressed: pressedHere = true
    Accessible.role: Accessible.Button
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Accessible.name: name
    Accessible.checkable: checkable
    Accessible.checked: active
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    background: Rectangle {
        radius: Theme.controlRadius
        color: control.down ? Theme.surfacePressed : control.hovered ? Theme.surfaceHover
            : control.active ? Theme.accentTint : "transparent"
        FocusRing { shown: control.visualFocus; inside: control.active }
    }
    Symbol {
        anchors.centerIn: parent
        name: control.symbol
        color: !control.enabled ? Theme.textDisabled
            : control.active ? Theme.accentText : Theme.textSecondary
    }

    Tip { text: control.name; shown: control.hovered && !control.pressedHere }
}

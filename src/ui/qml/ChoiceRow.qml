import QtQuick
import QtQuick.Controls.Basic

/// One of several answers; the whole row takes the click.
RadioButton {
    id: control

    implicitHeight: Math.max(32, contentItem.implicitHeight + 14)
    padding: 0
    leftPadding: 28
    Accessible.name: text
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Accessible.onToggleAction: if (control.enabled) control.clicked()

    indicator: Rectangle {
        y: 7
        width: 18
        height: 18
        radius: 9
        color: control.checked ? Theme.accent : "transparent"
        border.width: control.checked ? 0 : 2
        border.color: Theme.controlOff

        Rectangle {
            anchors.centerIn: parent
            width: 8
            height: 8
            radius: 4
            color: Theme.inkOnAccent
            visible: control.checked
        }
        FocusRing { shown: control.visualFocus; controlRadius: 9 }
    }
    contentItem: Words {
        text: control.text
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}

import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// Something that may be added, with a note below; the whole row takes the click.
CheckBox {
    id: control

    property string note

    implicitHeight: Math.max(32, contentItem.implicitHeight + 14)
    padding: 0
    leftPadding: 28
    Accessible.name: text
    Accessible.description: note
    Accessible.onPressAction: if (enabled) press()
    Accessible.onToggleAction: if (enabled) press()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    function press() {
        control.toggle();
        control.toggled();
    }

    indicator: Rectangle {
        y: 7
        width: 18
        height: 18
        radius: Theme.checkRadius
        color: control.checked ? Theme.accent : "transparent"
        border.width: control.checked ? 0 : 2
        border.color: Theme.controlOff

        Symbol {
            anchors.centerIn: parent
            name: "x.checkmark"
            size: 14
            color: Theme.inkOnAccent
            visible: control.checked
        }
        FocusRing { shown: control.visualFocus; controlRadius: Theme.checkRadius }
    }
    contentItem: Column {
        topPadding: 7
        Words {
            width: parent.width
            text: control.text
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
        Words {
            width: parent.width
            role: Theme.note
            text: control.note
            color: Theme.textSecondary
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}

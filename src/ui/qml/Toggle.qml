import QtQuick
import QtQuick.Controls.Basic

/// A switch of 40 by 24 in a larger area that takes the click.
Switch {
    id: control

    implicitWidth: 44
    implicitHeight: 36
    padding: 0
    Accessible.onPressAction: if (enabled) press()
    Accessible.onToggleAction: if (enabled) press()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    function press() {
        control.toggle();
        control.toggled();
    }

    indicator: Rectangle {
        x: 2
        y: 6
        width: 40
        height: 24
        radius: 12
        color: control.checked ? Theme.accent : Theme.controlOff
        Behavior on color { ColorAnimation { duration: Theme.switchTime } }

        Rectangle {
            x: control.checked ? 19 : 3
            y: 3
            width: 18
            height: 18
            radius: 9
            color: Theme.knob
            Behavior on x { NumberAnimation { duration: Theme.switchTime; easing.type: Easing.OutCubic } }
        }
        FocusRing { shown: control.visualFocus; controlRadius: 12 }
    }
    contentItem: null
}

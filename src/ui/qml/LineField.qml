import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// One line of text to write, or to copy.
TextField {
    id: field

    implicitHeight: 40
    leftPadding: 13
    rightPadding: 13
    font.pixelSize: Theme.body.size
    color: Theme.textPrimary
    selectionColor: Theme.accent
    selectedTextColor: Theme.inkOnAccent
    placeholderTextColor: Theme.textTertiary
    selectByMouse: true
    Accessible.name: placeholderText
    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.surface
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.focus : Theme.borderControl
    }
}

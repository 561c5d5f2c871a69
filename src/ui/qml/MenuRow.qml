import QtQuick
import Quorvane

/// A row of a menu: an entry to choose, the header of a group, or a line between two. Not one of the
/// toolkit's buttons, because those tell a screen reader that they are buttons, whatever is said here.
Item {
    id: control

    required property string title
    required property string symbol
    required property bool isEntry
    required property bool isCheckable
    required property bool isChecked
    required property bool isAvailable
    readonly property bool isLine: !isEntry && title.length === 0

    /// The keyboard brought the focus here.
    property bool showsFocus: false
    signal clicked()

    enabled: isAvailable
    Accessible.role: isEntry ? Accessible.MenuItem : Accessible.StaticText
    Accessible.name: title
    Accessible.ignored: isLine
    Accessible.focusable: isEntry
    Accessible.checkable: isCheckable
    Accessible.checked: isChecked
    Accessible.onPressAction: clicked()

    HoverHandler { id: pointer }
    TapHandler { id: press; onTapped: control.clicked() }
    Rectangle {
        anchors.fill: parent
        visible: control.isEntry
        radius: Theme.controlRadius
        color: press.pressed ? Theme.surfacePressed
            : pointer.hovered || control.activeFocus ? Theme.accentTint : "transparent"
        FocusRing { shown: control.showsFocus && control.activeFocus; inside: true }
    }
    Item {
        anchors.fill: parent

        Rectangle {
            visible: control.isLine
            x: 8
            y: 4
            width: parent.width - 16
            height: 1
            color: Theme.divider
        }
        Symbol {
            visible: control.isChecked
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
            name: control.symbol
            color: control.enabled ? Theme.textSecondary : Theme.textDisabled
            anchors.verticalCenter: parent.verticalCenter
        }
        Words {
            x: control.isEntry ? 58 : 8
            width: Math.min(implicitWidth, parent.width - x - 8)
            role: control.isEntry ? Theme.body : Theme.menuHeader
            text: control.title
            color: !control.isEntry ? Theme.textTertiary
                : control.enabled ? Theme.textPrimary : Theme.textDisabled
            elide: Text.ElideRight
            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
        }
    }
}

import QtQuick
import Quorvane

/// A tinted box with a symbol, a title and a text: amber, or red for `danger`.
Rectangle {
    id: banner

    property bool danger: false
    property alias title: heading.text
    property alias text: body.text
    property bool dismissible: false
    signal dismissed

    readonly property color ink: danger ? Theme.danger : Theme.warning

    implicitHeight: words.implicitHeight + 22
    radius: Theme.tileRadius
    color: danger ? Theme.dangerTint : Theme.warningTint
    border.width: 1
    border.color: danger ? Theme.dangerTrack : Theme.warningBorder
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title + " " + text

    Symbol {
        x: 13
        y: 11
        name: banner.danger ? "exclamationmark.circle.fill" : "x.exclamationmark.triangle"
        color: banner.danger ? Theme.danger : Theme.warningIcon
    }
    Column {
        id: words
        x: 41
        y: 11
        width: parent.width - x - (banner.dismissible ? 48 : 13)
        spacing: 2

        Words {
            id: heading
            width: parent.width
            role: Theme.strong
            color: banner.ink
            wrapMode: Text.Wrap
            visible: text.length > 0
        }
        Words {
            id: body
            width: parent.width
            role: heading.visible ? Theme.note : Theme.strong
            color: heading.visible ? Theme.textSecondary : banner.ink
            wrapMode: Text.Wrap
            visible: text.length > 0
        }
    }
    IconButton {
        objectName: "dismissError"
        anchors.right: parent.right
        anchors.rightMargin: 2
        y: 1
        visible: banner.dismissible
        symbol: "xmark"
        name: "Kapat"
        onClicked: banner.dismissed()
    }
}

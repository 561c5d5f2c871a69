import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// A button with words: "filled", "outline" or "link"; 40 high, or 32 when small.
AbstractButton {
    id: control

    property string kind: "outline"
    property string symbol
    property bool small: false
    /// The symbol in the colour of links, the words in that of text.
    property bool accentSymbol: false
    property bool wraps: false

    readonly property color ink: !enabled ? Theme.textDisabled : kind === "filled" ? Theme.inkOnAccent
        : kind === "link" ? Theme.accentText : Theme.textPrimary

    implicitHeight: wraps ? Math.max(40, label.implicitHeight + 18) : small ? 32 : 40
    implicitWidth: row.implicitWidth + leftPadding + rightPadding
    leftPadding: small ? (kind === "link" ? 9 : 13) : 17
    rightPadding: leftPadding
    topPadding: 0
    bottomPadding: 0
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Accessible.name: text
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    background: Rectangle {
        radius: Theme.controlRadius
        color: {
            if (!control.enabled)
                return control.kind === "link" ? "transparent" : Theme.surfaceInset;
            if (control.kind === "filled")
                return control.down ? Theme.accentPressed
                    : control.hovered ? Theme.accentHover : Theme.accent;
            return control.down ? Theme.surfacePressed : control.hovered ? Theme.surfaceHover
                : control.kind === "link" ? "transparent" : Theme.surface;
        }
        border.width: control.kind === "outline" || (!control.enabled && control.kind === "filled")
            ? 1 : 0
        border.color: control.enabled ? Theme.borderControl : Theme.border
        Behavior on color { ColorAnimation { duration: Theme.hoverTime } }

        FocusRing { shown: control.visualFocus }
    }

    Item {
        anchors.fill: parent

        Row {
            id: row
            anchors.centerIn: parent
            spacing: control.small ? 8 : 10

            Symbol {
                name: control.symbol
                visible: control.symbol.length > 0
                size: control.small ? 16 : 18
                color: control.enabled && control.accentSymbol ? Theme.accentText : control.ink
                anchors.verticalCenter: parent.verticalCenter
            }
            Words {
                id: label
                role: control.small ? Theme.strong : Theme.button
                text: control.text
                color: control.ink
                width: control.wraps ? Math.min(implicitWidth, control.availableWidth) : implicitWidth
                wrapMode: control.wraps ? Text.Wrap : Text.NoWrap
                horizontalAlignment: Text.AlignHCenter
                Accessible.ignored: true
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }
}

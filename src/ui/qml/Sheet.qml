import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T

/// A box over the dimmed window that keeps the keyboard until it is answered. Escape cancels.
Popup {
    id: sheet

    property bool shown: false
    property string name
    signal cancelled
    /// What had the keyboard before.
    property Item opener

    onShownChanged: if (sheet.shown) sheet.open(); else sheet.close()
    onAboutToShow: opener = parent.Window.activeFocusItem // qmllint disable
    onClosed: if (opener && opener.visible) opener.forceActiveFocus(Qt.PopupFocusReason)
    Component.onCompleted: if (sheet.shown) sheet.open()

    anchors.centerIn: T.Overlay.overlay
    modal: true
    focus: true
    closePolicy: Popup.NoAutoClose
    padding: 21
    height: Math.min(implicitHeight, (parent ? parent.height : 650) - 32)
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.sheetInTime; easing.type: Easing.OutCubic } }
    exit: Transition { NumberAnimation { property: "opacity"; to: 0; duration: Theme.sheetOutTime } }
    background: Rectangle {
        color: Theme.surface
        radius: Theme.sheetRadius
        border.width: 1
        border.color: Theme.border
    }
    T.Overlay.modal: Rectangle {
        color: Theme.scrim
        Behavior on opacity { NumberAnimation { duration: Theme.fadeTime } }
    }
    Shortcut {
        sequence: "Escape"
        enabled: sheet.opened
        onActivated: sheet.cancelled()
    }
}

pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// A menu of rows (see Dashboard) under the control that opens it, or above where there is no room.
Popup {
    id: menu

    property var rows: []
    property string name
    /// Below the opener; above it, the distance is always 4.
    property real gap: 4
    readonly property real longest: 326
    signal chosen(string command, string value)

    readonly property real wanted:
        Math.min(longest, rows.reduce((sum, row) => sum + heightOf(row), 0)) + 10

    function heightOf(row: var): real {
        return row.kind === "entry" ? 32 : row.kind === "header" ? 26 : 9;
    }
    function openByKeyboard(byKeyboard: bool) {
        const below = parent.mapToItem(null, 0, parent.height).y + gap;
        const above = parent.mapToItem(null, 0, 0).y - 4;
        y = below + wanted <= parent.Window.height - 4 || below > above && wanted > above
            ? parent.height + gap : -4 - wanted;
        open();
        list.currentIndex = Math.max(0, rows.findIndex(row => row.isChecked && row.isEnabled));
        list.positionViewAtIndex(list.currentIndex, ListView.Contain);
        list.focusCurrent(byKeyboard);
    }

    onAboutToHide: parent.forceActiveFocus(list.usedByKeyboard ? Qt.TabFocusReason : Qt.PopupFocusReason)

    padding: 5
    focus: true
    height: wanted
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.fadeTime } }
    exit: Transition { NumberAnimation { property: "opacity"; to: 0; duration: Theme.fadeTime } }
    background: Rectangle {
        color: Theme.surface
        radius: Theme.menuRadius
        border.width: 1
        border.color: Theme.borderControl
    }

    ListView {
        id: list

        property bool usedByKeyboard: false

        function focusCurrent(byKeyboard: bool) {
            usedByKeyboard = byKeyboard;
            if (currentItem)
                currentItem.forceActiveFocus(byKeyboard ? Qt.TabFocusReason : Qt.PopupFocusReason);
        }
        function move(step: int) {
            let next = currentIndex + step;
            while (next >= 0 && next < count && !menu.rows[next].isEnabled)
                next += Math.sign(step);
            if (next < 0 || next >= count)
                return;
            currentIndex = next;
            focusCurrent(true);
        }
        function pick(index: int) {
            const row = menu.rows[index];
            menu.close();
            menu.chosen(row.command, row.value);
        }

        width: menu.availableWidth
        height: menu.availableHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        model: menu.opened || menu.visible ? menu.rows : []
        keyNavigationEnabled: false
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.name
        Keys.onUpPressed: move(-1)
        Keys.onDownPressed: move(1)
        Keys.onPressed: event => {
            const far = { [Qt.Key_Home]: -currentIndex, [Qt.Key_End]: count - 1 - currentIndex,
                          [Qt.Key_PageUp]: -Math.min(7, currentIndex),
                          [Qt.Key_PageDown]: Math.min(7, count - 1 - currentIndex) }[event.key];
            if (far === undefined)
                return;
            event.accepted = true;
            if (far !== 0)
                move(far);
        }
        delegate: MenuRow {
            required property int index

            width: ListView.view.width
            height: menu.heightOf(modelData)
            objectName: "menuRow" + index
            onClicked: list.pick(index)
            Keys.onReturnPressed: list.pick(index)
            Keys.onEnterPressed: list.pick(index)
        }
        ScrollBar.vertical: ScrollThumb { }
    }
}

pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// A menu under the control that opens it, or above where there is more room. What does not fit
/// scrolls, and typed letters find a row.
Popup {
    id: menu

    required property MenuModel rows
    property string name
    /// Below the opener; above it, the distance is always 4.
    property real gap: 4
    readonly property real longest: 326
    readonly property real wanted:
        Math.min(longest, rows.entryCount * 32 + rows.headerCount * 26 + rows.lineCount * 9) + 10
    /// In the window, where the menu is.
    property real room: wanted

    function openByKeyboard(byKeyboard: bool) {
        const below = parent.Window.height - 4 - gap - parent.mapToItem(null, 0, parent.height).y;
        const above = parent.mapToItem(null, 0, 0).y - 8;
        room = wanted <= below ? below : Math.max(below, above);
        y = Qt.binding(() => room === below ? parent.height + gap : -4 - height);
        open();
        list.typed = "";
        list.go(rows.chosenRow(), byKeyboard);
    }

    onAboutToHide: parent.forceActiveFocus(list.usedByKeyboard ? Qt.TabFocusReason : Qt.PopupFocusReason)

    padding: 5
    focus: true
    height: Math.min(wanted, room)
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
        property string typed

        function go(row: int, byKeyboard: bool) {
            if (row < 0)
                return;
            usedByKeyboard = byKeyboard;
            currentIndex = row;
            positionViewAtIndex(row, ListView.Contain);
            if (currentItem)
                currentItem.forceActiveFocus(byKeyboard ? Qt.TabFocusReason : Qt.PopupFocusReason);
        }
        function type(letters: string) {
            typed += letters;
            forgetting.restart();
            go(menu.rows.rowTyped(typed, currentIndex), true);
        }
        function pick(row: int) {
            menu.close();
            menu.rows.choose(row);
        }

        width: menu.availableWidth
        height: menu.availableHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        model: menu.opened || menu.visible ? menu.rows : null
        keyNavigationEnabled: false
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.name
        Keys.onUpPressed: go(menu.rows.rowFrom(currentIndex, -1), true)
        Keys.onDownPressed: go(menu.rows.rowFrom(currentIndex, 1), true)
        Keys.onPressed: event => {
            const far = { [Qt.Key_Home]: -currentIndex, [Qt.Key_End]: count - 1 - currentIndex,
                          [Qt.Key_PageUp]: -Math.min(7, currentIndex),
                          [Qt.Key_PageDown]: Math.min(7, count - 1 - currentIndex) }[event.key];
            const isText = /^[^\x00-\x20\x7f]/.test(event.text)
                && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier));
            event.accepted = far !== undefined || isText;
            if (far)
                go(menu.rows.rowFrom(currentIndex, far), true);
            else if (far === undefined && isText)
                type(event.text);
        }
        Timer { id: forgetting; interval: 1000; onTriggered: list.typed = "" }
        delegate: MenuRow {
            required property int index

            width: ListView.view.width
            height: isEntry ? 32 : isLine ? 9 : 26
            objectName: "menuRow" + index
            showsFocus: list.usedByKeyboard
            onClicked: list.pick(index)
            Keys.onReturnPressed: list.pick(index)
            Keys.onEnterPressed: list.pick(index)
            Keys.onSpacePressed: {
                if (list.typed.length > 0)
                    list.type(" ");
                else
                    list.pick(index);
            }
        }
        ScrollBar.vertical: ScrollThumb { }
    }
}

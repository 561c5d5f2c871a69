// qmllint disable
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// The latest lines of the log, the newest at the bottom. Follows the tail, unless the person has
/// scrolled away from it.
Rectangle {
    id: frame

    required property LogListModel log
    required property InspectorModel inspector

    radius: Theme.tileRadius
    color: Theme.console
    border.width: list.visualFocus ? 2 : 1
    border.color: list.visualFocus ? Theme.focus : Theme.border

    ListView {
        id: list

        property bool followsTail: true
        property bool visualFocus: false
        property string revealed ///< the open line that was scrolled into view

        function scrollBy(distance: real) {
            const last = Math.max(originY, originY + contentHeight - height);
            contentY = Math.max(originY, Math.min(last, contentY + distance));
            followsTail = atYEnd;
        }

        /// After the layout that moved the tail: in its midst the rows lose their places.
        function followTail() {
            if (!followsTail)
                return;
            forceLayout();
            positionViewAtEnd();
        }

        objectName: "console"
        anchors.fill: parent
        anchors.margins: 1
        header: Item { height: 3 }
        footer: Item { height: 3 }
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        currentIndex: -1 // the focus stays with the list
        keyNavigationEnabled: false
        reuseItems: true
        model: frame.log
        onMovementEnded: followsTail = atYEnd
        onCountChanged: Qt.callLater(followTail)
        onContentHeightChanged: Qt.callLater(followTail)
        onHeightChanged: Qt.callLater(followTail)
        onActiveFocusChanged: visualFocus = activeFocus
        Accessible.role: Accessible.List
        Accessible.name: "Canlı Akış Konsolu"
        /// Once for each line that is opened: whoever scrolls away from it is left there.
        function reveal(row: LogLine) {
            if (revealed === row.line)
                return;
            revealed = row.line;
            followsTail = false;
            forceLayout();
            const above = row.y - contentY;
            const below = above + row.height - height;
            scrollBy(above < 0 ? above : Math.max(0, Math.min(above, below)));
            followsTail = false;
        }
        /// The line in the middle of what is seen.
        function toggleMiddle() {
            const line = itemAt(width / 2, contentY + height / 2) as LogLine;
            if (line)
                line.toggle();
        }
        Keys.onReturnPressed: toggleMiddle()
        Keys.onEnterPressed: toggleMiddle()
        Keys.onEscapePressed: event => {
            event.accepted = frame.inspector.openLine.length > 0;
            if (event.accepted)
                frame.inspector.close();
        }
        Keys.onUpPressed: scrollBy(-16)
        Keys.onDownPressed: scrollBy(16)
        Keys.onPressed: event => {
            const distance = { [Qt.Key_PageUp]: -height, [Qt.Key_PageDown]: height,
                               [Qt.Key_Home]: -contentHeight, [Qt.Key_End]: contentHeight }[event.key];
            event.accepted = distance !== undefined;
            if (event.accepted)
                scrollBy(distance);
        }
        delegate: LogLine {
            width: ListView.view.width
            inspector: frame.inspector
            onOpened: Qt.callLater(list.reveal, this)
        }
        ScrollBar.vertical: ScrollThumb {
            onPressedChanged: if (!pressed) list.followsTail = list.atYEnd
        }
    }
}

// qmllint disable
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// A row of the review: the header of a group, an item with what can be done, or a link.
Item {
    id: row

    required property int index
    required property string kind
    required property string title
    required property string text
    required property string symbol
    required property string count
    required property bool isWarning
    required property bool isOpen
    required property bool isFirst
    required property bool isLast
    required property string thumbnail
    required property string action
    required property string actionName
    required property bool isDate
    required property bool canReveal
    required property string name
    signal acted()
    signal revealed()
    /// The keyboard goes on beyond the row: 1 forwards, -1 backwards.
    signal passed(int step)

    function controls() {
        return content.item.controls.filter(control => control.visible);
    }
    function takeFocus(isLast: bool): bool {
        const all = controls();
        if (all.length > 0)
            all[isLast ? all.length - 1 : 0].forceActiveFocus(Qt.TabFocusReason);
        return all.length > 0;
    }
    function step(from: Item, direction: int) {
        const all = controls();
        const next = all.indexOf(from) + direction;
        if (next >= 0 && next < all.length)
            all[next].forceActiveFocus(Qt.TabFocusReason);
        else
            passed(direction);
    }

    height: content.height + (isLast ? 8 : 0)
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    ListView.onPooled: visible = false // nobody reads what waits for another row
    ListView.onReused: visible = true

    Item {
        width: parent.width
        height: content.height
        clip: true

        Rectangle { // of the table around the group, the part beside this row
            y: row.isFirst ? 0 : -radius
            width: parent.width
            height: parent.height - y + (row.isLast ? 0 : radius)
            radius: Theme.tileRadius
            color: row.kind === "group" ? Theme.surfaceInset : Theme.surface
            border.width: 1
            border.color: Theme.border
        }
        Rectangle {
            visible: !row.isFirst
            width: parent.width
            height: 1
            color: Theme.border
        }
    }
    Loader {
        id: content
        width: parent.width
        sourceComponent: row.kind === "group" ? header : row.kind === "item" ? item : link
    }

    Component {
        id: header

        AbstractButton {
            id: fold

            readonly property var controls: [fold]

            objectName: "group" + row.index
            implicitHeight: words.height + 13
            focusPolicy: Qt.StrongFocus
            Accessible.role: Accessible.Button
            Accessible.name: row.name
            Accessible.onPressAction: if (row.enabled) row.acted()
            onClicked: row.acted()
            Keys.onReturnPressed: row.acted()
            Keys.onEnterPressed: row.acted()
            Keys.onTabPressed: row.passed(1)
            Keys.onBacktabPressed: row.passed(-1)
            background: Item { FocusRing { shown: fold.visualFocus; inside: true } }

            Symbol {
                x: 13
                size: 20
                name: row.symbol
                color: row.isWarning ? Theme.warningIcon : Theme.textSecondary
                anchors.verticalCenter: parent.verticalCenter
            }
            Column {
                id: words
                x: 45
                y: 6
                width: count.x - x - 12

                Words {
                    width: parent.width
                    role: Theme.value
                    text: row.title
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
                Words {
                    width: parent.width
                    role: Theme.note
                    text: row.text
                    color: Theme.textSecondary
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
            }
            Words {
                id: count
                x: parent.width - 41 - implicitWidth
                role: Theme.button
                text: row.count
                Accessible.ignored: true
                anchors.verticalCenter: parent.verticalCenter
            }
            Symbol {
                x: parent.width - 29
                size: 16
                name: row.isOpen ? "x.chevron.down" : "x.chevron.right"
                color: Theme.textTertiary
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }
    Component {
        id: item

        Item {
            readonly property var controls: [accept, show, again]

            implicitHeight: Math.max(60, words.height + 20)

            Rectangle {
                x: 13
                y: 10
                width: 40
                height: 40
                radius: 6
                color: Theme.surfaceInset

                Symbol {
                    anchors.centerIn: parent
                    size: 20
                    visible: !picture.visible
                    name: row.symbol
                    color: Theme.textSecondary
                }
                Image {
                    id: picture
                    anchors.fill: parent
                    source: row.thumbnail
                    visible: status === Image.Ready && implicitWidth > 1 // one clear pixel: there is none
                    Accessible.ignored: true
                }
            }
            Column {
                id: words
                x: 65
                y: 10
                width: parent.width - x - 13

                Words {
                    width: parent.width
                    role: Theme.value
                    text: row.title
                    elide: Text.ElideMiddle
                    Accessible.ignored: true
                }
                Words {
                    width: parent.width
                    role: Theme.note
                    text: row.text
                    color: Theme.textSecondary
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
                Item { width: 1; height: accept.visible ? 4 : 2 }
                Row {
                    spacing: 16

                    ActionButton {
                        id: accept
                        objectName: "accept" + row.index
                        visible: row.isDate && row.action.length > 0
                        implicitHeight: 28
                        small: true
                        text: row.action
                        Accessible.name: row.actionName
                        onClicked: row.acted()
                        Keys.onTabPressed: row.step(accept, 1)
                        Keys.onBacktabPressed: row.step(accept, -1)
                    }
                    ActionButton {
                        id: show
                        objectName: "show" + row.index
                        visible: row.canReveal
                        implicitHeight: accept.visible ? 28 : 24
                        leftPadding: 0
                        kind: "link"
                        small: true
                        text: "Göster"
                        Accessible.name: "Göster: " + row.title
                        onClicked: row.revealed()
                        Keys.onTabPressed: row.step(show, 1)
                        Keys.onBacktabPressed: row.step(show, -1)
                    }
                    ActionButton {
                        id: again
                        objectName: "again" + row.index
                        visible: !row.isDate && row.action.length > 0
                        implicitHeight: 24
                        leftPadding: 0
                        kind: "link"
                        small: true
                        text: row.action
                        Accessible.name: row.actionName
                        onClicked: row.acted()
                        Keys.onTabPressed: row.step(again, 1)
                        Keys.onBacktabPressed: row.step(again, -1)
                    }
                }
            }
        }
    }
    Component {
        id: link

        Item {
            readonly property var controls: [press]

            implicitHeight: 33

            ActionButton {
                id: press
                objectName: "link" + row.index
                x: 56
                y: 1
                kind: "link"
                small: true
                text: row.title
                onClicked: row.acted()
                Keys.onTabPressed: row.passed(1)
                Keys.onBacktabPressed: row.passed(-1)
            }
        }
    }
}

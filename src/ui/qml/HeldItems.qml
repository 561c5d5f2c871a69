pragma ComponentBehavior: Bound
import QtQuick
import Quorvane

/// One row for each reason, with its count.
Rectangle {
    id: table

    required property quarantineView view
    signal accepted(string identifier)
    signal acceptedKind(string kind)
    signal moreWanted()

    implicitHeight: column.implicitHeight + 1
    radius: Theme.tileRadius
    color: Theme.surface
    border.width: 1
    border.color: Theme.border

    Column {
        id: column
        y: 1
        width: parent.width

        Repeater {
            id: reasons
            model: table.view.rows

            Item {
                id: reason

                required property var modelData
                required property int index

                width: column.width
                height: words.implicitHeight + 13 + items.height
                Accessible.role: Accessible.ListItem
                Accessible.name: modelData.title + ": " + modelData.count + ". " + modelData.text

                Symbol {
                    x: 13
                    size: 20
                    name: reason.modelData.symbol
                    color: reason.modelData.isUndated ? Theme.warningIcon : Theme.textSecondary
                    anchors.verticalCenter: words.verticalCenter
                }
                Column {
                    id: words
                    x: 45
                    y: 6
                    width: count.x - x - 12

                    Words {
                        width: parent.width
                        role: Theme.value
                        text: reason.modelData.title
                        wrapMode: Text.Wrap
                        Accessible.ignored: true
                    }
                    Words {
                        width: parent.width
                        role: Theme.note
                        text: reason.modelData.text
                        color: Theme.textSecondary
                        wrapMode: Text.Wrap
                        Accessible.ignored: true
                    }
                }
                Words {
                    id: count
                    x: parent.width - 13 - implicitWidth
                    role: Theme.button
                    text: reason.modelData.count
                    Accessible.ignored: true
                    anchors.verticalCenter: words.verticalCenter
                }
                UndatedItems {
                    id: items

                    readonly property bool isWanted: reason.modelData.listsItems

                    y: words.implicitHeight + 13
                    width: parent.width
                    height: isWanted ? implicitHeight : 0
                    items: isWanted ? table.view.items : []
                    moreTitle: isWanted ? table.view.moreTitle : ""
                    kinds: isWanted ? table.view.kinds : []
                    onAccepted: identifier => table.accepted(identifier)
                    onAcceptedKind: kind => table.acceptedKind(kind)
                    onMoreWanted: table.moreWanted()
                }
                Rectangle {
                    visible: reason.index < reasons.count - 1
                    x: 1
                    y: parent.height - 1
                    width: parent.width - 2
                    height: 1
                    color: Theme.border
                }
            }
        }
    }
}

pragma ComponentBehavior: Bound
import QtQuick
import Quorvane

/// One row for each thing that was looked at, with a button where a press helps.
Rectangle {
    id: table

    property var rows: []
    signal chosen(int row)

    height: rows.length > 0 ? column.height + 2 : 0
    visible: rows.length > 0
    radius: Theme.tileRadius
    color: Theme.surface
    border.width: 1
    border.color: Theme.border

    Column {
        id: column
        y: 1
        width: parent.width

        Repeater {
            id: things
            model: table.rows

            Item {
                id: thing

                required property var modelData
                required property int index

                width: column.width
                height: Math.max(words.implicitHeight, 32) + 24
                Accessible.role: Accessible.ListItem
                Accessible.name: modelData.name

                Symbol {
                    x: 13
                    size: 20
                    name: thing.modelData.symbol
                    color: {
                        switch (thing.modelData.state) {
                        case "fine":
                            return Theme.success;
                        case "warning":
                            return Theme.warningIcon;
                        case "faulty":
                            return Theme.danger;
                        }
                        return Theme.textTertiary;
                    }
                    anchors.verticalCenter: parent.verticalCenter
                }
                Column {
                    id: words
                    x: 45
                    width: (action.visible ? action.x : parent.width) - x - 12
                    spacing: 2
                    anchors.verticalCenter: parent.verticalCenter

                    Words {
                        width: parent.width
                        role: Theme.value
                        text: thing.modelData.title
                        wrapMode: Text.Wrap
                        Accessible.ignored: true
                    }
                    Words {
                        width: parent.width
                        visible: text.length > 0
                        role: Theme.note
                        text: thing.modelData.text
                        color: Theme.textSecondary
                        wrapMode: Text.Wrap
                        Accessible.ignored: true
                    }
                }
                ActionButton {
                    id: action
                    objectName: "checkHelp" + thing.index
                    x: parent.width - width - 13
                    small: true
                    visible: text.length > 0
                    text: thing.modelData.action
                    onClicked: table.chosen(thing.index)
                    anchors.verticalCenter: parent.verticalCenter
                }
                Rectangle {
                    visible: thing.index < things.count - 1
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

pragma ComponentBehavior: Bound
import QtQuick
import Quorvane

/// Counts below a question, with their sum.
Rectangle {
    id: table

    property string title
    property string sum
    property var rows: []

    height: column.height + 2
    radius: Theme.tileRadius
    color: Theme.surface
    border.width: 1
    border.color: Theme.border

    Column {
        id: column
        x: 1
        y: 1
        width: parent.width - 2

        Rectangle {
            width: parent.width
            height: 32
            radius: Theme.tileRadius - 1
            color: Theme.surfaceInset

            Rectangle { // square where the rows begin
                y: parent.height - height
                width: parent.width
                height: parent.radius
                color: parent.color
            }
            Words {
                x: 12
                role: Theme.strong
                text: table.title
                color: Theme.textSecondary
                anchors.verticalCenter: parent.verticalCenter
            }
            Words {
                x: parent.width - width - 12
                role: Theme.strong
                text: table.sum
                color: Theme.textSecondary
                anchors.verticalCenter: parent.verticalCenter
            }
        }
        Repeater {
            model: table.rows

            Item {
                id: row

                required property var modelData

                width: column.width
                height: Math.max(46, words.implicitHeight + 12)
                Accessible.role: Accessible.ListItem
                Accessible.name: modelData.title + ", " + modelData.count
                Accessible.description: modelData.note

                Rectangle {
                    width: parent.width
                    height: 1
                    color: Theme.border
                }
                Column {
                    id: words
                    x: 12
                    width: count.x - x - 12
                    anchors.verticalCenter: parent.verticalCenter

                    Words {
                        width: parent.width
                        role: Theme.value
                        text: row.modelData.title
                        wrapMode: Text.Wrap
                        Accessible.ignored: true
                    }
                    Words {
                        width: parent.width
                        role: Theme.note
                        text: row.modelData.note
                        color: Theme.textSecondary
                        wrapMode: Text.Wrap
                        Accessible.ignored: true
                    }
                }
                Words {
                    id: count
                    x: parent.width - width - 12
                    role: Theme.button
                    text: row.modelData.count
                    anchors.verticalCenter: parent.verticalCenter
                    Accessible.ignored: true
                }
            }
        }
    }
}

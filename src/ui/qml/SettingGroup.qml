import QtQuick

/// Settings of one kind, one below the other, under their title.
Column {
    id: group

    property string title
    default property alias rows: column.data

    width: parent ? parent.width : 0
    spacing: 8

    SectionTitle {
        text: group.title
        Accessible.role: Accessible.Heading
    }
    Rectangle {
        width: parent.width
        height: column.height + 2
        radius: Theme.tileRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.border

        Column {
            id: column
            y: 1
            width: parent.width
        }
    }
}

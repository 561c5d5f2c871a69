import QtQuick

/// A title with a line of explanation, and what changes it on the right.
Item {
    id: row

    property string title
    property string note
    property bool isWarning: false
    property bool isLast: false
    default property alias control: place.data

    width: parent ? parent.width : 0
    implicitHeight: Math.max(words.implicitHeight + 14, place.height + (note ? 12 : 18), note ? 48 : 44)

    Column {
        id: words
        x: 13
        width: place.x - x - 12
        anchors.verticalCenter: parent.verticalCenter

        Words {
            width: parent.width
            role: Theme.value
            text: row.title
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
        Words {
            width: parent.width
            visible: text.length > 0
            role: Theme.note
            text: row.note
            color: row.isWarning ? Theme.warning : Theme.textSecondary
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
    Item {
        id: place
        x: parent.width - width - 13
        width: childrenRect.width
        height: childrenRect.height
        anchors.verticalCenter: parent.verticalCenter
    }
    Rectangle {
        visible: !row.isLast
        x: 1
        y: parent.height - 1
        width: parent.width - 2
        height: 1
        color: Theme.border
    }
}

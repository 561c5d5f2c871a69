import QtQuick

/// A name and its value.
Item {
    id: row

    property alias title: label.text
    property alias value: figure.text
    property bool isActive: false
    property bool isQuiet: false
    property bool isLast: false

    implicitHeight: 32
    Accessible.role: Accessible.StaticText
    Accessible.name: title + " " + value

    Words {
        id: label
        x: 13
        role: Theme.caption
        color: Theme.textSecondary
        anchors.verticalCenter: parent.verticalCenter
        Accessible.ignored: true
    }
    Words {
        id: figure
        x: parent.width - 13 - width
        width: Math.min(implicitWidth, parent.width - label.width - 46)
        role: Theme.value
        color: row.isActive ? Theme.success : row.isQuiet ? Theme.textSecondary : Theme.textPrimary
        elide: Text.ElideRight
        anchors.verticalCenter: parent.verticalCenter
        Accessible.ignored: true
    }
    Rectangle {
        visible: row.isActive
        x: figure.x - 12
        width: 6
        height: 6
        radius: 3
        color: Theme.success
        anchors.verticalCenter: parent.verticalCenter
    }
    Rectangle {
        visible: !row.isLast
        x: 1
        y: 31
        width: parent.width - 2
        height: 1
        color: Theme.divider
    }
}

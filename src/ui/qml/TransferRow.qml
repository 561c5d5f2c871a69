import QtQuick
import Quorvane

/// One upload: its name, how far it is, and a bar that glides.
Progress {
    id: row

    required property int index
    required property string fileName
    required property string symbol
    required property string percent
    required property string progressName
    required property real progress
    property bool isLast: false

    height: 48
    value: progress * 100
    Accessible.role: Accessible.ProgressBar
    Accessible.name: fileName + ", " + progressName

    Symbol {
        x: 13
        name: row.symbol
        color: Theme.textSecondary
        anchors.verticalCenter: parent.verticalCenter
    }
    Words {
        x: 43
        y: 9
        width: percentage.x - x - 12
        role: Theme.value
        text: row.fileName
        elide: Text.ElideMiddle
        Accessible.ignored: true
    }
    Words {
        id: percentage
        x: parent.width - 13 - implicitWidth
        y: 10
        role: Theme.caption
        text: row.percent
        color: Theme.textSecondary
        Accessible.ignored: true
    }
    Rectangle {
        id: track
        x: 43
        y: 34
        width: parent.width - x - 13
        height: 4
        radius: 2
        color: Theme.track

        Rectangle {
            width: parent.width * row.progress
            height: 4
            radius: 2
            color: Theme.progress
            Behavior on width { NumberAnimation { duration: Theme.progressTime } }
        }
    }
    Rectangle {
        visible: !row.isLast
        x: 1
        y: 47
        width: parent.width - 2
        height: 1
        color: Theme.divider
    }
}

import QtQuick

/// A speed in large figures.
Card {
    id: tile

    property alias title: label.text
    property alias value: figure.text
    property bool isLive: false

    implicitHeight: 68
    radius: Theme.tileRadius
    Accessible.role: Accessible.StaticText
    Accessible.name: title + ": " + value

    Words {
        id: label
        x: 13
        y: 11
        role: Theme.overline
        color: Theme.textTertiary
        Accessible.ignored: true
    }
    Words {
        id: figure
        x: 13
        y: 29
        width: parent.width - 26
        role: Theme.speedFigure
        color: tile.isLive ? Theme.accentText : Theme.textPrimary
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}

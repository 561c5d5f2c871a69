import QtQuick
import Quorvane

/// The small square with the symbol of a card.
Rectangle {
    id: tile

    property alias symbol: glyph.name
    property bool muted: false
    property color ink: !enabled ? Theme.textDisabled : muted ? Theme.textSecondary : Theme.accentText

    implicitWidth: 32
    implicitHeight: 32
    radius: Theme.tileRadius
    color: muted || !enabled ? Theme.surfaceInset : Theme.accentTint

    Symbol {
        id: glyph
        anchors.centerIn: parent
        color: tile.ink
    }
}

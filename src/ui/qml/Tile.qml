import QtQuick
import Quorvane

/// The small square with the symbol of a card.
Rectangle {
    id: tile

    property alias symbol: glyph.name
    property bool muted: false

    implicitWidth: 32
    implicitHeight: 32
    radius: Theme.tileRadius
    color: muted || !enabled ? Theme.surfaceInset : Theme.accentTint

    Symbol {
        id: glyph
        anchors.centerIn: parent
        color: !tile.enabled ? Theme.textDisabled : tile.muted ? Theme.textSecondary : Theme.accentText
    }
}

import QtQuick
import Quorvane

/// A quiet note below what a card says.
Item {
    property alias text: words.text
    property alias symbol: icon.name

    implicitHeight: words.implicitHeight

    Symbol {
        id: icon
        x: 8
        size: 16
        name: "shield.checkmark.fill"
        color: Theme.textTertiary
    }
    Words {
        id: words
        x: 44
        width: parent.width - x
        role: Theme.note
        color: Theme.textSecondary
        wrapMode: Text.Wrap
    }
}

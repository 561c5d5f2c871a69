import QtQuick
import Quorvane

/// A quiet assurance below what a card says.
Item {
    property alias text: words.text

    implicitHeight: words.implicitHeight

    Symbol {
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

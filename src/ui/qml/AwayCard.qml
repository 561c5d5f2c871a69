import QtQuick
import Quorvane

/// In place of the hero while the library is not where it was: which it is, since when, what to do.
Card {
    id: card

    required property Dashboard dashboard
    readonly property libraryView library: dashboard.library
    readonly property real natural: head.height + box.height + note.height + pair.height
    readonly property real gap: Math.max(9, Math.min(22, (height - 34 - natural) / 3))

    implicitHeight: 34 + natural + 27

    Item {
        id: head
        x: 17
        y: 17
        width: parent.width - 34
        height: Math.max(36, headWords.implicitHeight)

        Tile {
            y: 2
            color: Theme.warningTint
            ink: Theme.warningIcon
            symbol: "externaldrive.badge.xmark"
        }
        Column {
            id: headWords
            x: 44
            width: parent.width - x
            Words {
                width: parent.width
                role: Theme.cardTitle
                text: card.dashboard.hero.title
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
            }
            Words {
                objectName: "awaySince"
                width: parent.width
                role: Theme.caption
                text: card.library.since
                color: Theme.textSecondary
                wrapMode: Text.Wrap
            }
        }
    }
    Rectangle {
        id: box
        x: 17
        y: head.y + head.height + card.gap
        width: parent.width - 34
        height: boxWords.height + 20
        radius: Theme.tileRadius
        color: Theme.surfaceInset
        Accessible.role: Accessible.StaticText
        Accessible.name: "Kitaplık: " + card.library.name + ", " + card.library.kind
        Accessible.description: card.library.path

        Symbol {
            x: 7
            y: 10
            name: "photo.stack.fill"
            color: Theme.textSecondary
        }
        Column {
            id: boxWords
            x: 44
            y: 10
            width: parent.width - x - 10
            Words {
                width: parent.width
                role: Theme.value
                text: card.library.name
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            Words {
                width: parent.width
                role: Theme.caption
                text: card.library.kind
                color: Theme.textSecondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            Words {
                width: parent.width
                role: Theme.caption
                text: card.library.path
                color: Theme.textSecondary
                elide: Text.ElideMiddle
                Accessible.ignored: true
            }
        }
        HoverHandler { id: hover }
        Tip { shown: hover.hovered; text: card.library.path }
    }
    NoteRow {
        id: note
        x: 17
        y: box.y + box.height + card.gap
        width: parent.width - 34
        text: "Hiçbir kayıt silinmedi; disk takılınca eşitleme sürer."
    }
    ButtonPair {
        id: pair
        x: 17
        y: parent.height - 17 - implicitHeight
        width: parent.width - 34
        height: implicitHeight
        first: ActionButton {
            objectName: "lookAgain"
            kind: "filled"
            symbol: "arrow.triangle.2.circlepath"
            text: "Yeniden Bak"
            onClicked: card.dashboard.lookForLibrary()
        }
        second: ActionButton {
            objectName: "otherLibrary"
            text: "Başka Kitaplık…"
            onClicked: card.dashboard.chooseLibrary()
        }
    }
}

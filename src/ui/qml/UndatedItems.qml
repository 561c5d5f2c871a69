pragma ComponentBehavior: Bound
import QtQuick
import Quorvane

/// The items without a date and what speaks for one, each with its own agreement.
Column {
    id: list

    property var items: []
    property string moreTitle
    property var kinds: []
    signal accepted(string identifier)
    signal acceptedKind(string kind)
    signal moreWanted()

    Repeater {
        model: list.items

        Item {
            id: item

            required property var modelData
            required property int index

            width: list.width
            height: words.implicitHeight + 20
            Accessible.role: Accessible.ListItem
            Accessible.name: modelData.name + ". " + modelData.evidence

            Rectangle {
                width: parent.width
                height: 1
                color: Theme.border
            }
            Rectangle {
                x: 13
                y: 10
                width: 40
                height: 40
                radius: 6
                color: Theme.surfaceInset

                Symbol {
                    anchors.centerIn: parent
                    size: 20
                    name: item.modelData.symbol
                    color: Theme.textSecondary
                }
            }
            Column {
                id: words
                x: 65
                y: 10
                width: parent.width - x - 13

                Words {
                    width: parent.width
                    role: Theme.value
                    text: item.modelData.name
                    elide: Text.ElideMiddle
                    Accessible.ignored: true
                }
                Words {
                    width: parent.width
                    role: Theme.note
                    text: item.modelData.evidence
                    color: Theme.textSecondary
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
                Item { width: 1; height: accept.visible ? 4 : 0 }
                ActionButton {
                    id: accept
                    objectName: "accept" + item.index
                    visible: item.modelData.acceptName.length > 0
                    small: true
                    text: "Bu tarihi kullan"
                    Accessible.name: item.modelData.acceptName
                    onClicked: list.accepted(item.modelData.identifier)
                }
            }
        }
    }
    ActionButton {
        objectName: "moreUndated"
        x: 56
        visible: text.length > 0
        kind: "link"
        small: true
        text: list.moreTitle
        onClicked: list.moreWanted()
    }
    Repeater {
        model: list.kinds

        ActionButton {
            required property var modelData
            required property int index

            objectName: "acceptKind" + index
            x: 56
            kind: "link"
            small: true
            text: modelData.title
            onClicked: list.acceptedKind(modelData.kind)
        }
    }
}

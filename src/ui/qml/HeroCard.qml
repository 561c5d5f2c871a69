import QtQuick
import Quorvane

/// The state of the archive in one look, and the one thing to do about it.
Card {
    id: card

    required property Dashboard dashboard
    readonly property heroView hero: dashboard.hero
    readonly property bool isSyncing: hero.kind === "syncing"
    readonly property real below: 57 + 12 + (quarantine.visible ? 48 : 0)

    implicitHeight: 17 + 88 + below

    HeroRing {
        id: ring
        objectName: "ring"
        x: 17
        y: Math.round((17 + parent.height - card.below - height) / 2)
        hero: card.hero
    }
    Column {
        x: 121
        width: parent.width - x - 17
        anchors.verticalCenter: ring.verticalCenter

        Words {
            objectName: "heroTitle"
            width: parent.width
            role: Theme.heroTitle
            text: card.hero.title
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        Item { width: 1; height: 2 }
        Words {
            width: parent.width
            role: Theme.caption
            text: card.hero.subtitle
            color: Theme.textSecondary
            wrapMode: Text.Wrap
        }
        Item { width: 1; height: 8 }
        Words {
            objectName: "heroNote"
            width: parent.width
            role: Theme.caption
            text: card.hero.note
            color: Theme.textTertiary
            wrapMode: Text.Wrap
            visible: !card.isSyncing
        }
        Row {
            spacing: 8
            visible: card.isSyncing

            Words { role: Theme.button; text: card.hero.note }
            Rectangle {
                width: 3
                height: 3
                radius: 2
                color: Theme.textTertiary
                anchors.verticalCenter: parent.verticalCenter
            }
            Words { role: Theme.button; text: card.hero.speed; color: Theme.accentText }
        }
    }
    QuarantineLink {
        id: quarantine
        objectName: "quarantineLink"
        x: 17
        y: button.y - 48
        width: parent.width - 34
        text: card.hero.quarantine
        visible: text.length > 0
        onClicked: card.dashboard.model.showQuarantineSheet = true
    }
    ActionButton {
        id: button
        objectName: card.isSyncing ? "stop" : "start"
        x: 17
        y: parent.height - 57
        width: parent.width - 34
        kind: card.isSyncing ? "outline" : "filled"
        symbol: card.isSyncing ? "stop.fill" : "arrow.triangle.2.circlepath"
        text: card.isSyncing ? "Eşitlemeyi Durdur" : card.hero.startTitle
        onClicked: card.isSyncing ? card.dashboard.model.stopSync() : card.dashboard.model.triggerSync()
    }
}

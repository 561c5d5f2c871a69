import QtQuick
import Quorvane

/// The state of the archive in one look, and the one thing to do about it.
Card {
    id: card

    required property Dashboard dashboard
    readonly property heroView hero: dashboard.hero
    readonly property bool hasButton: hero.canStop || hero.startTitle.length > 0
    readonly property real buttonHeight: !hasButton ? 0 : hero.canTryNow ? pair.implicitHeight : 40
    readonly property real buttonTop: height - 17 - buttonHeight
    readonly property real below: 17 + (hasButton ? buttonHeight + 12 : 0) + (quarantine.visible ? 48 : 0)
                                  + (safety.visible ? safety.height + 12 : 0)

    implicitHeight: 17 + Math.max(88, words.implicitHeight) + below

    HeroRing {
        id: ring
        objectName: "ring"
        x: 17
        y: Math.round((17 + parent.height - card.below - height) / 2)
        hero: card.hero
    }
    Column {
        id: words
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
            objectName: "heroSubtitle"
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
            visible: !card.hero.canStop
        }
        ActionButton {
            objectName: "runReport"
            x: -leftPadding
            height: 24
            small: true
            kind: "link"
            text: "Rapor…"
            Accessible.name: "Son eşitlemenin raporu"
            visible: !card.hero.canStop && card.dashboard.runReport.isOffered
            onClicked: card.dashboard.runReport.request()
        }
        Row {
            spacing: 8
            visible: card.hero.canStop

            Words { role: Theme.button; text: card.hero.note }
            Rectangle {
                width: 3
                height: 3
                radius: 2
                color: Theme.textTertiary
                anchors.verticalCenter: parent.verticalCenter
            }
            Words {
                role: Theme.button
                text: card.hero.aside
                color: card.hero.canTryNow ? Theme.warning : Theme.accentText
            }
        }
        Words {
            objectName: "timeLeft"
            width: parent.width
            role: Theme.caption
            text: card.hero.timeLeft
            color: Theme.textTertiary
            visible: text.length > 0
        }
    }
    NoteRow {
        id: safety
        objectName: "safety"
        x: 17
        y: card.buttonTop - height - 12 - (quarantine.visible ? 48 : 0)
        width: parent.width - 34
        symbol: card.hero.safety.length > 0 ? "shield.checkmark.fill" : "exclamationmark.circle.fill"
        text: card.hero.safety.length > 0 ? card.hero.safety : card.hero.leftOut
        visible: text.length > 0
    }
    QuarantineLink {
        id: quarantine
        objectName: "quarantineLink"
        x: 17
        y: card.buttonTop - (card.hasButton ? 48 : 36)
        width: parent.width - 34
        text: card.hero.quarantine
        visible: text.length > 0
        onClicked: card.dashboard.showReview()
    }
    ButtonPair {
        id: pair
        x: 17
        y: card.buttonTop
        width: parent.width - 34
        visible: card.hero.canTryNow
        first: ActionButton {
            objectName: "tryNow"
            kind: "filled"
            symbol: "arrow.triangle.2.circlepath"
            text: "Şimdi Dene"
            onClicked: card.dashboard.tryNow()
        }
        second: ActionButton {
            objectName: pair.visible ? "stop" : ""
            symbol: "stop.fill"
            text: "Eşitlemeyi Durdur"
            onClicked: card.dashboard.stopSync()
        }
    }
    ActionButton {
        objectName: !visible ? "" : card.hero.canStop ? "stop" : "start"
        x: 17
        y: card.buttonTop
        width: parent.width - 34
        visible: card.hasButton && !card.hero.canTryNow
        kind: card.hero.canStop ? "outline" : "filled"
        symbol: card.hero.canStop ? "stop.fill" : card.hero.startSymbol
        text: card.hero.canStop ? "Eşitlemeyi Durdur" : card.hero.startTitle
        onClicked: card.hero.canStop ? card.dashboard.stopSync() : card.dashboard.startSync()
    }
}

import QtQuick
import Quorvane

/// In place of the account while Google wants the person to sign in again.
Card {
    id: card

    required property Dashboard dashboard
    readonly property bool isBusy: dashboard.account.isSigningIn

    implicitHeight: 126 + (help.visible ? help.height + 12 : 0)
    Accessible.role: Accessible.Grouping
    Accessible.name: title.text + ", " + email.text

    Rectangle {
        x: 17
        y: 17
        width: 40
        height: 40
        radius: 20
        color: Theme.warningTint
        Symbol {
            anchors.centerIn: parent
            size: 22
            name: "person.crop.circle.fill"
            color: Theme.warningIcon
        }
    }
    Column {
        x: 69
        y: 19
        width: parent.width - x - 17

        Row {
            spacing: 8
            Words { id: title; role: Theme.cardTitle; text: "Oturumun süresi doldu" }
            Symbol {
                size: 16
                stroke: 2
                name: "exclamationmark.circle.fill"
                color: Theme.warningIcon
                anchors.verticalCenter: parent.verticalCenter
            }
        }
        Words {
            id: email
            width: parent.width
            role: Theme.caption
            text: card.dashboard.account.email
            color: Theme.textSecondary
            elide: Text.ElideMiddle
        }
    }
    SignInHelp {
        id: help
        dashboard: card.dashboard
        x: 17
        y: 69
        width: parent.width - 34
    }
    ActionButton {
        objectName: "signInAgain"
        x: 17
        y: parent.height - 57
        width: parent.width - 34
        kind: card.isBusy ? "outline" : "filled"
        symbol: card.isBusy ? "xmark" : "person.crop.circle.badge.plus"
        text: card.isBusy ? "Vazgeç" : "Yeniden Giriş Yap"
        onClicked: card.isBusy ? card.dashboard.cancelSignIn() : card.dashboard.signIn()
    }
}

import QtQuick
import Quorvane

/// In place of account and hero while nobody is signed in.
Card {
    id: card

    required property Dashboard dashboard
    readonly property bool isBusy: dashboard.account.isSigningIn

    implicitHeight: 126 + 40 + 12 + 34 + 12 + 34 + (help.visible ? help.height + 16 : 0)

    Column {
        anchors.horizontalCenter: parent.horizontalCenter
        y: Math.round(((help.visible ? help.y : button.y) - 12 + 17 - height) / 2) + 8
        width: parent.width - 34

        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 64
            height: 64
            radius: 32
            color: Theme.accentTint
            Symbol {
                anchors.centerIn: parent
                size: 32
                name: "icloud.and.arrow.up.fill"
                color: Theme.accentText
            }
        }
        Item { width: 1; height: 16 }
        Words {
            width: parent.width
            role: Theme.heroTitle
            text: "Google Hesabınızı Bağlayın"
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        Item { width: 1; height: 4 }
        Words {
            width: parent.width
            text: "Arşivinizi güvenle eşitlemek için oturum açın."
            color: Theme.textSecondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        Item { width: 1; height: 4 }
        Words {
            width: parent.width
            role: Theme.note
            text: "Yüklemeler özgün kalitededir ve Google hesabınızın depolama alanından düşer."
            color: Theme.textSecondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
    }
    SignInHelp {
        id: help
        dashboard: card.dashboard
        x: 17
        y: button.y - height - 12
        width: parent.width - 34
    }
    ActionButton {
        id: button
        objectName: "signIn"
        x: 17
        y: parent.height - 57
        width: parent.width - 34
        kind: card.isBusy ? "outline" : "filled"
        symbol: card.isBusy ? "xmark" : "person.crop.circle.badge.plus"
        text: card.isBusy ? "Vazgeç" : "Google ile Giriş Yap"
        onClicked: card.isBusy ? card.dashboard.cancelSignIn() : card.dashboard.signIn()
    }
}

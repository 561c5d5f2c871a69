import QtQuick
import Quorvane

/// The albums cannot be listed with what was granted.
Card {
    id: card

    required property Dashboard dashboard

    implicitHeight: words.implicitHeight + buttons.implicitHeight + 36 +
                    (help.visible ? help.height + 10 : 0)

    Tile { x: 17; y: 13; symbol: "lock.shield.fill" }
    Column {
        id: words
        x: 61
        y: 13
        width: parent.width - x - 14
        spacing: 2

        Words {
            width: parent.width
            role: Theme.button
            text: "Google Albümleriniz Görünmüyor mu?"
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        Words {
            width: parent.width
            role: Theme.note
            text: "Google Photos'taki mevcut albümlerinizi listelemek için albüm erişim iznini onaylamanız gerekir. Tek tıkla izni tazeleyebilirsiniz."
            color: Theme.textSecondary
            wrapMode: Text.Wrap
        }
    }
    Flow {
        id: buttons
        x: 17
        y: words.y + words.height + 10
        width: parent.width - 34
        spacing: 8

        ActionButton {
            objectName: "renewAccess"
            small: true
            accentSymbol: true
            symbol: "lock.shield.fill"
            text: card.dashboard.account.isSigningIn ? "Vazgeç" : "İzni Yenile (Giriş Yap)"
            onClicked: card.dashboard.account.isSigningIn ? card.dashboard.cancelSignIn()
                                                          : card.dashboard.renewAccess()
        }
        ActionButton {
            objectName: "reloadAlbums"
            small: true
            kind: "link"
            symbol: "arrow.clockwise.circle.fill"
            text: "Google Albümlerini Yenile"
            enabled: !card.dashboard.route.isLoadingAlbums
            onClicked: card.dashboard.loadAlbums()
        }
    }
    SignInHelp {
        id: help
        dashboard: card.dashboard
        x: 17
        y: buttons.y + buttons.height + 10
        width: parent.width - 34
    }
}

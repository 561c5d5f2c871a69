import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Quorvane

/// The dashboard: cards that scroll when they do not fit, above a footer that never moves.
Item {
    id: column

    required property Dashboard dashboard
    readonly property Item focusItem: Window.activeFocusItem
    readonly property bool hasAccount: dashboard.account.isSignedIn || dashboard.account.isLapsed

    function reveal(item: Item) {
        const top = item.mapToItem(cards, 0, 0).y - 8;
        const bottom = top + item.height + 16;
        const free = scroll.height - (scroll.contentHeight > scroll.height ? 24 : 0);
        if (top < scroll.contentY)
            scroll.contentY = Math.max(0, top);
        else if (bottom > scroll.contentY + free)
            scroll.contentY = Math.min(scroll.contentHeight - scroll.height, bottom - free);
    }
    onFocusItemChanged: {
        for (let item = focusItem; item; item = item.parent)
            if (item === cards)
                return reveal(focusItem);
    }

    Flickable {
        id: scroll
        objectName: "scroll"
        width: parent.width
        height: parent.height - footer.height
        contentWidth: width
        contentHeight: Math.max(height, cards.implicitHeight)
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollThumb { }

        // Rows are placed by number, because the keyboard goes in the order of declaration.
        GridLayout {
            id: cards
            width: scroll.width
            height: scroll.contentHeight
            columns: 1
            rowSpacing: 0

            SignInCard {
                objectName: "signInCard"
                dashboard: column.dashboard
                visible: !column.dashboard.account.isSignedIn && !column.dashboard.account.isLapsed
                Layout.row: 2
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.minimumHeight: implicitHeight
                Layout.margins: 16
                Layout.bottomMargin: 0
            }
            AccountRow {
                dashboard: column.dashboard
                visible: column.dashboard.account.isSignedIn
                Layout.row: 3
                Layout.fillWidth: true
                Layout.margins: 16
                Layout.bottomMargin: 4
            }
            LapsedCard {
                objectName: "lapsed"
                dashboard: column.dashboard
                visible: column.dashboard.account.isLapsed
                Layout.row: 3
                Layout.fillWidth: true
                Layout.margins: 16
                Layout.bottomMargin: 0
            }
            RouteCard {
                dashboard: column.dashboard
                Layout.row: 4
                Layout.fillWidth: true
                Layout.margins: 16
                Layout.topMargin: 12
                Layout.bottomMargin: 0
            }
            LimitBanner {
                objectName: "errorBanner"
                danger: true
                text: column.dashboard.errorMessage
                visible: text.length > 0
                dismissible: true
                onDismissed: column.dashboard.dismissError()
                Layout.row: 1
                Layout.fillWidth: true
                Layout.margins: 16
                Layout.bottomMargin: 0
            }
            ScopesCard {
                objectName: "scopesCard"
                dashboard: column.dashboard
                visible: column.dashboard.route.lacksAlbumScopes
                Layout.row: 5
                Layout.fillWidth: true
                Layout.margins: 16
                Layout.topMargin: 12
                Layout.bottomMargin: 0
            }
            HeroCard {
                objectName: "hero"
                dashboard: column.dashboard
                visible: column.hasAccount && !column.dashboard.library.isAway
                Layout.row: 6
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.minimumHeight: implicitHeight
                Layout.margins: 16
                Layout.topMargin: 12
                Layout.bottomMargin: 0
            }
            AwayCard {
                objectName: "libraryAway"
                dashboard: column.dashboard
                visible: column.hasAccount && column.dashboard.library.isAway
                Layout.row: 6
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.minimumHeight: implicitHeight
                Layout.margins: 16
                Layout.topMargin: 12
                Layout.bottomMargin: 0
            }
            DeletionCard {
                dashboard: column.dashboard
                Layout.row: 7
                Layout.fillWidth: true
                Layout.margins: 16
                Layout.topMargin: 12
                Layout.bottomMargin: 12
            }
            Words {
                id: hint
                objectName: "hint"
                role: Theme.note
                text: column.dashboard.hint
                visible: text.length > 0
                color: Theme.textTertiary
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                Layout.row: 0
                Layout.fillWidth: true
                Layout.margins: 16
                Layout.topMargin: 8
                Layout.bottomMargin: 0
            }
        }
    }
    Rectangle {
        width: parent.width - 11
        height: 24
        anchors.bottom: footer.top
        visible: scroll.contentY + scroll.height < scroll.contentHeight - 1
        gradient: Gradient {
            GradientStop { position: 0; color: Qt.rgba(Theme.window.r, Theme.window.g, Theme.window.b, 0) }
            GradientStop { position: 1; color: Theme.window }
        }
    }
    FooterBar {
        id: footer
        width: parent.width
        anchors.bottom: parent.bottom
        dashboard: column.dashboard
    }
}

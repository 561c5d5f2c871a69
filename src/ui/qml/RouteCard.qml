import QtQuick
import Quorvane

/// From where to where, and a warning when the target is full or nearly so.
Column {
    id: column

    required property Dashboard dashboard
    readonly property routeView route: dashboard.route

    spacing: 8

    Words {
        x: 2
        role: Theme.overline
        text: "SENKRONİZASYON ROTASI"
        color: Theme.textTertiary
        Accessible.role: Accessible.Heading
    }
    Card {
        width: parent.width
        height: 115 + (banner.visible ? banner.height + 12 : 0)

        Picker {
            id: source
            objectName: "source"
            x: 1
            y: 5
            width: parent.width - 2
            symbol: "photo.stack.fill"
            enabled: !column.dashboard.library.isAway
            caption: "Kaynak (Apple Photos)"
            detail: column.dashboard.library.name
            tip: column.dashboard.library.kind + "\n" + column.dashboard.library.path
            value: column.route.source
            rows: column.dashboard.sourceMenu
        }
        Rectangle {
            x: 61
            y: 57
            z: 1
            width: parent.width - x - 1
            height: 1
            color: Theme.divider
        }
        Symbol {
            x: 26
            y: 50
            z: 1
            size: 14
            stroke: 2
            name: "x.arrow.down"
            color: Theme.textTertiary
        }
        Picker {
            objectName: "target"
            x: 1
            y: 58
            width: parent.width - 2
            enabled: column.dashboard.account.isSignedIn
            symbol: column.route.targetSymbol
            caption: "Hedef (Google Photos)"
            value: column.route.target
            detail: column.route.targetCount
            rows: column.dashboard.targetMenu
            menuGap: 8
        }
        LimitBanner {
            id: banner
            objectName: "limitBanner"
            x: 13
            y: 114
            width: parent.width - 26
            visible: column.route.limitTitle.length > 0
            danger: column.route.isTargetFull
            title: column.route.limitTitle
            text: column.route.limitText
        }
    }
}

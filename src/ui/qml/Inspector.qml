import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// The network beside the dashboard: what moves, how fast, and what the program says of it.
Rectangle {
    id: panel

    required property Dashboard dashboard
    readonly property inspectorView view: dashboard.inspector
    readonly property Item focusItem: Window.activeFocusItem

    /// What has the keyboard is in sight.
    onFocusItemChanged: {
        for (let item = focusItem; item; item = item.parent)
            if (item === content) {
                const top = focusItem.mapToItem(content, 0, 0).y - 48 - 8;
                const bottom = Math.min(top + focusItem.height + 16, scroll.contentHeight);
                scroll.contentY = Math.max(0, Math.min(Math.max(scroll.contentY, bottom - scroll.height), top));
            }
    }


    color: Theme.panel

    Rectangle {
        width: 1
        height: parent.height
        color: Theme.border
    }
    LiveBadge {
        x: 17
        y: 14
        isActive: panel.view.isActive
        isMoving: panel.dashboard.isLive
    }
    Rectangle {
        y: 47
        width: parent.width
        height: 1
        color: Theme.border
    }
    IconButton {
        objectName: "inspectorClose"
        x: parent.width - 44
        y: 6
        symbol: "xmark"
        name: "Kapat"
        onClicked: panel.dashboard.toggleInspector()
    }

    Flickable {
        id: scroll
        y: 48
        width: parent.width
        height: parent.height - y
        contentHeight: Math.max(height, 594) // the console has its eight lines and more
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height
        clip: interactive
        ScrollBar.vertical: ScrollThumb { }

        Item {
            id: content
            y: -48
            width: scroll.width
            height: scroll.contentHeight + 48

            SectionTitle { id: transfersTitle; x: 17; y: 60; text: "Aktif Yüklenen Dosyalar" }
            TransfersCard {
                x: 17
                y: 86
                width: parent.width - 33
                transfers: panel.dashboard.transfers
            }
            SectionTitle { x: 17; y: 200; text: "Hız & Bağlantı Metriği" }
            Words {
                objectName: "latency"
                x: parent.width - 16 - implicitWidth
                y: 200
                role: Theme.caption
                text: panel.view.latency
                color: Theme.textSecondary
                Accessible.name: "Gecikme " + text
            }
            Row {
                x: 17
                y: 226
                spacing: 8
                SpeedTile {
                    width: (content.width - 41) / 2
                    title: "GÜNCEL HIZ"
                    value: panel.view.currentSpeed
                    isLive: panel.view.isActive
                }
                SpeedTile {
                    width: (content.width - 41) / 2
                    title: "ZİRVE HIZ"
                    value: panel.view.peakSpeed
                }
            }
            SectionTitle { x: 17; y: 310; text: "API & Oturum Telemetrisi" }
            Card {
                x: 17
                y: 336
                width: parent.width - 33
                height: 98
                radius: Theme.tileRadius

                Column {
                    y: 1
                    width: parent.width
                    TelemetryRow { width: parent.width; title: "Hedef Albüm:"; value: panel.view.target }
                    TelemetryRow { width: parent.width; title: "Bekleyen Dosya:"; value: panel.view.pending }
                    TelemetryRow {
                        width: parent.width
                        title: "Oturum Durumu:"
                        value: panel.view.state
                        isActive: panel.view.isActive
                        isQuiet: !isActive
                        isLast: true
                    }
                }
            }
            SectionTitle { x: 17; y: 450; text: "Canlı Akış Konsolu" }
            ActionButton {
                id: report
                objectName: "saveReport"
                x: clear.x - 18 - width + leftPadding + clear.leftPadding
                y: 442
                small: true
                kind: "link"
                text: "Raporu Kaydet…"
                onClicked: panel.dashboard.lives.requestReport()
            }
            ActionButton {
                id: clear
                objectName: "clearLog"
                x: parent.width - 16 - width + leftPadding
                y: 442
                small: true
                kind: "link"
                text: "Temizle"
                onClicked: panel.dashboard.clearLog()
            }
            LogConsole {
                x: 17
                y: 476
                width: parent.width - 33
                height: Math.max(150, parent.height - y - 16)
                log: panel.dashboard.log
                inspector: panel.dashboard.lives
            }
        }
    }
}

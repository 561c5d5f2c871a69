pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// What stands between the person and their backup, and what to do about it.
Sheet {
    id: sheet

    required property Dashboard dashboard
    readonly property SessionCheckModel check: dashboard.sessionCheck

    shown: check.isShown
    width: 408
    onOpened: again.forceActiveFocus(Qt.PopupFocusReason)
    onCancelled: check.hide()

    Item {
        width: sheet.availableWidth
        height: sheet.availableHeight
        implicitHeight: middle.y + table.height + 14 + 40
        Accessible.role: Accessible.Dialog
        Accessible.name: title.text

        Words {
            id: title
            role: Theme.sheetTitle
            text: "Oturum Denetimi"
            Accessible.role: Accessible.Heading
        }
        Words {
            id: summary
            objectName: "checkSummary"
            y: 26
            width: parent.width
            role: Theme.caption
            text: sheet.check.summary
            color: Theme.textSecondary
            wrapMode: Text.Wrap
        }
        Flickable {
            id: middle
            y: summary.y + summary.height + 14
            width: parent.width + 14 // the thumb is beside the rows
            height: Math.min(table.height, parent.height - y - 54)
            contentHeight: table.height
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height
            ScrollBar.vertical: ScrollThumb { }

            CheckRows {
                id: table
                width: sheet.availableWidth
                rows: sheet.check.rows
                onChosen: row => sheet.dashboard.help(row)
            }
        }
        ButtonPair {
            y: parent.height - 40
            width: parent.width
            height: implicitHeight
            first: ActionButton {
                id: again
                objectName: "checkAgain"
                kind: "filled"
                symbol: "arrow.triangle.2.circlepath"
                text: sheet.check.isRunning ? "Denetleniyor…" : "Yeniden Denetle"
                enabled: !sheet.check.isRunning
                onClicked: sheet.check.look()
            }
            second: ActionButton {
                objectName: "checkReport"
                text: "Raporu Kaydet…"
                onClicked: sheet.dashboard.lives.requestReport()
            }
        }
        IconButton {
            objectName: "checkClose"
            x: parent.width - 24
            y: -7
            symbol: "xmark"
            name: "Kapat"
            onClicked: sheet.cancelled()
        }
    }
}

import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// What was held back and why, what to do with items without a date, and a second try for all.
Sheet {
    id: sheet

    required property Dashboard dashboard
    readonly property quarantineView view: dashboard.quarantine

    shown: dashboard.isQuarantineShown
    width: 408
    onOpened: {
        if (choices.count > 0)
            choices.forceActiveFocus(Qt.PopupFocusReason);
        else
            retry.forceActiveFocus(Qt.PopupFocusReason);
    }
    onCancelled: dashboard.model.showQuarantineSheet = false

    Item {
        width: sheet.availableWidth
        height: sheet.availableHeight
        implicitHeight: heading.height + 15 + details.height + 14 + 40
        Accessible.role: Accessible.Dialog
        Accessible.name: title.text

        Item {
            id: heading
            width: parent.width
            height: 22

            Words {
                id: title
                role: Theme.sheetTitle
                text: "İnceleme Gereken Dosyalar"
                Accessible.role: Accessible.Heading
            }
        }
        Flickable {
            id: middle
            y: heading.height + 15
            width: parent.width
            height: Math.min(details.height, parent.height - y - 54)
            contentHeight: details.height
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height
            ScrollBar.vertical: ScrollThumb {
                parent: middle.parent
                x: middle.width + 8 // beside what it moves, never over it
                y: middle.y
                height: middle.height
            }

            Column {
                id: details
                width: middle.width

                SafetyNote { width: parent.width }
                Item { width: 1; height: 14 }
                HeldItems {
                    width: parent.width
                    view: sheet.view
                    onAccepted: identifier => sheet.dashboard.model.acceptUndatedItem(identifier)
                    onAcceptedKind: kind => sheet.dashboard.model.acceptUndatedItems(kind)
                    onMoreWanted: sheet.dashboard.showMoreUndated()
                }
                Item { width: 1; height: choices.visible ? 12 : 0 }
                DateChoices {
                    id: choices
                    width: parent.width
                    visible: count > 0
                    view: sheet.view
                    onChosen: value => sheet.dashboard.chooseDateFallback(value)
                }
                Item { width: 1; height: undatable.visible ? 8 : 0 }
                Rectangle {
                    width: parent.width
                    height: undatable.visible ? 1 : 0
                    color: Theme.divider
                }
                CheckRow {
                    id: undatable
                    objectName: "undatable"
                    width: parent.width
                    visible: sheet.view.undatableTitle.length > 0
                    text: sheet.view.undatableTitle
                    note: "AVI, BMP, GIF gibi: Google bunları yüklendikleri güne koyar."
                    checked: sheet.view.sendsUndatable
                    onToggled: sheet.dashboard.chooseUndatable(checked)
                }
            }
        }
        ActionButton {
            id: retry
            objectName: "retry"
            y: parent.height - 40
            width: parent.width
            kind: "filled"
            symbol: "arrow.triangle.2.circlepath"
            text: sheet.view.retryTitle
            enabled: sheet.view.canRetry
            onClicked: sheet.dashboard.retryQuarantined()
        }
        IconButton {
            objectName: "quarantineClose"
            x: parent.width - 24
            y: -7
            symbol: "xmark"
            name: "Kapat"
            onClicked: sheet.cancelled()
        }
    }
}

import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// What was held back and why, what to do with it one by one, and a second try for all.
Sheet {
    id: sheet

    required property Dashboard dashboard
    readonly property ReviewModel review: dashboard.review
    /// What the rows may take at most, between the title and the button.
    readonly property real room: (parent ? parent.height : 650) - 32 - 2 * padding - 37 - 54

    function takeFocus() {
        rows.positionViewAtBeginning();
        if (rows.choices && rows.choices.count > 0)
            rows.choices.forceActiveFocus(Qt.PopupFocusReason);
        else
            retry.forceActiveFocus(Qt.PopupFocusReason);
    }

    shown: review.isShown
    width: 408
    // When the choices are there.
    onOpened: Qt.callLater(takeFocus) // qmllint disable
    onCancelled: review.close()

    Item {
        width: sheet.availableWidth
        height: sheet.availableHeight
        implicitHeight: 37 + Math.min(rows.contentHeight, sheet.room) + 54
        Accessible.role: Accessible.Dialog
        Accessible.name: title.text

        Words {
            id: title
            role: Theme.sheetTitle
            text: "İnceleme Gereken Dosyalar"
            Accessible.role: Accessible.Heading
        }
        HeldList {
            id: rows
            y: 37
            width: parent.width
            height: sheet.room // whatever they take: so the height of few rows is known exactly
            review: sheet.review
            onLeftForwards: retry.forceActiveFocus(Qt.TabFocusReason)
            onLeftBackwards: closing.forceActiveFocus(Qt.TabFocusReason)
            ScrollBar.vertical: ScrollThumb {
                parent: rows.parent
                x: rows.width + 8 // beside what it moves, never over it
                y: rows.y
                height: rows.height
            }
        }
        ActionButton {
            id: retry
            objectName: "retry"
            y: parent.height - 40
            width: parent.width
            kind: "filled"
            symbol: "arrow.triangle.2.circlepath"
            text: sheet.review.retryTitle
            enabled: sheet.review.canRetry
            onClicked: sheet.review.retryAll()
        }
        IconButton {
            id: closing
            objectName: "quarantineClose"
            x: parent.width - 24
            y: -7
            symbol: "xmark"
            name: "Kapat"
            onClicked: sheet.cancelled()
        }
    }
}

pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// A question with its answers one below the other: the first is what Return presses. It takes no
/// answer in its first moments: a double click elsewhere may still be under way.
Sheet {
    id: sheet

    required property Dashboard dashboard
    /// Kept while the box fades out.
    property alertView alert
    readonly property var tones: ({
        info: { tint: Theme.accentTint, ink: Theme.accentText, symbol: "checkmark.shield.fill" },
        warning: { tint: Theme.warningTint, ink: Theme.warningIcon, symbol: "exclamationmark.circle.fill" },
        danger: { tint: Theme.dangerTint, ink: Theme.danger, symbol: "exclamationmark.circle.fill" }
    })
    readonly property var tone: tones[alert.tone] ?? tones.info
    readonly property bool hasTable: alert.rows.length > 0
    readonly property real roomForRows: (parent ? parent.height : 650) - 32 - topPadding - bottomPadding
        - question.height - answers.height - 16

    Binding on alert {
        when: sheet.dashboard.alert.isShown
        value: sheet.dashboard.alert
        restoreMode: Binding.RestoreNone
    }
    shown: dashboard.alert.isShown
    name: alert.title
    width: 360
    topPadding: 25
    bottomPadding: 13
    onOpened: buttons.itemAt(0).forceActiveFocus(Qt.PopupFocusReason)
    onCancelled: dashboard.answerAlert(alert.escape < 0 ? alert.buttons.length + alert.escape : alert.escape)
    onAboutToShow: settled.restart()

    Timer { id: settled; interval: Qt.styleHints.mouseDoubleClickInterval } // qmllint disable

    Column {
        width: sheet.availableWidth
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.alert.title
        Accessible.description: [sheet.alert.text]
            .concat(sheet.alert.rows.map(row => row.title + ": " + row.count)).join(" ") // qmllint disable

        Column {
            id: question
            width: parent.width

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                width: 48
                height: 48
                radius: 24
                color: sheet.tone.tint
                Symbol {
                    anchors.centerIn: parent
                    size: 26
                    name: sheet.alert.symbol || sheet.tone.symbol
                    color: sheet.tone.ink
                }
            }
            Item { width: 1; height: 14 }
            Words {
                objectName: "alertTitle"
                width: parent.width
                role: Theme.sheetTitle
                text: sheet.alert.title
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
            }
            Item { width: 1; height: 8 }
            Words {
                objectName: "alertText"
                width: parent.width
                text: sheet.alert.text
                color: Theme.textSecondary
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
            Item { width: 1; height: sheet.hasTable ? 16 : 20 }
        }
        Flickable {
            width: parent.width
            height: Math.min(table.height, Math.max(78, sheet.roomForRows))
            contentHeight: table.height
            visible: sheet.hasTable
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height
            ScrollBar.vertical: ScrollThumb { }

            AlertTable {
                id: table
                width: parent.width
                title: sheet.alert.rowsTitle
                sum: sheet.alert.rowsSum
                rows: sheet.alert.rows
            }
        }
        Item { width: 1; height: 16; visible: sheet.hasTable }
        Column {
            id: answers
            width: parent.width

            Repeater {
                id: buttons
                model: sheet.alert.buttons

                Item {
                    id: place

                    required property int index
                    required property string modelData

                    width: parent.width
                    height: button.implicitHeight + 8
                    activeFocusOnTab: false
                    onActiveFocusChanged: if (activeFocus) button.forceActiveFocus(Qt.PopupFocusReason)

                    ActionButton {
                        id: button
                        objectName: "alertButton" + place.index
                        width: parent.width
                        wraps: true
                        kind: place.index === 0 ? "filled"
                            : place.index === buttons.count - 1 && sheet.alert.escape < 0 ? "link" : "outline"
                        text: place.modelData
                        onClicked: if (!settled.running) sheet.dashboard.answerAlert(place.index)
                    }
                }
            }
        }
    }
}

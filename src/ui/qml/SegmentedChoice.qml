pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// Two or three answers side by side; the arrow keys choose among them.
Rectangle {
    id: choice

    property string name
    property var answers: []
    property int current: 0
    signal chosen(int index)

    implicitWidth: row.width + 4
    implicitHeight: 32
    radius: Theme.controlRadius
    color: Theme.surfaceInset
    border.width: 1
    border.color: Theme.border
    Accessible.role: Accessible.Grouping
    Accessible.name: name

    Row {
        id: row
        x: 2
        y: 2

        Repeater {
            id: answers
            model: choice.answers

            RadioButton {
                id: answer

                required property string modelData
                required property int index

                objectName: choice.objectName + index
                implicitWidth: inside.width + 24
                implicitHeight: 28
                padding: 0
                autoExclusive: false
                checked: index === choice.current
                focusPolicy: checked ? Qt.StrongFocus : Qt.ClickFocus
                Accessible.name: modelData
                Accessible.onPressAction: choose(index)
                Accessible.onToggleAction: choose(index)
                onClicked: choose(index)
                Keys.onLeftPressed: choose(Math.max(0, index - 1))
                Keys.onRightPressed: choose(Math.min(choice.answers.length - 1, index + 1))

                function choose(which: int) {
                    if (which !== choice.current)
                        choice.chosen(which);
                    answers.itemAt(which).forceActiveFocus(Qt.TabFocusReason);
                    answer.checked = Qt.binding(() => answer.index === choice.current);
                }

                background: Rectangle {
                    radius: 6
                    color: answer.checked ? Theme.accentTint : "transparent"
                    border.width: answer.checked ? 1 : 0
                    border.color: Theme.accentText
                    FocusRing { shown: answer.visualFocus; controlRadius: 6 }
                }
                indicator: null
                contentItem: Item { // qmllint disable
                    Row {
                        id: inside
                        anchors.centerIn: parent
                        spacing: 6

                        Symbol {
                            visible: answer.checked
                            size: 14
                            name: "x.checkmark"
                            color: Theme.accentText
                            anchors.verticalCenter: parent.verticalCenter
                        }
                        Words {
                            role: Theme.strong
                            text: answer.modelData
                            color: !answer.enabled ? Theme.textDisabled
                                : answer.checked ? Theme.accentText : Theme.textSecondary
                            Accessible.ignored: true
                            anchors.verticalCenter: parent.verticalCenter
                        }
                    }
                }
            }
        }
    }
}

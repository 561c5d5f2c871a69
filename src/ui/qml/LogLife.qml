pragma ComponentBehavior: Bound
import QtQuick
import Quorvane

/// The life of the record that a line of the log speaks of, step by step.
Rectangle {
    id: life

    required property var steps
    property real widest: 0 ///< of the steps' titles

    implicitHeight: 12 + 19 * steps.length
    color: Theme.surfaceInset
    Accessible.role: Accessible.List
    Accessible.name: "Öğenin geçmişi"

    Rectangle {
        x: 30
        y: 16
        width: 1
        height: parent.height - 32
        color: Theme.borderControl
    }
    Repeater {
        model: life.steps

        Item {
            id: step

            required property var modelData
            required property int index

            y: 6 + 19 * index
            width: life.width
            height: 19
            Accessible.role: Accessible.ListItem
            Accessible.name: modelData.name

            Rectangle {
                x: 27
                y: 6
                width: 7
                height: 7
                radius: 3.5
                visible: !step.modelData.isFailure
                color: step.index === life.steps.length - 1 ? Theme.success : Theme.accentText
            }
            Rectangle {
                x: 25
                y: 4
                width: 11
                height: 11
                visible: step.modelData.isFailure
                color: life.color

                Symbol {
                    anchors.centerIn: parent
                    size: 10
                    stroke: 3
                    name: "xmark"
                    color: Theme.danger
                }
            }
            Words {
                x: 47
                y: 1
                role: Theme.log
                font.family: Theme.familyMono
                text: step.modelData.time
                color: Theme.logTime
                Accessible.ignored: true
            }
            Words {
                id: title
                x: 111
                y: 2
                role: Theme.note
                font.weight: 600
                text: step.modelData.title
                Accessible.ignored: true
                onImplicitWidthChanged: life.widest = Math.max(life.widest, implicitWidth)
            }
            Words {
                x: Math.max(233, 111 + life.widest + 12)
                y: 2
                width: parent.width - x - 14
                role: Theme.note
                text: step.modelData.detail
                color: Theme.textSecondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
}

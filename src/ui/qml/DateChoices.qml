pragma ComponentBehavior: Bound
import QtQuick
import Quorvane

/// What to do with items whose capture date nobody knows.
Column {
    id: group

    required property ReviewModel view
    readonly property alias count: answers.count
    signal chosen(string value)

    onActiveFocusChanged: {
        if (!activeFocus)
            return;
        const chosen = view.choices.findIndex(choice => choice.value === view.chosen);
        answers.itemAt(Math.max(0, chosen)).forceActiveFocus(Qt.PopupFocusReason);
    }

    Words {
        id: question
        width: parent.width
        role: Theme.button
        text: "Tarihsiz Fotoğraflar İçin Ne Yapılsın?"
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
    }
    Item { width: 1; height: 6 }
    Column {
        width: parent.width
        spacing: 4
        Accessible.role: Accessible.Grouping
        Accessible.name: question.text

        Repeater {
            id: answers
            model: group.view.choices

            ChoiceRow {
                required property var modelData
                required property int index

                function moveTo(step: int) {
                    const next = (index + step + answers.count) % answers.count;
                    answers.itemAt(next).forceActiveFocus(Qt.TabFocusReason);
                    group.chosen(group.view.choices[next].value);
                }

                objectName: "choice" + index
                width: parent.width
                text: modelData.title
                checked: modelData.value === group.view.chosen
                onClicked: group.chosen(modelData.value)
                Keys.onUpPressed: moveTo(-1)
                Keys.onDownPressed: moveTo(1)
            }
        }
    }
}

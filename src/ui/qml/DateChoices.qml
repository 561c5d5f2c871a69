import QtQuick

/// What to do with items whose capture date nobody knows.
Column {
    id: group

    required property quarantineView view
    readonly property alias count: answers.count
    signal chosen(string value)

    function focusTarget(): Item {
        for (let i = 0; i < answers.count; ++i)
            if (view.choices[i].value === view.chosen)
                return answers.itemAt(i);
        return answers.itemAt(0);
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
                    const next = answers.itemAt((index + step + answers.count) % answers.count);
                    next.forceActiveFocus(Qt.TabFocusReason);
                    next.click();
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

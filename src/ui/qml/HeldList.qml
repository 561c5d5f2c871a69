// qmllint disable unqualified
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// The rows of the review between what reassures and what is to be decided. Rows are made when they
/// are looked at; the keyboard moves from row to row, also to such that are out of sight.
ListView {
    id: list

    required property ReviewModel review
    readonly property DateChoices choices: (footerItem as HeldDecisions)?.choices ?? null
    /// The keyboard leaves beyond the last row, or before the first.
    signal leftForwards()
    signal leftBackwards()

    /// The row's first control, or its last, has the keyboard then.
    function focusRow(index: int, isLast: bool) {
        if (index < 0)
            return list.leftBackwards();
        if (index >= count)
            return focusBelow();
        positionViewAtIndex(index, ListView.Contain);
        const row = itemAtIndex(index) as HeldRow;
        if (!row || !row.takeFocus(isLast))
            focusRow(index + (isLast ? -1 : 1), isLast);
    }
    function focusBelow() {
        positionViewAtEnd();
        const footer = footerItem as HeldDecisions;
        if (footer.choices.visible)
            footer.choices.forceActiveFocus(Qt.TabFocusReason);
        else if (footer.undatable.visible)
            footer.undatable.forceActiveFocus(Qt.TabFocusReason);
        else
            list.leftForwards();
    }

    model: review.items
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    keyNavigationEnabled: false
    currentIndex: -1 // the focus is with the controls of the rows
    reuseItems: true
    clip: interactive
    Accessible.role: Accessible.List
    Accessible.name: "İnceleme Gereken Dosyalar"
    header: Item {
        width: ListView.view.width
        height: note.height + 14
        SafetyNote { id: note; width: parent.width }
    }
    footer: HeldDecisions {
        width: ListView.view.width
        review: list.review
    }
    delegate: HeldRow {
        width: ListView.view.width
        onActed: {
            const at = index;
            const hadFocus = controls().some(control => control.activeFocus);
            const isItem = kind === "item";
            list.review.act(at);
            if (hadFocus && isItem)
                list.focusRow(Math.min(at, list.count - 1), false);
        }
        onRevealed: list.review.reveal(index)
        onPassed: step => list.focusRow(index + step, step < 0)
    }
}

import QtQuick
import Quorvane

/// What is to be done with the items that have no date, and with those that take none.
Column {
    id: decisions

    required property ReviewModel review
    readonly property alias choices: dates
    readonly property alias undatable: asIs

    Item { width: 1; height: dates.visible ? 4 : 0 }
    DateChoices {
        id: dates
        width: parent.width
        visible: count > 0
        view: decisions.review
        onChosen: value => decisions.review.choose(value)
    }
    Item { width: 1; height: asIs.visible ? 8 : 0 }
    Rectangle {
        width: parent.width
        height: asIs.visible ? 1 : 0
        color: Theme.divider
    }
    CheckRow {
        id: asIs
        objectName: "undatable"
        width: parent.width
        visible: decisions.review.undatableTitle.length > 0
        text: decisions.review.undatableTitle
        note: "AVI, BMP, GIF gibi: Google bunları yüklendikleri güne koyar."
        checked: decisions.review.sendsUndatable
        onToggled: decisions.review.chooseUndatable(checked)
    }
}

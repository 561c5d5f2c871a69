pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// The uploads in flight; a fixed height, so that nothing jumps.
Card {
    id: card

    required property TransferListModel transfers

    implicitHeight: 98
    radius: Theme.tileRadius

    ListView {
        id: list
        objectName: "transfers"
        anchors.fill: parent
        anchors.topMargin: 1
        anchors.bottomMargin: 1
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: card.transfers
        delegate: TransferRow { width: list.width; isLast: index === list.count - 1 }
        ScrollBar.vertical: ScrollThumb { }
    }
    Words {
        objectName: "noTransfers"
        anchors.centerIn: parent
        role: Theme.caption
        text: "Şu an hatta dosya aktarımı yok"
        color: Theme.textSecondary
        visible: list.count === 0
    }
}

import QtQuick
import Quorvane

/// Names a new album of Google Photos.
Sheet {
    id: sheet

    required property Dashboard dashboard
    readonly property bool canCreate: field.text.trim().length > 0

    function begin() {
        field.text = dashboard.suggestNewAlbumTitle();
        field.selectAll();
        shown = true;
    }
    function create() {
        if (!canCreate)
            return;
        shown = false;
        dashboard.createAlbum(field.text);
    }

    width: 360
    onOpened: field.forceActiveFocus(Qt.PopupFocusReason)
    onCancelled: shown = false

    Column {
        width: sheet.availableWidth
        Accessible.role: Accessible.Dialog
        Accessible.name: "Yeni Google Photos Albümü Oluştur"

        Row {
            spacing: 12
            Tile { symbol: "folder.badge.plus" }
            Words {
                role: Theme.sheetTitle
                text: "Yeni Google Photos Albümü"
                anchors.verticalCenter: parent.verticalCenter
                Accessible.role: Accessible.Heading
            }
        }
        Item { width: 1; height: 16 }
        LineField {
            id: field
            objectName: "albumName"
            width: parent.width
            placeholderText: "Albüm Adı (Örn: Tatil 2025, Aile)"
            maximumLength: 500
            onAccepted: sheet.create()
        }
        Item { width: 1; height: 8 }
        Words {
            width: parent.width
            role: Theme.caption
            text: "Eşitlenen fotoğraflar bu albüme eklenecektir."
            color: Theme.textSecondary
            wrapMode: Text.Wrap
        }
        Item { width: 1; height: 20 }
        Row {
            anchors.right: parent.right
            spacing: 8
            ActionButton {
                objectName: "albumCancel"
                text: "Vazgeç"
                onClicked: sheet.cancelled()
            }
            ActionButton {
                objectName: "albumCreate"
                kind: "filled"
                text: "Oluştur ve Seç"
                enabled: sheet.canCreate
                onClicked: sheet.create()
            }
        }
    }
}

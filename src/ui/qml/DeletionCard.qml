import QtQuick
import Quorvane

/// The switch that lets the program offer backed up originals for deletion. Only the switch itself
/// toggles: this one must not be hit by accident.
Card {
    id: card

    required property Dashboard dashboard

    implicitHeight: words.implicitHeight + note.implicitHeight + 36 + (asked.visible ? 48 : 0)

    Tile {
        x: 17
        y: words.y + Math.round((words.implicitHeight - height) / 2)
        muted: true
        symbol: "externaldrive.badge.checkmark"
    }
    Column {
        id: words
        x: 61
        y: 13
        width: toggle.x - x - 10

        Words {
            id: title
            width: parent.width
            role: Theme.cardTitle
            text: "Yedeklenenleri Mac'ten Temizle"
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        Words {
            id: subtitle
            width: parent.width
            role: Theme.caption
            text: card.dashboard.deletionObstacle || "Google Photos'a yüklenen orijinalleri kaldırarak yer açın"
            color: Theme.textSecondary
            wrapMode: Text.Wrap
        }
    }
    Toggle {
        id: toggle
        objectName: "deletion"
        x: parent.width - 17 - 42
        y: words.y + Math.round((words.implicitHeight - height) / 2)
        enabled: !card.dashboard.deletionObstacle
        opacity: enabled ? 1 : 0.5
        checked: enabled && card.dashboard.isAutoDeleteEnabled
        Accessible.name: title.text
        Accessible.description: subtitle.text
        onToggled: {
            card.dashboard.isAutoDeleteEnabled = checked;
            checked = Qt.binding(() => enabled && card.dashboard.isAutoDeleteEnabled);
        }
    }
    QuarantineLink {
        id: asked
        objectName: "trashLink"
        x: 17
        y: parent.height - 49
        width: parent.width - 34
        text: card.dashboard.trashLink
        visible: text.length > 0
        onClicked: card.dashboard.showTrashQuestion()
    }
    NoteRow {
        id: note
        x: 17
        y: words.y + words.implicitHeight + 10
        width: parent.width - 34
        text: "Öğeleriniz yalnızca bulutta doğrulandıktan sonra silinmek üzere Apple Fotoğraflar sistem onayına sunulur. Silinenler 30 gün boyunca 'Son Silinenler' albümünde kalır."
    }
}

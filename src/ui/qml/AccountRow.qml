import QtQuick
import Quorvane

/// Who is signed in.
Item {
    id: row

    required property Dashboard dashboard

    implicitHeight: 40
    Accessible.role: Accessible.Grouping
    Accessible.name: title.text + " " + email.text

    Rectangle {
        width: 40
        height: 40
        radius: 20
        color: Theme.accentTint
        Symbol {
            anchors.centerIn: parent
            size: 24
            name: "person.crop.circle.fill"
            color: Theme.accentText
        }
    }
    Column {
        x: 52
        width: parent.width - x
        anchors.verticalCenter: parent.verticalCenter

        Row {
            spacing: 7
            Words { id: title; role: Theme.cardTitle; text: "Google Photos Bağlı" }
            Symbol {
                size: 16
                stroke: 2
                name: "checkmark.circle.fill"
                color: Theme.success
                anchors.verticalCenter: parent.verticalCenter
            }
        }
        Words {
            id: email
            objectName: "email"
            width: parent.width
            role: Theme.caption
            text: row.dashboard.account.email
            color: Theme.textSecondary
            elide: Text.ElideMiddle
            visible: text.length > 0
        }
    }
}

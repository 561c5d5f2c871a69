import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// The log file, the theme, the inspector, the settings and the way out.
Item {
    id: footer

    required property Dashboard dashboard

    implicitHeight: 48

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.border
    }
    AbstractButton {
        id: logFile
        objectName: "logFile"
        x: 8
        y: 7
        width: label.x + label.implicitWidth + 8
        height: 36
        focusPolicy: Qt.StrongFocus
        hoverEnabled: true
        onClicked: footer.dashboard.openLogFile()
        Accessible.role: Accessible.Button
        Accessible.name: label.text
        Accessible.onPressAction: logFile.clicked()
        Keys.onReturnPressed: logFile.clicked()
        Keys.onEnterPressed: logFile.clicked()
        background: Rectangle {
            radius: Theme.controlRadius
            color: logFile.down ? Theme.surfacePressed : logFile.hovered ? Theme.surfaceHover
                : "transparent"
            FocusRing { shown: logFile.visualFocus; inside: true }
        }
        Item {
            anchors.fill: parent

            Symbol {
                x: 8
                name: "doc.text.magnifyingglass"
                color: Theme.textSecondary
                anchors.verticalCenter: parent.verticalCenter
            }
            Words {
                id: label
                x: 34
                role: Theme.quiet
                text: "Günlük Dosyasını Aç..."
                color: Theme.textSecondary
                Accessible.ignored: true
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }
    Row {
        x: parent.width - width - 8
        y: 7

        IconButton {
            id: theme
            objectName: "theme"
            symbol: "circle.lefthalf.filled"
            name: "Tema"
            onClicked: themes.openByKeyboard(visualFocus)

            ChoiceMenu {
                id: themes
                x: parent.width - width - 5
                width: 148
                name: theme.name
                rows: footer.dashboard.themeMenu
            }
        }
        IconButton {
            objectName: "inspectorToggle"
            symbol: "sidebar.right"
            name: "Ağ Denetçisi"
            active: footer.dashboard.isInspectorOpen
            onClicked: footer.dashboard.toggleInspector()
        }
        IconButton {
            objectName: "settings"
            symbol: "gearshape"
            name: "Ayarlar"
            onClicked: footer.dashboard.librarySettings.show()
        }
        IconButton {
            objectName: "quit"
            symbol: "power"
            name: "Çıkış"
            onClicked: footer.dashboard.quit()
        }
    }
}

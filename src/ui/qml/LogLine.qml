// qmllint disable unqualified
import QtQuick
import Quorvane

/// When, and what, in the colour of its level. The message can be selected and copied; a line that
/// speaks of a record can be opened.
Item {
    id: row

    required property int index
    required property string time
    required property string message
    required property string level
    required property string line
    required property string about
    required property InspectorModel inspector
    readonly property bool isOpen: about.length > 0 && inspector.openLine === line
    readonly property var inks: ({
        info: Theme.logInfo, network: Theme.logNetwork, success: Theme.logSuccess,
        warning: Theme.logWarning, error: Theme.logError
    })
    signal opened()

    function toggle() {
        inspector.toggle(line, about);
    }
    onHeightChanged: if (isOpen) opened()

    height: words.height + (isOpen ? life.height : 0)
    Accessible.role: Accessible.ListItem
    Accessible.name: time + " " + message + (about.length === 0 ? "" : isOpen ? ", açık" : ", kapalı")
    ListView.onPooled: visible = false
    ListView.onReused: visible = true

    Rectangle {
        visible: row.isOpen
        width: parent.width
        height: words.height
        color: Theme.accentTint
    }
    Symbol {
        x: 8
        y: 2
        size: 12
        stroke: 2.2
        visible: row.about.length > 0
        name: row.isOpen ? "x.chevron.down" : "x.chevron.right"
        color: row.isOpen ? Theme.accentText : Theme.textTertiary
    }
    Words {
        x: 24
        y: 1
        role: Theme.log
        font.family: Theme.familyMono
        text: row.time
        color: row.isOpen ? Theme.accentText : Theme.logTime
        Accessible.ignored: true
    }
    MouseArea {
        objectName: "open" + row.index
        width: 82
        height: words.height
        enabled: row.about.length > 0
        cursorShape: enabled ? Qt.PointingHandCursor : Qt.ArrowCursor
        onClicked: row.toggle()
    }
    TextEdit {
        id: words
        x: 85
        width: parent.width - x - 14
        font.pixelSize: Theme.log.size
        font.family: Theme.familyMono
        text: row.message
        textFormat: TextEdit.PlainText
        color: row.inks[row.level]
        wrapMode: TextEdit.Wrap
        readOnly: true
        selectByMouse: true
        selectionColor: Theme.accent
        selectedTextColor: Theme.inkOnAccent
        activeFocusOnPress: true
        Accessible.ignored: true

        LineHeight { document: words.textDocument; height: Theme.log.line }
    }
    Loader {
        id: life
        y: words.height
        width: parent.width
        active: row.isOpen
        sourceComponent: LogLife { steps: row.inspector.steps }
    }
}

import QtQuick
import Quorvane

/// When, and what, in the colour of its level. The message can be selected and copied.
Item {
    id: row

    required property string time
    required property string message
    required property string level
    readonly property var inks: ({
        info: Theme.logInfo, network: Theme.logNetwork, success: Theme.logSuccess,
        warning: Theme.logWarning, error: Theme.logError
    })

    height: words.height
    Accessible.role: Accessible.ListItem
    Accessible.name: time + " " + message

    Words {
        id: clock
        x: 10
        y: 1
        role: Theme.log
        font.family: Theme.familyMono
        text: row.time
        color: Theme.logTime
        Accessible.ignored: true
    }
    TextEdit {
        id: words
        x: 18 + clock.implicitWidth
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
}

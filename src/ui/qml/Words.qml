import QtQuick

/// Text in one of the theme's roles.
Text {
    property var role: Theme.body

    color: Theme.textPrimary
    font.pixelSize: role.size
    font.weight: role.weight
    font.letterSpacing: role.spacing
    lineHeight: role.line
    lineHeightMode: Text.FixedHeight
    textFormat: Text.PlainText
    renderType: Text.NativeRendering
    verticalAlignment: Text.AlignVCenter
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}

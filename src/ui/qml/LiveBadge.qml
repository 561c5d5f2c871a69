import QtQuick

/// Green with a pulsing dot while a sync runs, grey and still otherwise.
Rectangle {
    id: badge

    property bool isActive: false
    /// Somebody looks.
    property bool isMoving: false
    readonly property color ink: isActive ? Theme.success : Theme.textSecondary

    implicitWidth: label.x + label.implicitWidth + 8
    implicitHeight: 20
    radius: Theme.badgeRadius
    color: isActive ? Theme.successTint : Theme.surfaceHover
    Accessible.role: Accessible.StaticText
    Accessible.name: label.text

    Rectangle {
        id: dot
        x: 8
        y: 7
        width: 6
        height: 6
        radius: 3
        color: badge.ink

        SequentialAnimation on opacity {
            running: badge.isActive && badge.isMoving && Theme.motion > 0
            loops: Animation.Infinite
            onStopped: dot.opacity = 1
            NumberAnimation { to: 0.35; duration: Theme.livePulseTime / 2; easing.type: Easing.InOutSine }
            NumberAnimation { to: 1; duration: Theme.livePulseTime / 2; easing.type: Easing.InOutSine }
        }
    }
    Words {
        id: label
        x: 20
        role: Theme.badge
        text: "CANLI"
        color: badge.ink
        anchors.verticalCenter: parent.verticalCenter
        Accessible.ignored: true
    }
}

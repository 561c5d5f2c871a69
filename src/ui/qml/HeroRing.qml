import QtQuick
import Quorvane

/// How far a sync is, or how the last one ended.
Ring {
    id: ring

    required property heroView hero
    readonly property bool isWarning: hero.kind === "warning"
    readonly property bool isSyncing: hero.kind === "syncing"
    readonly property bool isPending: hero.kind === "pending"

    width: 88
    height: 88
    disc: isSyncing ? "transparent" : isPending ? Theme.accentTint : isWarning ? Theme.dangerTint : Theme.successTint
    track: isSyncing || isPending ? Theme.track : isWarning ? Theme.dangerTrack : Theme.successTrack
    arc: isSyncing ? Theme.progress : Theme.success
    fraction: hero.fraction
    Accessible.role: Accessible.ProgressBar
    Accessible.name: hero.ringName
    Accessible.description: hero.percent

    Behavior on fraction {
        enabled: ring.isSyncing && ring.hero.fraction > ring.fraction
        NumberAnimation { duration: Theme.progressTime }
    }

    Words {
        anchors.centerIn: parent
        role: Theme.ringFigure
        text: ring.hero.percent
        visible: ring.isSyncing
        Accessible.ignored: true
    }
    Symbol {
        anchors.centerIn: parent
        size: 38
        visible: !ring.isSyncing
        name: ring.hero.symbol
        color: ring.isPending ? Theme.accentText : ring.isWarning ? Theme.danger : Theme.success
    }
}

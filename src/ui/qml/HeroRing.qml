import QtQuick
import Quorvane

/// How far a sync is, or how things are.
Ring {
    id: ring

    required property heroView hero
    readonly property var tones: ({
        neutral: { disc: Theme.surfaceInset, track: Theme.track, ink: Theme.textSecondary },
        good: { disc: Theme.successTint, track: Theme.successTrack, ink: Theme.success },
        done: { disc: Theme.successTint, track: Theme.successTrack, ink: Theme.success },
        syncing: { disc: "transparent", track: Theme.track, ink: Theme.progress },
        waiting: { disc: Theme.warningTint, track: Theme.warningBorder, ink: Theme.warningIcon },
        warning: { disc: Theme.warningTint, track: Theme.warningBorder, ink: Theme.warningIcon },
        error: { disc: Theme.dangerTint, track: Theme.dangerTrack, ink: Theme.danger }
    })
    readonly property var tone: tones[hero.tone] ?? tones.neutral
    readonly property bool isSyncing: hero.tone === "syncing"
    readonly property bool isPause: hero.symbol === "x.pause"

    width: 88
    height: 88
    disc: tone.disc
    track: tone.track
    arc: tone.ink
    fraction: hero.fraction

    Progress {
        objectName: "ringValue"
        anchors.fill: parent
        value: ring.hero.fraction * 100
        Accessible.role: Accessible.ProgressBar
        Accessible.name: ring.hero.ringName
    }
    Behavior on fraction {
        // Small steps are not seen to glide, and would have the window drawn without a pause.
        enabled: ring.isSyncing && ring.hero.fraction > ring.fraction + 0.05
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
        size: ring.isPause ? 34 : 38
        stroke: ring.isPause ? 2.25 : 1.75
        visible: !ring.isSyncing
        name: ring.hero.symbol
        color: ring.tone.ink
    }
}

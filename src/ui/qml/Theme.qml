pragma Singleton
import QtQuick

/// Every colour, measure, font and duration of the window, by role.
QtObject {
    id: theme

    /// Set by the window: the dark palette, and the factor of every duration (0 for reduced motion).
    property bool dark: false
    property real motion: 1

    readonly property color window: dark ? "#15181D" : "#F3F5F8"
    readonly property color surface: dark ? "#1E2228" : "#FFFFFF"
    readonly property color surfaceInset: dark ? "#252A31" : "#F6F7FA"
    readonly property color surfaceHover: dark ? "#2A3038" : "#EEF1F6"
    readonly property color surfacePressed: dark ? "#323944" : "#E4E8EF"
    readonly property color panel: dark ? "#191C22" : "#F9FAFC"
    readonly property color border: dark ? "#2D333C" : "#E1E5EC"
    readonly property color borderControl: dark ? "#434B57" : "#C3CAD6"
    readonly property color controlOff: dark ? "#727C8B" : "#858E9E"
    readonly property color divider: dark ? "#292E36" : "#ECEFF3"
    readonly property color textPrimary: dark ? "#F0F3F7" : "#151A23"
    readonly property color textSecondary: dark ? "#AEB7C4" : "#515B6C"
    readonly property color textTertiary: dark ? "#949EAD" : "#636D7E"
    readonly property color textDisabled: dark ? "#606A78" : "#9AA3B1"
    readonly property color accent: dark ? "#2563EB" : "#2563EB"
    readonly property color accentHover: dark ? "#2F69E8" : "#1E57D6"
    readonly property color accentPressed: dark ? "#1D55D0" : "#1A4AB8"
    readonly property color inkOnAccent: dark ? "#FFFFFF" : "#FFFFFF"
    readonly property color accentText: dark ? "#8BB1FF" : "#1D4FD0"
    readonly property color accentTint: dark ? "#1D2C4D" : "#E9F0FE"
    readonly property color success: dark ? "#63D48E" : "#137839"
    readonly property color successTint: dark ? "#1A3225" : "#E8F5ED"
    readonly property color successTrack: dark ? "#234231" : "#D3EBDC"
    readonly property color warning: dark ? "#F3C36F" : "#8A4B08"
    readonly property color warningIcon: dark ? "#F0B24A" : "#B45309"
    readonly property color warningTint: dark ? "#322814" : "#FFF7E8"
    readonly property color warningBorder: dark ? "#534120" : "#F2DFB8"
    readonly property color danger: dark ? "#FF9A91" : "#B42318"
    readonly property color dangerTint: dark ? "#3B2020" : "#FDEEEC"
    readonly property color dangerTrack: dark ? "#552B2A" : "#F8D9D5"
    readonly property color progress: dark ? "#6B9BFA" : "#2563EB"
    readonly property color track: dark ? "#303742" : "#E4E9F1"
    readonly property color focus: dark ? "#8BB1FF" : "#2563EB"
    readonly property color console: dark ? "#121519" : "#FFFFFF"
    readonly property color logTime: dark ? "#8A94A3" : "#636D7E"
    readonly property color logInfo: dark ? "#C6CDD8" : "#3A4352"
    readonly property color logNetwork: dark ? "#8BB1FF" : "#1D4FD0"
    readonly property color logSuccess: dark ? "#63D48E" : "#137839"
    readonly property color logWarning: dark ? "#F3C36F" : "#8A4B08"
    readonly property color logError: dark ? "#FF9A91" : "#B42318"
    readonly property color scrollThumb: dark ? "#4A535F" : "#B9C1CE"
    readonly property color scrim: dark ? "#8C000000" : "#520F172A"
    readonly property color knob: "#FFFFFF"

    readonly property string familyMono: "DejaVu Sans Mono"
    readonly property var heroTitle: ({ size: 18, weight: 600, line: 24, spacing: 0 })
    readonly property var sheetTitle: ({ size: 17, weight: 600, line: 22, spacing: 0 })
    readonly property var cardTitle: ({ size: 14, weight: 600, line: 20, spacing: 0 })
    readonly property var value: ({ size: 13, weight: 500, line: 18, spacing: 0 })
    readonly property var body: ({ size: 13, weight: 400, line: 18, spacing: 0 })
    readonly property var button: ({ size: 13, weight: 600, line: 18, spacing: 0 })
    readonly property var caption: ({ size: 12, weight: 400, line: 16, spacing: 0 })
    readonly property var note: ({ size: 11, weight: 400, line: 15, spacing: 0 })
    readonly property var overline: ({ size: 11, weight: 600, line: 14, spacing: 0.6 })
    readonly property var ringFigure: ({ size: 20, weight: 600, line: 24, spacing: 0 })
    readonly property var speedFigure: ({ size: 20, weight: 600, line: 26, spacing: 0 })
    readonly property var badge: ({ size: 11, weight: 700, line: 14, spacing: 0.6 })
    readonly property var log: ({ size: 11, weight: 400, line: 16, spacing: 0 })
    readonly property var menuHeader: ({ size: 11, weight: 600, line: 15, spacing: 0 })
    readonly property var quiet: ({ size: 12, weight: 500, line: 16, spacing: 0 })
    readonly property var strong: ({ size: 12, weight: 600, line: 16, spacing: 0 })

    readonly property int cardRadius: 12
    readonly property int sheetRadius: 14
    readonly property int controlRadius: 8
    readonly property int tileRadius: 8
    readonly property int badgeRadius: 10
    readonly property int menuRadius: 10
    readonly property int checkRadius: 4

    readonly property int pressTime: 80 * motion
    readonly property int hoverTime: 120 * motion
    readonly property int fadeTime: 160 * motion
    readonly property int switchTime: 160 * motion
    readonly property int sheetInTime: 200 * motion
    readonly property int sheetOutTime: 140 * motion
    readonly property int progressTime: 300 * motion
    readonly property int livePulseTime: 1600 * motion
}

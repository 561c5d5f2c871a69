import QtQuick
import Quorvane

/// Two buttons that share a row: alike in width, or as their words need it; one below the other
/// where even that is too narrow.
Item {
    id: pair

    required property ActionButton first
    required property ActionButton second
    readonly property real free: width - 8
    readonly property real wanted: first.implicitWidth + second.implicitWidth
    readonly property bool fits: wanted <= free
    readonly property real half:
        Math.max(first.implicitWidth, second.implicitWidth) <= free / 2 ? free / 2
            : free * first.implicitWidth / wanted

    implicitHeight: fits ? 40 : 88
    data: [first, second]

    Binding { target: pair.first; property: "width"; value: pair.fits ? pair.half : pair.width }
    Binding { target: pair.second; property: "width"; value: pair.fits ? pair.free - pair.half : pair.width }
    Binding { target: pair.second; property: "x"; value: pair.fits ? pair.half + 8 : 0 }
    Binding { target: pair.second; property: "y"; value: pair.fits ? 0 : 48 }
}

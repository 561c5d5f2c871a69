import QtQuick
import QtQuick.Controls.Basic

/// A thin thumb, only while there is something to scroll.
ScrollBar {
    id: bar

    policy: size < 1 ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
    minimumSize: 0.1
    padding: 4
    rightPadding: 3
    implicitWidth: 11
    Accessible.ignored: true
    contentItem: Rectangle {
        implicitWidth: 4
        radius: 2
        color: Theme.scrollThumb
        visible: bar.size < 1
    }
    background: null
}

import QtQuick
import Quorvane

/// The content of the window: the dashboard, the inspector beside it, and the boxes over both.
Rectangle {
    id: root

    required property Dashboard dashboard
    property bool dark: false
    property real motion: 1

    width: 440
    height: 650
    color: Theme.window

    Binding { target: Theme; property: "dark"; value: root.dark }
    Binding { target: Theme; property: "motion"; value: root.motion }
    Connections {
        target: root.dashboard
        function onCreateAlbumRequested() {
            albumSheet.begin();
        }
    }

    MainColumn {
        width: 440
        height: parent.height
        dashboard: root.dashboard
    }
    Loader {
        x: 440
        width: 440
        height: parent.height
        active: root.dashboard.isInspectorOpen || root.width > 440
        onActiveChanged: fill()
        Component.onCompleted: fill()

        function fill() {
            if (active)
                setSource(Qt.resolvedUrl("Inspector.qml"), { dashboard: root.dashboard });
        }
    }
    QuarantineSheet { dashboard: root.dashboard }
    SettingsSheet { dashboard: root.dashboard }
    SessionCheckSheet { dashboard: root.dashboard }
    AlbumSheet { id: albumSheet; dashboard: root.dashboard }
    AlertSheet { dashboard: root.dashboard }
}

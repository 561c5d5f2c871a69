import QtQuick

/// A setting that is on or off. Only the switch itself toggles.
SettingRow {
    id: row

    property string controlName
    property bool isOn: false
    signal chosen(bool isOn)

    Toggle {
        objectName: row.controlName
        checked: row.isOn
        opacity: enabled ? 1 : 0.5
        Accessible.name: row.title
        Accessible.description: row.note
        onToggled: {
            row.chosen(checked);
            checked = Qt.binding(() => row.isOn);
        }
    }
}

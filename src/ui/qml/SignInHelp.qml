// qmllint disable unqualified
import QtQuick
import Quorvane

/// While a sign-in waits, and only then: its page's address, should no browser have opened, and a
/// place for the address to which a browser was sent that does not find its way back.
Loader {
    id: help

    required property Dashboard dashboard

    active: dashboard.account.signInAddress.length > 0
    visible: active
    sourceComponent: Column {
        spacing: 6

        Words {
            width: parent.width
            role: Theme.note
            text: "Tarayıcı açılmadıysa bu adresi bir tarayıcıda açın:"
            color: Theme.textSecondary
            wrapMode: Text.Wrap
        }
        LineField {
            objectName: "signInAddress"
            width: parent.width
            text: help.dashboard.account.signInAddress
            readOnly: true
            onTextChanged: cursorPosition = 0
            onActiveFocusChanged: if (activeFocus) selectAll()
            Accessible.name: "Giriş adresi"
        }
        LineField {
            objectName: "callbackAddress"
            width: parent.width
            placeholderText: "Tarayıcı dönmezse vardığı adresi yapıştırıp Enter'a basın"
            onAccepted: {
                help.dashboard.pasteCallback(text);
                clear();
            }
        }
    }
}

import QtQuick
import Quorvane

/// Nothing of what was held back is lost.
Rectangle {
    implicitHeight: words.implicitHeight + 20
    radius: Theme.tileRadius
    color: Theme.successTint

    Symbol {
        x: 12
        y: 10
        size: 20
        name: "checkmark.shield.fill"
        color: Theme.success
    }
    Words {
        id: words
        x: 42
        y: 10
        width: parent.width - x - 12
        role: Theme.caption
        text: "Fotoğraflarınız Güvende. Bu öğeler silinmedi veya kaybolmadı, yalnızca teknik bir nedenle karşıya yüklenemedi."
        wrapMode: Text.Wrap
    }
}

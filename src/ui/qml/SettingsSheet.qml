pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quorvane

/// What a person chooses once: the library, what of it goes to Google, and the program's manners.
/// Every change holds at once.
Sheet {
    id: sheet

    required property Dashboard dashboard
    readonly property LibrarySettings library: dashboard.librarySettings
    readonly property MenuBarViewModel model: dashboard.model

    shown: library.isShown
    width: 408
    onOpened: change.forceActiveFocus(Qt.PopupFocusReason)
    onCancelled: library.hide()

    Item {
        width: sheet.availableWidth
        height: sheet.availableHeight
        implicitHeight: middle.y + groups.height + 14 + 40
        Accessible.role: Accessible.Dialog
        Accessible.name: title.text

        Words {
            id: title
            role: Theme.sheetTitle
            text: "Ayarlar"
            Accessible.role: Accessible.Heading
        }
        Flickable {
            id: middle
            y: 36
            width: parent.width
            height: Math.min(groups.height, parent.height - y - 54)
            contentHeight: groups.height
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height
            ScrollBar.vertical: ScrollThumb { }

            Column {
                id: groups
                width: middle.width
                spacing: 16

                SettingGroup {
                    title: "Kitaplık"

                    SettingRow {
                        title: sheet.library.name || "Seçilmedi"
                        note: sheet.library.path
                        isLast: true

                        ActionButton {
                            id: change
                            objectName: "changeLibrary"
                            small: true
                            text: "Değiştir…"
                            onClicked: {
                                sheet.library.hide();
                                sheet.dashboard.choose("chooseLibrary");
                            }
                        }
                    }
                }
                SettingGroup {
                    title: "Google'a Aktarma"
                    visible: sheet.library.isBundle
                    enabled: sheet.library.canChange

                    SettingRow {
                        title: "Yüklenecek sürüm"
                        note: "Düzenlediğiniz öğelerin"

                        SegmentedChoice {
                            objectName: "version"
                            name: "Yüklenecek sürüm"
                            answers: ["Özgün", "Düzenlenmiş"]
                            current: sheet.library.sendsEdited ? 1 : 0
                            onChosen: index => sheet.library.sendsEdited = index === 1
                        }
                    }
                    SettingSwitch {
                        controlName: "motion"
                        title: "Live Photo'ları hareketli yükle"
                        note: "Fotoğraf ve kısa filmi birlikte gider"
                        isOn: sheet.library.sendsMotion
                        onChosen: isOn => sheet.library.sendsMotion = isOn
                    }
                    SettingSwitch {
                        controlName: "mirror"
                        enabled: sheet.library.canMirror
                        title: "Albümleri Google'da yansıt"
                        note: sheet.library.canMirror ? "Aynı adlı albümler açılır ve doldurulur"
                            : "Hedef bir albümken yapılamaz; hedef olarak ana akışı seçin"
                        isOn: sheet.library.mirrorsAlbums
                        onChosen: isOn => sheet.library.mirrorsAlbums = isOn
                    }
                    SettingSwitch {
                        controlName: "captions"
                        isLast: true
                        title: "Açıklamaları aktar"
                        note: "Photos'taki açıklama Google'da da görünür"
                        isOn: sheet.library.sendsCaptions
                        onChosen: isOn => sheet.library.sendsCaptions = isOn
                    }
                }
                SettingGroup {
                    title: "Uygulama"

                    SettingSwitch {
                        controlName: "notifications"
                        title: "Bildirimler"
                        note: "Biten eşitleme ve sizden beklenen işler"
                        isOn: sheet.model.areNotificationsEnabled
                        onChosen: isOn => sheet.model.areNotificationsEnabled = isOn
                    }
                    SettingSwitch {
                        controlName: "startAtLogin"
                        isLast: true
                        title: "Oturum açılınca başlat"
                        isOn: sheet.model.startsAtLogin
                        onChosen: isOn => sheet.model.startsAtLogin = isOn
                    }
                }
            }
        }
        Row {
            y: parent.height - 40
            spacing: 8

            ActionButton {
                objectName: "checkSession"
                width: signOut.visible ? (sheet.availableWidth - 8) / 2 : sheet.availableWidth
                text: "Oturum Denetimi…"
                onClicked: {
                    sheet.library.hide();
                    sheet.dashboard.choose("checkSession");
                }
            }
            ActionButton {
                id: signOut
                objectName: "signOut"
                width: (sheet.availableWidth - 8) / 2
                visible: sheet.dashboard.account.isSignedIn
                text: "Oturumu Kapat"
                onClicked: {
                    sheet.library.hide();
                    sheet.dashboard.choose("signOut");
                }
            }
        }
        IconButton {
            objectName: "settingsClose"
            x: parent.width - 24
            y: -7
            symbol: "xmark"
            name: "Kapat"
            onClicked: sheet.cancelled()
        }
    }
}

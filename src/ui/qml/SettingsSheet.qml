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
    readonly property AutoSync automatic: dashboard.automatic

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

            readonly property Item focusItem: Window.activeFocusItem

            function reveal(item: Item) {
                const top = item.mapToItem(groups, 0, 0).y - 8;
                const bottom = top + item.height + 16;
                if (top < contentY)
                    contentY = Math.max(0, top);
                else if (bottom > contentY + height)
                    contentY = Math.min(contentHeight - height, bottom - height);
            }
            onFocusItemChanged: {
                for (let item = focusItem; item; item = item.parent)
                    if (item === groups)
                        return reveal(focusItem);
            }

            y: 36
            width: parent.width + 14 // the thumb is beside the rows
            height: Math.min(groups.height, parent.height - y - 54)
            contentHeight: groups.height
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height
            ScrollBar.vertical: ScrollThumb { }

            Column {
                id: groups
                width: middle.width - 14
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
                                sheet.dashboard.chooseLibrary();
                            }
                        }
                    }
                }
                SettingGroup {
                    title: "Eşitleme"

                    SettingSwitch {
                        controlName: "autoSync"
                        title: "Yeni öğeleri kendiliğinden eşitle"
                        note: "Kitaplığa eklenenler siz istemeden yüklenir"
                        isOn: sheet.automatic.isOn
                        onChosen: isOn => sheet.automatic.isOn = isOn
                    }
                    SettingRow {
                        title: "Eşitlemeyi duraklat"
                        note: sheet.automatic.pauseText
                        isWarning: sheet.automatic.isPaused

                        Row {
                            spacing: 8
                            ActionButton {
                                objectName: "pauseHour"
                                visible: !sheet.automatic.isPaused
                                small: true
                                text: "1 saat"
                                Accessible.name: "Eşitlemeyi 1 saat duraklat"
                                onClicked: sheet.automatic.pauseForAnHour()
                            }
                            ActionButton {
                                objectName: "pauseDay"
                                visible: !sheet.automatic.isPaused
                                small: true
                                text: "Yarına kadar"
                                Accessible.name: "Eşitlemeyi yarına kadar duraklat"
                                onClicked: sheet.automatic.pauseUntilTomorrow()
                            }
                            ActionButton {
                                objectName: "resume"
                                visible: sheet.automatic.isPaused
                                small: true
                                text: "Sürdür"
                                onClicked: sheet.automatic.resume()
                            }
                        }
                    }
                    SettingSwitch {
                        controlName: "metered"
                        title: "Tarifeli bağlantıda beklet"
                        note: "Mobil veri ve paylaşılan ağda eşitleme bekler"
                        isOn: sheet.automatic.waitsOnMetered
                        onChosen: isOn => sheet.automatic.waitsOnMetered = isOn
                    }
                    SettingRow {
                        title: "Yükleme sınırı"
                        isLast: true

                        ActionButton {
                            objectName: "uploadLimit"
                            small: true
                            text: sheet.automatic.uploadLimitText
                            Accessible.name: "Yükleme sınırı: " + text
                            onClicked: limits.openByKeyboard(visualFocus)

                            ChoiceMenu {
                                id: limits
                                x: parent.width - width
                                width: 160
                                name: "Yükleme sınırı"
                                rows: sheet.dashboard.uploadLimitMenu
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
                        isOn: sheet.dashboard.areNotificationsEnabled
                        onChosen: isOn => sheet.dashboard.areNotificationsEnabled = isOn
                    }
                    SettingSwitch {
                        controlName: "startAtLogin"
                        isLast: true
                        title: "Oturum açılınca başlat"
                        isOn: sheet.dashboard.startsAtLogin
                        onChosen: isOn => sheet.dashboard.startsAtLogin = isOn
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
                    sheet.dashboard.sessionCheck.show();
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
                    sheet.dashboard.signOut();
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

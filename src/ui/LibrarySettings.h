#pragma once

#include "library/LibraryChoices.h"
#include "ui/MenuBarViewModel.h"

namespace quorvane {

/// What is chosen for the library that is open, as the settings show it. Main thread. A change is
/// remembered for the library, which is opened again with it; that changes nothing that was sent.
class LibrarySettings final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isShown READ isShown NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QString path READ path NOTIFY changed)
    Q_PROPERTY(bool isBundle READ isBundle NOTIFY changed)
    Q_PROPERTY(bool canChange READ canChange NOTIFY changed)
    Q_PROPERTY(bool sendsEdited READ sendsEdited WRITE setSendsEdited NOTIFY changed)
    Q_PROPERTY(bool sendsMotion READ sendsMotion WRITE setSendsMotion NOTIFY changed)
    Q_PROPERTY(bool mirrorsAlbums READ mirrorsAlbums WRITE setMirrorsAlbums NOTIFY changed)
    Q_PROPERTY(bool canMirror READ canMirror NOTIFY changed)
    Q_PROPERTY(bool sendsCaptions READ sendsCaptions WRITE setSendsCaptions NOTIFY changed)

  public:
    explicit LibrarySettings(MenuBarViewModel& model);

    bool isShown() const { return isShown_; }
    /// Of the library; where none is open both are empty.
    QString name() const;
    QString path() const;
    /// Only a Photos bundle offers choices.
    bool isBundle() const;
    /// Not while a run is under way.
    bool canChange() const { return !model_.isSyncing(); }
    bool sendsEdited() const;
    bool sendsMotion() const;
    bool mirrorsAlbums() const { return choices_.mirrorAlbums; }
    /// False while one album is the target; then it can only be ended.
    bool canMirror() const;
    bool sendsCaptions() const { return choices_.captions; }

    void setSendsEdited(bool sends);
    void setSendsMotion(bool sends);
    void setMirrorsAlbums(bool mirrors);
    void setSendsCaptions(bool sends);

    Q_INVOKABLE void show() { setShown(true); }
    Q_INVOKABLE void hide() { setShown(false); }

  Q_SIGNALS:
    void changed();

  private:
    void setShown(bool isShown);
    void takeLibrary();
    void choose();

    MenuBarViewModel& model_;
    bool isShown_ = false;
    LibraryChoices choices_;
};

} // namespace quorvane

#pragma once

#include "sync/Turns.h"
#include "ui/MenuBarViewModel.h"

namespace quorvane {

/// Begins runs that nobody asked for: after something new has come and half a minute of quiet, if
/// the person wants that, and after a fault that may have passed. Not while they are paused, nor on
/// a metered connection if it is to wait for another. Main thread; the model outlives it.
class AutoSync final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOn READ isOn WRITE setOn NOTIFY changed)
    Q_PROPERTY(bool waitsOnMetered READ waitsOnMetered WRITE setWaitsOnMetered NOTIFY changed)
    Q_PROPERTY(bool isPaused READ isPaused NOTIFY changed)
    Q_PROPERTY(QString pauseText READ pauseText NOTIFY changed)
    Q_PROPERTY(QString uploadLimitText READ uploadLimitText NOTIFY changed)

  public:
    struct Services {
        Preferences& preferences;
        Clock& clock;
        Desktop& desktop;
    };

    AutoSync(MenuBarViewModel& model, const Services& services);

    bool isOn() const;
    void setOn(bool on);
    bool waitsOnMetered() const;
    void setWaitsOnMetered(bool waits);
    bool isPaused() const;
    QString pauseText() const;        ///< "14:30'a kadar duraklatıldı"; empty while it is not
    std::int64_t uploadLimit() const; ///< bytes a second; 0: none
    QString uploadLimitText() const { return limitText(uploadLimit()); }
    static QString limitText(std::int64_t bytesPerSecond);
    void setUploadLimit(std::int64_t bytesPerSecond);

    Q_INVOKABLE void pauseForAnHour();
    Q_INVOKABLE void pauseUntilTomorrow();
    Q_INVOKABLE void resume();

    /// Begins a run as soon as one may begin; what its timer does.
    void start();

  Q_SIGNALS:
    void changed();

  private:
    void countsChanged();
    void runEnded(const SyncRunOutcome& outcome);
    void networkChanged();
    bool mayStart() const;
    void pauseUntil(Date time);
    void watchPause();

    MenuBarViewModel& model_;
    const Services s_;
    Turns turns_;
    QTimer next_{this};  ///< until the next run
    QTimer pause_{this}; ///< while it is paused: looks whether that is over
    int knownPending_ = 0;
    bool isDue_ = false; ///< a run was to begin, and may not yet
};

} // namespace quorvane

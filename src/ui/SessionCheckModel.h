#pragma once

#include "foundation/Clock.h"
#include "foundation/TaskRunner.h"

#include <QObject>
#include <QVariantList>

#include <functional>
#include <vector>

namespace quorvane {

/// One thing that was looked at: what it is, what was found or is to be done, and the button that
/// helps, if one does.
struct CheckedThing {
    enum class State { fine, warning, faulty, unknown };
    enum class Remedy { none, signIn, chooseLibrary };

    State state = State::fine;
    QString title;
    QString text;
    Remedy remedy = Remedy::none;
};

/// The check of everything that can stand between a person and their backup, as the window shows
/// it. Main thread.
class SessionCheckModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isShown READ isShown NOTIFY changed)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY changed)
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)

  public:
    /// Blocks, on a thread of the model; throws only `Cancelled`.
    using Check = std::function<std::vector<CheckedThing>(const std::stop_token&)>;

    SessionCheckModel(Check check, Clock& clock);

    bool isShown() const { return isShown_; }
    bool isRunning() const { return isRunning_; }
    /// "14:32'de denetlendi · 1 sorun, 2 uyarı, 4 madde yolunda"
    const QString& summary() const { return summary_; }
    /// {state, symbol, title, text, action, name}, the action empty where no press helps: faults
    /// first, then warnings, then what is fine, then what could not be looked at.
    const QVariantList& rows() const { return rows_; }

    CheckedThing::Remedy remedyOf(int row) const;

    /// Shows itself, and looks.
    Q_INVOKABLE void show();
    Q_INVOKABLE void look();
    Q_INVOKABLE void hide();

  Q_SIGNALS:
    void changed();

  private:
    void publish(std::vector<CheckedThing> things);

    Check check_;
    Clock& clock_;
    bool isShown_ = false;
    bool isRunning_ = false;
    QString summary_;
    std::vector<CheckedThing> things_; ///< in the order of the rows
    QVariantList rows_;
    TaskRunner tasks_; ///< last, so that it ends first
};

} // namespace quorvane

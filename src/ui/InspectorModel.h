#pragma once

#include "ui/MenuBarViewModel.h"
#include "ui/Redaction.h"

namespace quorvane {

/// What the inspector tells beyond its figures: the life of the record that a line of the log
/// speaks of, and a report for whoever is to help. Main thread; store and files are read and
/// written in the background.
class InspectorModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString openLine READ openLine NOTIFY changed)
    Q_PROPERTY(QVariantList steps READ steps NOTIFY changed)

  public:
    explicit InspectorModel(MenuBarViewModel& model);

    /// The line of the log that is open, by its identifier; at most one is.
    const QString& openLine() const { return openLine_; }
    /// {time, title, detail, isFailure, name}; the earliest first.
    const QVariantList& steps() const { return steps_; }

    /// Opens the line that speaks of this asset, or closes it.
    Q_INVOKABLE void toggle(const QString& line, const QString& about);
    Q_INVOKABLE void close();
    /// Asks where the report is to be written.
    Q_INVOKABLE void requestReport() { Q_EMIT reportRequested(); }

    /// Writes what whoever is to help wants to know: versions, state, counts, the check of the
    /// session if there was one, and the end of the log; no tokens, no e-mail, and names only if
    /// they are kept. A failure is shown.
    void saveReport(const std::filesystem::path& file, Names names);

    bool isWorking() { return !tasks_.isIdle(); }

  Q_SIGNALS:
    void changed();
    void reportRequested();

  private:
    QString stateText() const;
    QStringList knownNames() const;

    MenuBarViewModel& model_;
    QString openLine_;
    QVariantList steps_;
    TaskRunner tasks_; ///< last: its work uses the rest
};

} // namespace quorvane

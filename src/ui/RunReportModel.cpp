#include "ui/RunReportModel.h"

#include "foundation/File.h"

namespace quorvane {

RunReportModel::RunReportModel(MenuBarViewModel& model) : model_(model) {
    connect(&model_, &MenuBarViewModel::syncChanged, this, &RunReportModel::runMayHaveBegun);
    connect(&model_, &MenuBarViewModel::runEnded, this, &RunReportModel::runEnded);
    connect(&model_, &MenuBarViewModel::routeChanged, this, [this] {
        if (run_.session && !isOffered())
            run_ = {}; // nothing keeps a library open that is not the person's any more
        Q_EMIT changed();
    });
}

/// A library that was opened again, for another choice, is the same.
bool RunReportModel::isOffered() const {
    return run_.session && model_.library() && model_.library()->root == run_.session->root;
}

void RunReportModel::runMayHaveBegun() {
    if (model_.isSyncing() && !begun_)
        begun_ = model_.services().clock.monotonic();
}

void RunReportModel::runEnded(const SyncRunOutcome& outcome) {
    const Clock& clock = model_.services().clock;
    const auto now = clock.monotonic();
    run_ = {model_.session(), outcome, clock.now(),
            std::chrono::duration<double>(now - begun_.value_or(now)).count()};
    begun_.reset();
    Q_EMIT changed();
}

void RunReportModel::save(const std::filesystem::path& file) {
    if (!isOffered())
        return;
    FinishedRun run = run_;
    run.session = model_.session();
    tasks_.post([this, file, run](const std::stop_token&) {
        QString failure;
        try {
            replaceFile(file, model_.services().reportPage(run));
        } catch (const Error& error) {
            failure = error.localizedDescription();
        }
        onMainThread([self = QPointer(this), file, failure] {
            if (!self)
                return;
            if (failure.isEmpty())
                self->model_.services().desktop.open(file);
            else
                self->model_.showError(QStringLiteral("Rapor yazılamadı: ") + failure);
        });
    });
}

} // namespace quorvane

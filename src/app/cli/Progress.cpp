#include "app/cli/Progress.h"

#include "app/cli/Command.h"
#include "app/cli/TextTable.h"

#include <QJsonArray>
#include <QJsonObject>

namespace quorvane::cli {

namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds livePeriod{250};
constexpr milliseconds plainPeriod{5000};

QString clockText(std::int64_t total) {
    const auto twoDigits = [](std::int64_t value) {
        return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
    };
    if (total >= 3600)
        return QStringLiteral("%1:%2:%3")
            .arg(total / 3600)
            .arg(twoDigits(total / 60 % 60), twoDigits(total % 60));
    return QStringLiteral("%1:%2").arg(total / 60).arg(twoDigits(total % 60));
}

int percentOf(int completed, int total) {
    return total > 0 ? static_cast<int>(std::int64_t(completed) * 100 / total) : 0;
}

std::optional<std::int64_t> secondsLeft(int completed, int total, seconds elapsed) {
    if (completed <= 0)
        return std::nullopt;
    return elapsed.count() * (total - completed) / completed;
}

} // namespace

QString progressLine(int completed, int total, seconds elapsed, const TransferSnapshot& transfers,
                     const RunState& state) {
    const bool isWaiting = state.phase == RunState::Phase::waiting;
    if (total == 0)
        return isWaiting ? state.text() : QStringLiteral("Arşiv taranıyor…");
    QStringList parts{QStringLiteral("%1/%2 (%%3)")
                          .arg(countText(completed), countText(total),
                               QString::number(percentOf(completed, total)))};
    if (isWaiting)
        return (parts << state.text()).join(QStringLiteral(" · "));
    parts += transfers.currentSpeedText;
    if (const auto left = secondsLeft(completed, total, elapsed))
        parts += QStringLiteral("kalan ") + clockText(*left);
    QStringList names;
    for (const ActiveTransferItem& item : transfers.items)
        names += item.fileName;
    if (!names.isEmpty())
        parts += names.join(QStringLiteral(", "));
    return parts.join(QStringLiteral(" · "));
}

Progress::Progress(Form form, Console& console, TransferActivityTracker& tracker, Clock& clock)
    : form_(form),
      console_(console),
      tracker_(tracker),
      clock_(clock),
      started_(clock.monotonic()) {
    if (form_ != Form::none)
        thread_ = std::jthread([this](std::stop_token stop) { show(stop); });
}

Progress::~Progress() {
    thread_ = {}; // ends and joins
    console_.setLiveLine(QString());
}

void Progress::update(int completed, int total) {
    const auto known = known_.lock();
    known->completed = completed;
    known->total = total;
}

void Progress::update(const RunState& state) {
    known_.lock()->state = state;
    QJsonObject object = state.json();
    object[QStringLiteral("event")] = QStringLiteral("state");
    if (form_ == Form::json)
        printJson(console_, object);
    else if (form_ == Form::text && state.phase == RunState::Phase::waiting &&
             !console_.isTerminal())
        console_.print(state.text());
}

void Progress::show(std::stop_token stop) {
    const bool onTerminal = form_ == Form::text && console_.isTerminal();
    while (clock_.sleep(onTerminal ? livePeriod : plainPeriod, stop))
        showOnce(onTerminal);
}

void Progress::showOnce(bool onTerminal) {
    const auto [completed, total, state] = Known(*known_.lock());
    const auto elapsed = duration_cast<seconds>(clock_.monotonic() - started_);
    const TransferSnapshot transfers = tracker_.getSnapshot();
    if (form_ == Form::json) {
        QJsonArray names;
        for (const ActiveTransferItem& item : transfers.items)
            names += item.fileName;
        QJsonObject object{{QStringLiteral("event"), QStringLiteral("progress")},
                           {QStringLiteral("completed"), completed},
                           {QStringLiteral("total"), total},
                           {QStringLiteral("percent"), percentOf(completed, total)},
                           {QStringLiteral("bytesPerSecond"), transfers.currentSpeed},
                           {QStringLiteral("inFlight"), names}};
        if (const auto left = secondsLeft(completed, total, elapsed))
            object[QStringLiteral("secondsLeft")] = qint64(*left);
        printJson(console_, object);
    } else if (onTerminal) {
        console_.setLiveLine(progressLine(completed, total, elapsed, transfers, state));
    } else if (completed != std::exchange(lastShown_, completed)) {
        console_.print(progressLine(completed, total, elapsed, transfers, state));
    }
}

SyncRunCallbacks shownBy(const std::shared_ptr<Progress>& progress) {
    SyncRunCallbacks callbacks;
    callbacks.progress = [weak = std::weak_ptr(progress)](int completed, int total) {
        if (const auto shown = weak.lock())
            shown->update(completed, total);
    };
    callbacks.stateChanged = [weak = std::weak_ptr(progress)](const RunState& state) {
        if (const auto shown = weak.lock(); shown && state.phase != RunState::Phase::ended)
            shown->update(state);
    };
    return callbacks;
}

} // namespace quorvane::cli

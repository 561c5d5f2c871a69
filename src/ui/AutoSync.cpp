#include "ui/AutoSync.h"

#include "ui/TurkishTime.h"

#include <QDateTime>

namespace quorvane {

namespace {

constexpr std::chrono::minutes pauseLook{1}; // a computer that slept did not count the time
constexpr std::int64_t megabyte = 1'000'000;

} // namespace

AutoSync::AutoSync(MenuBarViewModel& model, const Services& services)
    : model_(model), s_(services) {
    next_.setSingleShot(true);
    pause_.setInterval(pauseLook);
    connect(&next_, &QTimer::timeout, this, &AutoSync::start);
    connect(&pause_, &QTimer::timeout, this, &AutoSync::watchPause);
    connect(&model_, &MenuBarViewModel::countsChanged, this, &AutoSync::countsChanged);
    connect(&model_, &MenuBarViewModel::runEnded, this, &AutoSync::runEnded);
    s_.desktop.watchNetwork([this] { networkChanged(); });
    watchPause();
}

bool AutoSync::isOn() const {
    return s_.preferences.boolean(preferenceKeys::autoSync);
}

void AutoSync::setOn(bool on) {
    model_.settings().store([&] { s_.preferences.setBoolean(preferenceKeys::autoSync, on); });
    knownPending_ = 0;
    if (on)
        countsChanged();
    else
        next_.stop();
    Q_EMIT changed();
}

bool AutoSync::waitsOnMetered() const {
    return s_.preferences.boolean(preferenceKeys::waitsOnMetered);
}

void AutoSync::setWaitsOnMetered(bool waits) {
    model_.settings().store(
        [&] { s_.preferences.setBoolean(preferenceKeys::waitsOnMetered, waits); });
    networkChanged();
    Q_EMIT changed();
}

std::int64_t AutoSync::uploadLimit() const {
    return s_.preferences.number(preferenceKeys::uploadLimit);
}

QString AutoSync::limitText(std::int64_t bytesPerSecond) {
    return bytesPerSecond == 0 ? QStringLiteral("Sınırsız")
                               : QStringLiteral("%1 MB/s").arg(bytesPerSecond / megabyte);
}

void AutoSync::setUploadLimit(std::int64_t bytesPerSecond) {
    model_.settings().store([&] {
        s_.preferences.setString(preferenceKeys::uploadLimit, QString::number(bytesPerSecond));
    });
    Q_EMIT changed();
}

// When a run begins.

/// More is pending than before: something came.
void AutoSync::countsChanged() {
    const int pending = model_.pendingCount();
    const bool hasCome = pending > std::exchange(knownPending_, pending);
    if (hasCome && isOn() && !model_.isSyncing())
        next_.start(Turns::usualSettling);
}

/// What the person stopped stays stopped, and a session that ended waits for them.
void AutoSync::runEnded(const SyncRunOutcome& outcome) {
    const RunState state = outcome.state();
    knownPending_ = model_.pendingCount();
    turns_.ended(outcome);
    next_.stop();
    isDue_ = false;
    if (state.end == RunState::End::stopped || state.end == RunState::End::albumFull ||
        state.needsSignIn())
        return;
    const bool isFaults = outcome.fault || outcome.error;
    if ((isFaults || isOn()) && turns_.next() < Turns::never)
        next_.start(turns_.next());
}

bool AutoSync::mayStart() const {
    return !isPaused() && !(waitsOnMetered() && s_.desktop.isNetworkMetered());
}

void AutoSync::start() {
    isDue_ = !mayStart();
    const ProductState state = model_.state();
    const bool hasAll = state != ProductState::signedOut && state != ProductState::sessionLapsed &&
                        state != ProductState::libraryAway && state != ProductState::noLibrary;
    if (!isDue_ && hasAll)
        model_.triggerSync();
}

void AutoSync::networkChanged() {
    if (model_.isSyncing() && waitsOnMetered() && s_.desktop.isNetworkMetered()) {
        model_.stopSync();
        isDue_ = true;
    } else if (isDue_ && mayStart()) {
        start();
    }
}

// The pause.

bool AutoSync::isPaused() const {
    return s_.preferences.string(preferenceKeys::pausedUntil).has_value();
}

QString AutoSync::pauseText() const {
    const auto until = s_.preferences.string(preferenceKeys::pausedUntil);
    return until ? spokenTime(Date(std::chrono::milliseconds(until->toLongLong())), TimeCase::until,
                              s_.clock.now()) +
                       QStringLiteral(" kadar duraklatıldı")
                 : QString();
}

void AutoSync::pauseForAnHour() {
    pauseUntil(s_.clock.now() + std::chrono::hours(1));
}

void AutoSync::pauseUntilTomorrow() {
    const auto now = QDateTime::fromMSecsSinceEpoch(s_.clock.now().time_since_epoch().count());
    pauseUntil(
        Date(std::chrono::milliseconds(now.date().addDays(1).startOfDay().toMSecsSinceEpoch())));
}

void AutoSync::pauseUntil(Date time) {
    model_.settings().store([&] {
        s_.preferences.setString(preferenceKeys::pausedUntil,
                                 QString::number(time.time_since_epoch().count()));
    });
    if (model_.isSyncing()) {
        model_.stopSync();
        isDue_ = true;
    }
    pause_.start();
    Q_EMIT changed();
}

void AutoSync::resume() {
    model_.settings().store([&] { s_.preferences.remove(preferenceKeys::pausedUntil); });
    pause_.stop();
    if (isDue_)
        start();
    Q_EMIT changed();
}

void AutoSync::watchPause() {
    const auto until = s_.preferences.string(preferenceKeys::pausedUntil);
    if (!until)
        return;
    if (Date(std::chrono::milliseconds(until->toLongLong())) <= s_.clock.now())
        resume();
    else
        pause_.start();
}

} // namespace quorvane

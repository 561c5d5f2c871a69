#include "ui/SessionCheckModel.h"

#include "foundation/MainThread.h"

#include <QDateTime>
#include <QPointer>
#include <QVariantMap>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

using State = CheckedThing::State;

struct StateLook {
    State state;
    const char16_t* name;
    const char16_t* symbol;
    const char16_t* spoken;
};

/// In the order in which they are shown.
constexpr std::array looks{
    StateLook{State::faulty, u"faulty", u"xmark.circle.fill", u"Sorun"},
    StateLook{State::warning, u"warning", u"x.exclamationmark.triangle", u"Uyarı"},
    StateLook{State::fine, u"fine", u"checkmark.circle.fill", u"Yolunda"},
    StateLook{State::unknown, u"unknown", u"questionmark.circle.fill", u"Bilinmiyor"},
};

const StateLook* lookOf(State state) {
    return std::ranges::find(looks, state, &StateLook::state);
}

/// The suffix of "at" follows the last word of the number as it is spoken.
QString atTime(QTime time) {
    constexpr std::array units{u"da", u"de", u"de", u"te", u"te",
                               u"te", u"da", u"de", u"de", u"da"};
    constexpr std::array tens{u"da", u"da", u"de", u"da", u"ta", u"de"};
    const int spoken = time.minute() != 0 ? time.minute() : time.hour();
    const std::u16string_view suffix = spoken % 10 != 0 || spoken == 0
                                           ? units.at(static_cast<std::size_t>(spoken % 10))
                                           : tens.at(static_cast<std::size_t>(spoken / 10));
    return u"%1'%2"_s.arg(time.toString(u"HH:mm"_s), QStringView(suffix));
}

QString actionOf(CheckedThing::Remedy remedy) {
    switch (remedy) {
    case CheckedThing::Remedy::signIn:
        return u"Giriş Yap"_s;
    case CheckedThing::Remedy::chooseLibrary:
        return u"Seç…"_s;
    case CheckedThing::Remedy::none:
        break;
    }
    return {};
}

QVariantMap rowOf(const CheckedThing& thing) {
    const StateLook* look = lookOf(thing.state);
    return {{u"state"_s, QString::fromUtf16(look->name)},
            {u"symbol"_s, QString::fromUtf16(look->symbol)},
            {u"title"_s, thing.title},
            {u"text"_s, thing.text},
            {u"action"_s, actionOf(thing.remedy)},
            {u"name"_s,
             QString::fromUtf16(look->spoken) + u": "_s + thing.title + u". "_s + thing.text}};
}

} // namespace

SessionCheckModel::SessionCheckModel(Check check, Clock& clock)
    : check_(std::move(check)), clock_(clock) {}

void SessionCheckModel::show() {
    isShown_ = true;
    look();
}

void SessionCheckModel::hide() {
    isShown_ = false;
    Q_EMIT changed();
}

void SessionCheckModel::look() {
    if (std::exchange(isRunning_, true))
        return;
    summary_ = u"Denetleniyor…"_s;
    Q_EMIT changed();
    tasks_.post([this, self = QPointer(this)](const std::stop_token& stop) {
        onMainThread([self, things = check_(stop)] {
            if (self)
                self->publish(things);
        });
    });
}

CheckedThing::Remedy SessionCheckModel::remedyOf(int row) const {
    return row >= 0 && row < std::ssize(things_) ? things_[static_cast<std::size_t>(row)].remedy
                                                 : CheckedThing::Remedy::none;
}

void SessionCheckModel::publish(std::vector<CheckedThing> things) {
    isRunning_ = false;
    std::ranges::stable_sort(
        things, {}, [](const CheckedThing& thing) { return lookOf(thing.state) - looks.begin(); });
    rows_.clear();
    for (const CheckedThing& thing : things)
        rows_.append(rowOf(thing));
    const auto count = [&](State state) {
        return std::ranges::count(things, state, &CheckedThing::state);
    };
    QStringList counts;
    if (const auto faults = count(State::faulty); faults > 0)
        counts += u"%1 sorun"_s.arg(faults);
    if (const auto warnings = count(State::warning); warnings > 0)
        counts += u"%1 uyarı"_s.arg(warnings);
    counts += u"%1 madde yolunda"_s.arg(count(State::fine));
    const auto since1970 = clock_.now().time_since_epoch();
    const auto now = QDateTime::fromMSecsSinceEpoch(
        std::chrono::duration_cast<std::chrono::milliseconds>(since1970).count());
    things_ = std::move(things);
    summary_ = atTime(now.time()) + u" denetlendi · "_s + counts.join(u", "_s);
    Q_EMIT changed();
}

} // namespace quorvane

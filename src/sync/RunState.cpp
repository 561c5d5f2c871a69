#include "sync/RunState.h"

#include "foundation/File.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QTimeZone>

#include <array>

namespace quorvane {

namespace {

constexpr std::int64_t largestFile = std::int64_t{64} * 1024;

QString clockText(Date date) {
    const auto then = QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count());
    const bool isToday = then.date() == QDate::currentDate();
    return then.toString(isToday ? QStringLiteral("HH:mm:ss") : QStringLiteral("dd.MM.yyyy HH:mm"));
}

QString textOf(FaultCode code) {
    switch (code) {
    case FaultCode::unreachable:
        return QStringLiteral("Google'a ulaşılamıyor, internet bağlantısını denetleyin");
    case FaultCode::serviceBusy:
        return QStringLiteral("Google şu anda yanıt veremiyor");
    case FaultCode::rateLimited:
        return QStringLiteral("Google daha seyrek istek göndermemizi istiyor");
    case FaultCode::dailyQuota:
        return QStringLiteral("Google'ın günlük istek sınırı doldu");
    case FaultCode::sessionEnded:
        return QStringLiteral("Google oturumu sona erdi, yeniden giriş yapın");
    case FaultCode::permissionMissing:
        return QStringLiteral("Google Photos izni eksik, yeniden giriş yapıp bütün kutuları "
                              "işaretleyin");
    case FaultCode::storageFull:
        return QStringLiteral("Google hesabının depolama alanı dolu, yer açın veya alanı büyütün");
    case FaultCode::serviceDisabled:
        return QStringLiteral("Photos Library API bu istemci için kapalı, Google Cloud konsolunda "
                              "etkinleştirin");
    case FaultCode::accessDenied:
        return QStringLiteral("Google bu hesaba veya istemciye izin vermiyor");
    case FaultCode::albumGone:
        return QStringLiteral("Hedef albüm Google Photos'ta bulunamadı, başka bir albüm seçin");
    case FaultCode::albumFull:
        return QStringLiteral("Hedef albüm dolu, başka bir albüm seçin");
    case FaultCode::diskFull:
        return QStringLiteral("Diskte yer kalmadı");
    case FaultCode::libraryAway:
        return QStringLiteral("Arşiv yerinde değil");
    case FaultCode::storeUnavailable:
        return QStringLiteral("Durum veritabanı kullanılamıyor");
    case FaultCode::fileTrouble:
        return QStringLiteral("Dosya okunamadı veya yazılamadı");
    case FaultCode::tooLarge:
        return QStringLiteral("Dosya, Google Photos'un kabul ettiğinden büyük");
    case FaultCode::itemRefused:
    case FaultCode::tokenRefused:
        break;
    }
    return QStringLiteral("Google bu dosyayı kabul etmedi");
}

constexpr std::array phaseNames{"none", "running", "waiting", "ended"};
constexpr std::array endNames{"complete",   "items-left", "stopped",
                              "album-full", "world",      "machine"};

/// The place of `name` in `names`; the first one for an unknown name.
template <typename Enum, std::size_t Count>
Enum valueOf(const std::array<const char*, Count>& names, const QJsonValue& name) {
    for (std::size_t i = 0; i < Count; ++i)
        if (name.toString() == QLatin1String(names[i]))
            return Enum(i);
    return Enum();
}

} // namespace

QString faultText(const Fault& fault) {
    const QString text = textOf(fault.code);
    return fault.reason.isEmpty() ? text : text + QStringLiteral(" (Google: %1)").arg(fault.reason);
}

QString RunState::text() const {
    const QString because = fault ? faultText(*fault) : QString();
    if (phase == Phase::none)
        return {};
    if (phase == Phase::running)
        return QStringLiteral("Eşitleme sürüyor");
    if (phase == Phase::waiting)
        return QStringLiteral("Bekleniyor: ") + because +
               (until ? QStringLiteral(" · sonraki deneme ") + clockText(*until) : QString());
    switch (end) {
    case End::complete:
        return QStringLiteral("Eşitleme bitti");
    case End::itemsLeft:
        return QStringLiteral("Eşitleme bitti, kalan öğeler var");
    case End::stopped:
        return QStringLiteral("Eşitleme durduruldu");
    case End::albumFull:
        return QStringLiteral("Eşitleme durdu: hedef albüm dolu");
    case End::world:
        return (wasPutOff() ? QStringLiteral("Eşitlemeye ara verildi: ")
                            : QStringLiteral("Eşitleme durdu: ")) +
               because;
    case End::machine:
        break;
    }
    return QStringLiteral("Eşitleme yarıda kaldı: ") + error;
}

QJsonObject RunState::json() const {
    const auto name = [](const char* text) { return QLatin1String(text); };
    QJsonObject object{{QStringLiteral("phase"), name(phaseNames.at(std::size_t(phase)))},
                       {QStringLiteral("text"), text()}};
    if (phase == Phase::ended)
        object[QStringLiteral("end")] = name(endNames.at(std::size_t(end)));
    if (fault) {
        object[QStringLiteral("fault")] = rawValue(fault->code);
        object[QStringLiteral("reason")] = fault->reason;
    }
    if (until)
        object[QStringLiteral("until")] =
            QDateTime::fromMSecsSinceEpoch(until->time_since_epoch().count(), QTimeZone::utc())
                .toString(Qt::ISODateWithMs);
    if (!error.isEmpty())
        object[QStringLiteral("error")] = error;
    return object;
}

bool RunState::needsSignIn() const {
    return fault && kindOf(fault->code) == FaultKind::session && phase == Phase::ended;
}

bool RunState::wasPutOff() const {
    if (phase != Phase::ended || end != End::world)
        return false;
    const FaultKind kind = kindOf(fault->code);
    return kind == FaultKind::moment || kind == FaultKind::day;
}

void RunStateFile::keep(const RunState& state) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        replaceFile(file_, QJsonDocument(state.json()).toJson());
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // Nobody else learns it.
    }
}

RunState RunStateFile::last() const noexcept {
    RunState state;
    try {
        const auto object = QJsonDocument::fromJson(readWholeFile(file_, largestFile)).object();
        state.phase = valueOf<RunState::Phase>(phaseNames, object[u"phase"]);
        state.end = valueOf<RunState::End>(endNames, object[u"end"]);
        state.error = object[u"error"].toString();
        if (const auto code = faultCodeFrom(object[u"fault"].toString()))
            state.fault = Fault{.code = *code, .reason = object[u"reason"].toString()};
        if (object.contains(u"until"))
            state.until = Date(std::chrono::milliseconds(
                QDateTime::fromString(object[u"until"].toString(), Qt::ISODateWithMs)
                    .toMSecsSinceEpoch()));
        if (state.end == RunState::End::world && !state.fault)
            return {};
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // Before the first run there is none.
    }
    return state;
}

void RunStateFile::signedIn() noexcept {
    if (last().needsSignIn())
        keep({});
}

} // namespace quorvane

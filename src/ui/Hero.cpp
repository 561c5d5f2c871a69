#include "ui/Hero.h"

#include "ui/TurkishTime.h"

#include <cmath>

namespace quorvane {

namespace {

using std::chrono::duration_cast;
using std::chrono::minutes;

/// How a state looks: the tone decides the ring's colours.
struct Look {
    QString tone;
    QString symbol;
    QString subtitle;
};

const QString readyText = QStringLiteral("Google Photos ile senkronizasyona hazır");
const QString checkText = QStringLiteral("Lütfen bağlantıyı ve ayarları kontrol edin");

/// Without what the album says for itself in the third line.
QString failureText(const RunState& run) {
    if (run.fault)
        return faultText(*run.fault);
    return run.error.isEmpty() ? checkText : run.error;
}

QString inMinutes(minutes time) {
    return time < minutes(1) ? QStringLiteral("1 dakikadan az")
                             : QStringLiteral("%1 dk").arg(time.count());
}

QString waitText(const HeroFacts& facts) {
    const RunState& run = facts.product.run;
    const bool isOffline = run.fault && run.fault->code == FaultCode::unreachable;
    QString text = spokenTime(facts.waitingSince, TimeCase::from, facts.now) +
                   (isOffline ? QStringLiteral(" beri bağlantı yok.")
                              : QStringLiteral(" beri Google yanıt veremiyor."));
    if (!run.until)
        return text;
    const auto left = duration_cast<minutes>(std::max(*run.until - facts.now, Date::duration()));
    return text + QStringLiteral("\nSonraki deneme %1, %2 sonra.")
                      .arg(spokenTime(*run.until, TimeCase::at, facts.now), inMinutes(left));
}

Look lookOf(ProductState state, const HeroFacts& facts) {
    const RunState& run = facts.product.run;
    const QString pause = QStringLiteral("x.pause");
    switch (state) {
    case ProductState::running:
        return {QStringLiteral("syncing"),
                {},
                QStringLiteral("Dosyalar Google Photos'a güvenle yükleniyor")};
    case ProductState::waiting:
        return {QStringLiteral("waiting"), pause, waitText(facts)};
    case ProductState::waitingQuota:
        return {QStringLiteral("waiting"), pause,
                run.until ? spokenTime(*run.until, TimeCase::at, facts.now) +
                                QStringLiteral(" kendiliğinden sürer.")
                          : QStringLiteral("Yarın kendiliğinden sürer.")};
    case ProductState::sessionLapsed:
        return {QStringLiteral("neutral"), pause,
                QStringLiteral("Sıra olduğu gibi saklanıyor; giriş yapınca eşitleme kaldığı "
                               "yerden sürer.")};
    case ProductState::failed:
        return {QStringLiteral("error"), QStringLiteral("exclamationmark.circle.fill"),
                failureText(run)};
    case ProductState::heldBack:
        return {QStringLiteral("warning"), QStringLiteral("exclamationmark.circle.fill"),
                QStringLiteral("Bazı öğeler yüklenemedi veya tarih bekliyor")};
    case ProductState::finished:
        return {QStringLiteral("done"), QStringLiteral("checkmark.circle.fill"),
                facts.onlyInCloud + facts.elsewhere == 0
                    ? QStringLiteral("Tüm anılarınız bulutta güncel")
                    : readyText};
    case ProductState::upToDate:
        return {QStringLiteral("good"), QStringLiteral("checkmark.shield.fill"), readyText};
    case ProductState::noLibrary:
        return {QStringLiteral("neutral"), QStringLiteral("photo.stack.fill"),
                QStringLiteral("Yedeklenecek kitaplığı seçin")};
    case ProductState::signedOut:
    case ProductState::libraryAway:
    case ProductState::stopped:
    case ProductState::neverBackedUp:
    case ProductState::itemsWaiting:
        break;
    }
    return {QStringLiteral("neutral"), QStringLiteral("icloud.and.arrow.up.fill"), readyText};
}

QString lastSyncText(const HeroFacts& facts) {
    return QStringLiteral("Son eşitleme: ") +
           (facts.lastSync ? spokenTime(*facts.lastSync, TimeCase::plain, facts.now)
                           : QStringLiteral("Henüz yok"));
}

/// The third line of what does not run.
QString noteOf(ProductState state, const HeroFacts& facts) {
    if (state == ProductState::stopped)
        return stoppedText;
    if (state == ProductState::failed && facts.product.run.end == RunState::End::albumFull)
        return albumFullText;
    if (state == ProductState::heldBack && facts.product.failed > 0)
        return untransferredText(facts.product.failed);
    return lastSyncText(facts);
}

/// What no run can send does not make a backup unfinished, but nobody is to take it for safe.
QString leftOutText(const HeroFacts& facts) {
    QStringList parts;
    if (facts.onlyInCloud > 0)
        parts += groupedCount(facts.onlyInCloud) +
                 QStringLiteral(" öğe yalnızca iCloud'da, yedeklenmedi: özgünleri bu Mac'e indikçe "
                                "sıraya alınır.");
    if (facts.elsewhere > 0)
        parts += groupedCount(facts.elsewhere) +
                 QStringLiteral(" öğenin arşiv dışındaki özgünü bulunamadı, yedeklenmedi.");
    return parts.join(u'\n');
}

void showProgress(HeroView& view, const HeroFacts& facts) {
    const bool isCounted = facts.total > 0;
    view.fraction = isCounted ? std::min(1.0, double(facts.completed) / facts.total) : 0;
    const int percent = static_cast<int>(std::floor(view.fraction * 100));
    view.percent = isCounted ? QStringLiteral("%%1").arg(percent) : QStringLiteral("…");
    view.note = isCounted ? groupedCount(facts.completed) + QStringLiteral(" / ") +
                                groupedCount(facts.total)
                          : QStringLiteral("Arşiv taranıyor…");
    view.canStop = true;
    view.ringName = QStringLiteral("Eşitleme ilerlemesi yüzde %1").arg(percent);
    view.aside = facts.speed;
    if (facts.timeLeft)
        view.timeLeft = QStringLiteral("Yaklaşık %1 kaldı")
                            .arg(inMinutes(duration_cast<minutes>(*facts.timeLeft)));
}

void showWait(HeroView& view, ProductState state, const HeroFacts& facts) {
    const int percent = static_cast<int>(std::floor(view.fraction * 100));
    const bool isCounted = facts.total > 0; // else nothing was sent before the wait began
    if (!isCounted && facts.product.pending > 0)
        view.note = pendingText(facts.product.pending);
    view.canTryNow = true;
    view.aside = QStringLiteral("duraklatıldı");
    view.timeLeft.clear();
    view.ringName = QStringLiteral("Eşitleme duraklatıldı, yüzde %1").arg(percent);
    view.safety =
        QStringLiteral("Yüklenen %1 öğe kayıtlı, kalan %2 öğe sırada duruyor. ")
            .arg(groupedCount(facts.completed),
                 groupedCount(isCounted ? facts.total - facts.completed : facts.product.pending)) +
        (state == ProductState::waitingQuota
             ? QStringLiteral("Hiçbiri yeniden yüklenmez; bilgisayar kapanıp "
                              "açılabilir.")
             : QStringLiteral("Bağlantı gelince eşitleme kaldığı yerden "
                              "kendiliğinden sürer."));
}

} // namespace

HeroView heroOf(const HeroFacts& facts) {
    const ProductState state = productState(facts.product);
    const Look look = lookOf(state, facts);
    HeroView view;
    view.tone = look.tone;
    view.symbol = look.symbol;
    view.title = titleOf(state, facts.product);
    view.subtitle = look.subtitle;
    view.ringName =
        state == ProductState::finished ? QStringLiteral("Eşitleme tamamlandı") : view.title;
    if (state == ProductState::running || state == ProductState::waiting ||
        state == ProductState::waitingQuota)
        showProgress(view, facts);
    else
        view.note = noteOf(state, facts);
    if (state == ProductState::waiting || state == ProductState::waitingQuota)
        showWait(view, state, facts);
    else
        view.leftOut = leftOutText(facts);
    if (state == ProductState::finished)
        view.fraction = 1;
    if (state == ProductState::noLibrary) {
        view.startTitle = QStringLiteral("Fotoğraf Kitaplığını Seç...");
        view.startSymbol = QStringLiteral("photo.stack.fill");
    } else if (!view.canStop && state != ProductState::sessionLapsed) {
        view.startTitle =
            facts.isRetryOffered ? QStringLiteral("Tekrar Dene") : QStringLiteral("Şimdi Eşitle");
        view.startSymbol = QStringLiteral("arrow.triangle.2.circlepath");
    }
    if (facts.product.held() > 0)
        view.quarantine = reviewText(facts.product.held());
    return view;
}

} // namespace quorvane

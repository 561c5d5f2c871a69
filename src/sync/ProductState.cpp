#include "sync/ProductState.h"

#include <QLocale>

namespace quorvane {

namespace {

/// None where the run says nothing of how things are now.
std::optional<ProductState> stateOfRun(const ProductFacts& facts) {
    const RunState& run = facts.run;
    if (run.phase == RunState::Phase::running)
        return ProductState::running;
    if (run.phase == RunState::Phase::waiting)
        return run.fault && kindOf(run.fault->code) == FaultKind::day ? ProductState::waitingQuota
                                                                      : ProductState::waiting;
    if (run.phase == RunState::Phase::none)
        return std::nullopt;
    switch (run.end) {
    case RunState::End::world:
    case RunState::End::machine:
    case RunState::End::albumFull:
        return ProductState::failed;
    case RunState::End::stopped:
        return facts.pending > 0 ? std::optional(ProductState::stopped) : std::nullopt;
    case RunState::End::complete:
        return facts.pending + facts.held() == 0 ? std::optional(ProductState::finished)
                                                 : std::nullopt;
    case RunState::End::itemsLeft:
        break;
    }
    return std::nullopt;
}

QString waitingTitle(const RunState& run) {
    return run.fault && run.fault->code == FaultCode::unreachable
               ? QStringLiteral("Ağ bekleniyor")
               : QStringLiteral("Google bekleniyor");
}

} // namespace

ProductState productState(const ProductFacts& facts) {
    using enum ProductState;
    if (!facts.isSignedIn)
        return signedOut;
    if (facts.library == ProductFacts::Library::away)
        return libraryAway;
    if (facts.run.needsSignIn())
        return sessionLapsed;
    if (facts.library == ProductFacts::Library::none)
        return noLibrary;
    if (const auto state = stateOfRun(facts))
        return *state;
    if (facts.verified == 0 && facts.held() == 0)
        return neverBackedUp;
    if (facts.pending > 0)
        return itemsWaiting;
    return facts.held() > 0 ? heldBack : upToDate;
}

QString rawValue(ProductState state) {
    switch (state) {
    case ProductState::signedOut:
        return QStringLiteral("signed-out");
    case ProductState::libraryAway:
        return QStringLiteral("library-away");
    case ProductState::sessionLapsed:
        return QStringLiteral("session-lapsed");
    case ProductState::noLibrary:
        return QStringLiteral("no-library");
    case ProductState::running:
        return QStringLiteral("running");
    case ProductState::waiting:
        return QStringLiteral("waiting");
    case ProductState::waitingQuota:
        return QStringLiteral("waiting-quota");
    case ProductState::failed:
        return QStringLiteral("failed");
    case ProductState::stopped:
        return QStringLiteral("stopped");
    case ProductState::neverBackedUp:
        return QStringLiteral("never-backed-up");
    case ProductState::itemsWaiting:
        return QStringLiteral("items-waiting");
    case ProductState::heldBack:
        return QStringLiteral("held-back");
    case ProductState::finished:
        return QStringLiteral("finished");
    case ProductState::upToDate:
        break;
    }
    return QStringLiteral("up-to-date");
}

QString titleOf(ProductState state, const ProductFacts& facts) {
    switch (state) {
    case ProductState::signedOut:
        return QStringLiteral("Giriş yapılmadı");
    case ProductState::libraryAway:
        return QStringLiteral("Arşiv bağlı değil");
    case ProductState::sessionLapsed:
        return facts.pending > 0
                   ? groupedCount(facts.pending) + QStringLiteral(" öğe giriş bekliyor")
                   : QStringLiteral("Giriş bekleniyor");
    case ProductState::noLibrary:
        return QStringLiteral("Arşiv seçilmedi");
    case ProductState::running:
        return QStringLiteral("Eşitleme Devam Ediyor");
    case ProductState::waiting:
        return waitingTitle(facts.run);
    case ProductState::waitingQuota:
        return QStringLiteral("Google'ın günlük sınırı doldu");
    case ProductState::failed:
        return QStringLiteral("Eşitleme Uyarısı");
    case ProductState::stopped:
    case ProductState::itemsWaiting:
        return pendingText(facts.pending);
    case ProductState::neverBackedUp:
        return facts.pending > 0 ? pendingText(facts.pending)
                                 : QStringLiteral("Henüz yedeklenen öğe yok");
    case ProductState::heldBack:
        return QStringLiteral("İnceleme Bekleyen Öğeler Var");
    case ProductState::finished:
        return QStringLiteral("Eşitleme Tamamlandı");
    case ProductState::upToDate:
        break;
    }
    return QStringLiteral("Arşiviniz Güncel ve Güvende");
}

QString pendingText(int pending) {
    return pending < 1 ? QStringLiteral("Arşiviniz güncel ve güvende")
                       : groupedCount(pending) + QStringLiteral(" yeni öğe eşitlenmeyi bekliyor");
}

QString untransferredText(int failed) {
    return groupedCount(failed) + QStringLiteral(" öğe aktarılamadı (tekrar denenecek)");
}

QString reviewText(int held) {
    return groupedCount(held) + QStringLiteral(" öğe inceleme bekliyor");
}

QString groupedCount(qint64 count) {
    return QLocale(QLocale::Turkish, QLocale::Turkey).toString(count);
}

} // namespace quorvane

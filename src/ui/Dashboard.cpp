#include "ui/Dashboard.h"

#include <QLocale>

#include <cmath>

namespace quorvane {

namespace {

const QString upToDateMessage = QStringLiteral("Arşiviniz güncel ve güvende");
const QString laterTitle = QStringLiteral("Vazgeç / Daha Sonra");

QString grouped(qint64 number) {
    return QLocale().toString(number);
}

/// The number that `nextPartTitle` put at the end: "Aile - Parça 2" is part 2.
QString partOf(const QString& nextPartTitle) {
    return QStringLiteral("Parça ") + nextPartTitle.section(QLatin1Char(' '), -1);
}

} // namespace

Dashboard::Dashboard(MenuBarViewModel& model)
    : model_(model), librarySettings_(model), review_(model) {
    using Model = MenuBarViewModel;
    using Self = Dashboard;
    relay(&Model::accountChanged,
          {&Self::accountChanged, &Self::routeChanged, &Self::heroChanged, &Self::menusChanged});
    relay(&Model::syncChanged, {&Self::heroChanged, &Self::inspectorChanged, &Self::menusChanged});
    relay(&Model::statusMessageChanged, {&Self::heroChanged});
    relay(&Model::progressChanged, {&Self::heroChanged});
    relay(&Model::errorMessageChanged, {&Self::errorMessageChanged});
    relay(&Model::countsChanged, {&Self::heroChanged, &Self::inspectorChanged});
    relay(&Model::settingsChanged, {&Self::settingsChanged, &Self::menusChanged});
    relay(&Model::sheetsChanged, {&Self::sheetsChanged});
    relay(&Model::routeChanged,
          {&Self::routeChanged, &Self::inspectorChanged, &Self::menusChanged});
    relay(&Model::localAlbumsChanged, {&Self::routeChanged, &Self::menusChanged});
    relay(&Model::googleAlbumsChanged, {&Self::routeChanged, &Self::menusChanged});
    relay(&Model::inspectorToggled, {&Self::inspectorToggled});
    relay(&Model::transfersChanged, {&Self::inspectorChanged, &Self::heroChanged});
    connect(&librarySettings_, &LibrarySettings::changed, this, &Self::menusChanged);
    connect(&model_, &Model::transfersChanged, this, &Self::updateTransfers);
}

void Dashboard::relay(void (MenuBarViewModel::*cause)(), std::initializer_list<Signal> changed) {
    connect(&model_, cause, this, [this, signalled = std::vector<Signal>(changed)] {
        for (const Signal signal : signalled)
            if (isLive_)
                Q_EMIT(this->*signal)();
    });
}

void Dashboard::setLive(bool live) {
    if (live == isLive_)
        return;
    isLive_ = live;
    Q_EMIT liveChanged();
    if (!live)
        return;
    updateTransfers();
    for (const Signal signal :
         {&Dashboard::accountChanged, &Dashboard::routeChanged, &Dashboard::heroChanged,
          &Dashboard::errorMessageChanged, &Dashboard::settingsChanged, &Dashboard::sheetsChanged,
          &Dashboard::inspectorToggled, &Dashboard::inspectorChanged, &Dashboard::menusChanged})
        Q_EMIT(this->*signal)();
}

void Dashboard::updateTransfers() {
    if (isLive_)
        transfers_.setItems(model_.activeTransfers());
}

AccountView Dashboard::account() const {
    return {model_.isSignedIn(), model_.isSigningIn(), model_.signInAddress(), model_.userEmail()};
}

RouteView Dashboard::route() const {
    RouteView view;
    const bool isWholeLibrary = model_.selectedSourceAlbumID().isEmpty();
    view.source = (isWholeLibrary ? QStringLiteral("Fotoğraf & Video Arşivi")
                                  : model_.selectedSourceAlbumTitle()) +
                  QStringLiteral(" (%1)").arg(grouped(model_.selectedSourceCount()));
    if (!model_.hasLibrary())
        view.source = QStringLiteral("Fotoğraf Kitaplığını Seç...");
    const bool isStream = model_.selectedTargetAlbumID().isEmpty();
    view.target = isStream ? QStringLiteral("Google Fotoğraflar (Ana Akış / Kitaplık)")
                           : model_.selectedTargetAlbumTitle();
    view.targetSymbol = isStream ? QStringLiteral("icloud.and.arrow.up.fill")
                                 : QStringLiteral("photo.on.rectangle.angled");
    view.lacksAlbumScopes = model_.isSignedIn() && model_.hasInsufficientAlbumScopes();
    view.isLoadingAlbums = model_.isLoadingGoogleAlbums();
    if (!model_.isSignedIn())
        return view;
    view.targetCount = model_.selectedTargetAlbumCountString();
    view.isTargetFull = model_.isSelectedTargetAlbumFull();
    if (view.isTargetFull) {
        view.limitTitle = QStringLiteral("Google Photos Albüm Sınırı Doldu (20.000 / 20.000)");
        view.limitText = QStringLiteral(
            "Google Photos bir albümde en fazla 20.000 medyaya izin verir. Bu albüme yeni fotoğraf "
            "aktarılamaz. Lütfen başka bir albüm seçin veya yeni bir albüm oluşturun.");
    } else if (model_.isSelectedTargetAlbumNearLimit()) {
        view.limitTitle = QStringLiteral("Albüm Sınırına Yaklaşıldı (%1)").arg(view.targetCount);
        view.limitText =
            QStringLiteral("Google Photos albüm sınırı 20.000 medyadır. Kalan kapasite dolmadan "
                           "önce yeni bir albüm oluşturmanız önerilir.");
    }
    return view;
}

HeroView Dashboard::hero() const {
    HeroView view;
    view.startTitle = QStringLiteral("Şimdi Eşitle");
    view.note = model_.statusMessage() == upToDateMessage || model_.statusMessage().isEmpty()
                    ? QStringLiteral("Son eşitleme: ") + model_.lastSyncTimeString()
                    : model_.statusMessage();
    const int held = model_.failedCount() + model_.dateUnresolvedCount();
    const bool isAllSafe = held + model_.pendingCount() == 0;
    if (model_.isSyncing())
        showProgress(view);
    else if (model_.syncState() == SyncVisualState::error)
        showWarning(view, QStringLiteral("Eşitleme Uyarısı"));
    else if (model_.isLastRunComplete() && isAllSafe)
        showDone(view);
    else if (held > 0)
        showWarning(view, QStringLiteral("İnceleme Bekleyen Öğeler Var"));
    else if (model_.pendingCount() > 0)
        showPending(view);
    else
        showIdle(view);
    if (held > 0)
        view.quarantine = grouped(held) + QStringLiteral(" öğe inceleme bekliyor");
    return view;
}

void Dashboard::showProgress(HeroView& view) const {
    const RunState& run = model_.runState();
    const bool isWaiting = run.phase == RunState::Phase::waiting;
    const bool isCounted = model_.syncTotalCount() > 0;
    const int percent = static_cast<int>(std::floor(model_.syncProgressFraction() * 100));
    view.kind = QStringLiteral("syncing");
    view.title =
        isWaiting ? QStringLiteral("Eşitleme Bekliyor") : QStringLiteral("Eşitleme Devam Ediyor");
    view.subtitle =
        isWaiting ? run.text() : QStringLiteral("Dosyalar Google Photos'a güvenle yükleniyor");
    view.note = isCounted ? grouped(model_.syncCompletedCount()) + QStringLiteral(" / ") +
                                grouped(model_.syncTotalCount())
                          : QStringLiteral("Arşiv taranıyor…");
    view.speed = model_.currentUploadSpeedString();
    view.fraction = model_.syncProgressFraction();
    view.percent = isCounted ? QStringLiteral("%%1").arg(percent) : QStringLiteral("…");
    view.ringName =
        isWaiting ? run.text() : QStringLiteral("Eşitleme ilerlemesi yüzde %1").arg(percent);
}

void Dashboard::showWarning(HeroView& view, const QString& title) const {
    const RunState& run = model_.runState();
    const bool saysWhy = run.phase == RunState::Phase::ended && run.fault;
    view.kind = QStringLiteral("warning");
    view.title = title;
    view.subtitle = saysWhy ? faultText(*run.fault)
                    : model_.syncState() == SyncVisualState::error
                        ? QStringLiteral("Lütfen bağlantıyı ve ayarları kontrol edin")
                        : QStringLiteral("Bazı öğeler yüklenemedi veya tarih bekliyor");
    view.symbol = QStringLiteral("exclamationmark.circle.fill");
    view.ringName = view.title;
    if (model_.isRetryOffered())
        view.startTitle = QStringLiteral("Tekrar Dene");
}

void Dashboard::showDone(HeroView& view) const {
    view.kind = QStringLiteral("done");
    view.title = QStringLiteral("Eşitleme Tamamlandı");
    view.subtitle = QStringLiteral("Tüm anılarınız bulutta güncel");
    view.symbol = QStringLiteral("checkmark.circle.fill");
    view.fraction = 1;
    view.ringName = QStringLiteral("Eşitleme tamamlandı");
}

void Dashboard::showPending(HeroView& view) const {
    view.kind = QStringLiteral("pending");
    view.title = QStringLiteral("Eşitlenmeyi Bekleyenler Var");
    view.subtitle = QStringLiteral("Google Photos ile senkronizasyona hazır");
    view.symbol = QStringLiteral("arrow.triangle.2.circlepath");
    view.ringName = view.title;
}

void Dashboard::showIdle(HeroView& view) const {
    view.kind = QStringLiteral("idle");
    view.title = QStringLiteral("Arşiviniz Güncel ve Güvende");
    view.subtitle = QStringLiteral("Google Photos ile senkronizasyona hazır");
    view.symbol = QStringLiteral("checkmark.shield.fill");
    view.ringName = view.title;
}

InspectorView Dashboard::inspector() const {
    return {model_.isSyncing(),
            model_.currentUploadSpeedString(),
            model_.peakUploadSpeedString(),
            QStringLiteral("%1 ms").arg(model_.latencyMs()),
            model_.selectedTargetAlbumTitle(),
            grouped(model_.pendingCount()),
            model_.isSyncing() ? QStringLiteral("Aktif") : QStringLiteral("Boşta")};
}

AlertView Dashboard::alert() const {
    if (model_.showPreSync20kAlert())
        return {true,
                QStringLiteral("Albüm Sınırı (20.000) Aşılacak"),
                QStringLiteral("Seçili albümünüz (") + model_.preSync20kTargetAlbumName() +
                    QStringLiteral(") ") + grouped(model_.preSync20kCurrentCount()) +
                    QStringLiteral(" öğe içeriyor. Eklenecek ") +
                    grouped(model_.preSync20kPendingCount()) +
                    QStringLiteral(" öğe ile 20.000 kapasitesi aşılacaktır."),
                QStringLiteral("warning"),
                {QStringLiteral("Yeni Albüm (") + model_.preSync20kNextPartName() +
                     QStringLiteral(") Oluştur ve Devam Et"),
                 QStringLiteral("20.000'de Güvenle Durdur"), laterTitle}};
    if (model_.showAlbumLimitAlert())
        return {true,
                QStringLiteral("Google Photos Albüm Sınırı (20.000) Doldu!"),
                model_.albumLimitAlertMessage(),
                QStringLiteral("danger"),
                {partOf(model_.nextPartTitle(model_.selectedTargetAlbumTitle())) +
                     QStringLiteral(" Oluştur ve Devam Et"),
                 laterTitle}};
    return {};
}

} // namespace quorvane

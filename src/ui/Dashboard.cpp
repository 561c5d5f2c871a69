#include "ui/Dashboard.h"

#include "foundation/File.h"
#include "ui/Hero.h"
#include "ui/TurkishTime.h"

namespace quorvane {

namespace {

const QString laterTitle = QStringLiteral("Vazgeç / Daha Sonra");

/// The number that `nextPartTitle` put at the end: "Aile - Parça 2" is part 2.
QString partOf(const QString& nextPartTitle) {
    return QStringLiteral("Parça ") + nextPartTitle.section(QLatin1Char(' '), -1);
}

AlertView trashAlert(const DeletionQuestion& question) {
    AlertView alert{true,
                    trashTitle(question),
                    trashText(question),
                    QStringLiteral("warning"),
                    {QStringLiteral("Sakla"), QStringLiteral("Çöp'e Taşı")},
                    QStringLiteral("trash"),
                    0};
    int sum = 0;
    for (const auto& [reason, count] : question.kept) {
        const KeptText text = textOf(reason);
        alert.rows.append(
            QVariant::fromValue(AlertRow{text.title, text.note, groupedCount(count)}));
        sum += count;
    }
    alert.rowsTitle = QStringLiteral("Dışarıda Bırakılanlar");
    alert.rowsSum = groupedCount(sum);
    return alert;
}

} // namespace

Dashboard::Dashboard(MenuBarViewModel& model, AutoSync& automatic)
    : model_(model),
      automatic_(automatic),
      librarySettings_(model),
      review_(model),
      lives_(model),
      runReport_(model) {
    connect(&automatic_, &AutoSync::changed, this, &Dashboard::settingsChanged);
    using Model = MenuBarViewModel;
    using Self = Dashboard;
    relay(&Model::accountChanged,
          {&Self::accountChanged, &Self::routeChanged, &Self::menusChanged});
    relay(&Model::stateChanged, {&Self::heroChanged});
    relay(&Model::syncChanged, {&Self::inspectorChanged, &Self::menusChanged});
    relay(&Model::progressChanged, {&Self::heroChanged});
    relay(&Model::errorMessageChanged, {&Self::errorMessageChanged});
    relay(&Model::countsChanged, {&Self::inspectorChanged, &Self::libraryChanged});
    relay(&Model::settingsChanged, {&Self::settingsChanged, &Self::menusChanged});
    relay(&Model::sheetsChanged, {&Self::sheetsChanged});
    relay(&Model::routeChanged, {&Self::routeChanged, &Self::inspectorChanged, &Self::menusChanged,
                                 &Self::libraryChanged});
    relay(&Model::localAlbumsChanged,
          {&Self::routeChanged, &Self::menusChanged, &Self::libraryChanged});
    relay(&Model::googleAlbumsChanged, {&Self::routeChanged, &Self::menusChanged});
    relay(&Model::inspectorToggled, {&Self::inspectorToggled});
    relay(&Model::transfersChanged, {&Self::inspectorChanged, &Self::heroChanged});
    minutes_.setInterval(std::chrono::minutes(1));
    connect(&minutes_, &QTimer::timeout, this, [this] {
        if (model_.isSyncing() || model_.awayLibrary())
            Q_EMIT heroChanged(); // it tells how long something takes
    });
    connect(&model_.trash(), &TrashQuestion::changed, this, [this] {
        if (question_ == Question::trash && !model_.trash().open())
            question_ = Question::none;
        if (isLive_)
            Q_EMIT sheetsChanged();
    });
    connect(&librarySettings_, &LibrarySettings::changed, this, &Self::menusChanged);
    connect(&automatic_, &AutoSync::changed, this, &Self::menusChanged);
    connect(this, &Self::menusChanged, this, &Self::updateMenus);
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
    minutes_.stop();
    if (!live)
        return;
    model_.lookForLibrary();
    minutes_.start();
    updateTransfers();
    for (const Signal signal :
         {&Dashboard::accountChanged, &Dashboard::routeChanged, &Dashboard::heroChanged,
          &Dashboard::libraryChanged, &Dashboard::errorMessageChanged, &Dashboard::settingsChanged,
          &Dashboard::sheetsChanged, &Dashboard::inspectorToggled, &Dashboard::inspectorChanged,
          &Dashboard::menusChanged})
        Q_EMIT(this->*signal)();
}

void Dashboard::updateTransfers() {
    if (isLive_)
        transfers_.setItems(model_.activeTransfers());
}

AccountView Dashboard::account() const {
    const AccountModel& account = model_.account();
    return {model_.isSignedIn(), account.account().isLapsed, account.isSigningIn(),
            account.signInAddress(), model_.userEmail()};
}

RouteView Dashboard::route() const {
    RouteView view;
    const bool isWholeLibrary = model_.selectedSourceAlbumID().isEmpty();
    view.source = (isWholeLibrary ? QStringLiteral("Fotoğraf & Video Arşivi")
                                  : model_.selectedSourceAlbumTitle()) +
                  QStringLiteral(" (%1)").arg(groupedCount(model_.route().sourceCount()));
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
    view.targetCount = model_.route().targetCountText();
    view.isTargetFull = model_.route().isTargetFull();
    if (view.isTargetFull) {
        view.limitTitle = QStringLiteral("Google Photos Albüm Sınırı Doldu (20.000 / 20.000)");
        view.limitText = QStringLiteral(
            "Google Photos bir albümde en fazla 20.000 medyaya izin verir. Bu albüme yeni fotoğraf "
            "aktarılamaz. Lütfen başka bir albüm seçin veya yeni bir albüm oluşturun.");
    } else if (model_.route().isTargetNearLimit()) {
        view.limitTitle = QStringLiteral("Albüm Sınırına Yaklaşıldı (%1)").arg(view.targetCount);
        view.limitText =
            QStringLiteral("Google Photos albüm sınırı 20.000 medyadır. Kalan kapasite dolmadan "
                           "önce yeni bir albüm oluşturmanız önerilir.");
    }
    return view;
}

HeroView Dashboard::hero() const {
    return heroOf({.product = model_.facts(),
                   .completed = model_.syncCompletedCount(),
                   .total = model_.syncTotalCount(),
                   .speed = model_.currentUploadSpeedString(),
                   .timeLeft = model_.run().timeLeft(),
                   .lastSync = model_.lastSyncTime(),
                   .waitingSince = model_.run().waitingSince(),
                   .now = model_.services().clock.now(),
                   .isRetryOffered = model_.isRetryOffered(),
                   .onlyInCloud = model_.records().onlyInCloud,
                   .elsewhere = model_.records().elsewhere});
}

LibraryView Dashboard::library() const {
    const auto view = [&](const std::filesystem::path& root, bool isBundle, int count) {
        LibraryView library;
        library.name = pathText(root.stem());
        library.path = pathText(root);
        library.kind =
            isBundle ? QStringLiteral("Apple Photos kitaplığı") : QStringLiteral("Resim klasörü");
        if (count > 0)
            library.kind += QStringLiteral(" · %1 öğe").arg(groupedCount(count));
        return library;
    };
    const auto& away = model_.awayLibrary();
    if (!away)
        return model_.library() ? view(model_.library()->root, model_.library()->isBundle,
                                       model_.totalPhotoCount())
                                : LibraryView();
    const StoreCounts& counts = away->counts;
    const int known = counts.verified + counts.pending + counts.failed + counts.undated;
    LibraryView library =
        view(away->root, away->isBundle, std::max(model_.totalPhotoCount(), known));
    library.isAway = true;
    library.since = spokenTime(away->since, TimeCase::from, model_.services().clock.now()) +
                    QStringLiteral(" beri.");
    if (model_.pendingCount() > 0)
        library.since +=
            QStringLiteral(" %1 öğe sırada bekliyor.").arg(groupedCount(model_.pendingCount()));
    return library;
}

InspectorView Dashboard::inspector() const {
    return {model_.isSyncing(),
            model_.currentUploadSpeedString(),
            model_.peakUploadSpeedString(),
            QStringLiteral("%1 ms").arg(model_.latencyMs()),
            model_.selectedTargetAlbumTitle(),
            groupedCount(model_.pendingCount()),
            model_.isSyncing() ? QStringLiteral("Aktif") : QStringLiteral("Boşta")};
}

AlertView Dashboard::alert() const {
    if (model_.showPreSync20kAlert())
        return {true,
                QStringLiteral("Albüm Sınırı (20.000) Aşılacak"),
                QStringLiteral("Seçili albümünüz (") + model_.preSync20kTargetAlbumName() +
                    QStringLiteral(") ") + groupedCount(model_.preSync20kCurrentCount()) +
                    QStringLiteral(" öğe içeriyor. Eklenecek ") +
                    groupedCount(model_.preSync20kPendingCount()) +
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
                {partOf(GoogleAlbumManager::nextPartTitle(model_.selectedTargetAlbumTitle())) +
                     QStringLiteral(" Oluştur ve Devam Et"),
                 laterTitle}};
    return ownQuestion();
}

/// The safe answer is the first, and what Escape presses.
AlertView Dashboard::ownQuestion() const {
    const QString runs = QStringLiteral("Eşitleme Sürüyor");
    const QString warning = QStringLiteral("warning");
    switch (question_) {
    case Question::trash:
        return trashAlert(*model_.trash().open());
    case Question::quit:
        return {true,
                runs,
                QStringLiteral("Çıkarsanız eşitleme durur; bir sonraki açılışta kaldığı yerden "
                               "sürdürebilirsiniz."),
                warning,
                {QStringLiteral("Sürdür"), QStringLiteral("Durdur ve Çık")},
                QStringLiteral("power"),
                0};
    case Question::signOut:
        return {true,
                runs,
                QStringLiteral("Oturumu kapatırsanız eşitleme durur; sıradakiler kayıtlı kalır."),
                warning,
                {QStringLiteral("Sürdür"), QStringLiteral("Durdur ve Oturumu Kapat")},
                QStringLiteral("person.crop.circle.fill"),
                0};
    case Question::none:
        break;
    }
    return {};
}

QString Dashboard::trashLink() const {
    const auto& question = model_.trash().open();
    return question ? groupedCount(question->count) +
                          QStringLiteral(" öğe Çöp'e taşınmak için yanıtınızı bekliyor")
                    : QString();
}

QString Dashboard::deletionObstacle() const {
    return model_.mayDelete()
               ? QString()
               : QStringLiteral("Bir Fotoğraflar kitaplığı buradan yalnızca okunur; "
                                "özgünleri Fotoğraflar uygulamasında silebilirsiniz.");
}

void Dashboard::ask(Question question) {
    question_ = question;
    Q_EMIT sheetsChanged();
}

void Dashboard::startSync() {
    if (model_.state() == ProductState::noLibrary)
        chooseLibrary();
    else
        model_.triggerSync();
}

void Dashboard::quit() {
    if (model_.isSyncing())
        ask(Question::quit);
    else
        Q_EMIT quitRequested();
}

void Dashboard::signOut() {
    if (model_.isSyncing())
        ask(Question::signOut);
    else
        model_.signOut();
}

void Dashboard::open(Notice::About about) {
    if (about == Notice::About::review && model_.failedCount() + model_.dateUnresolvedCount() > 0)
        showReview();
    else if (about == Notice::About::trash)
        showTrashQuestion();
}

void Dashboard::showTrashQuestion() {
    if (model_.trash().open())
        ask(Question::trash);
}

} // namespace quorvane

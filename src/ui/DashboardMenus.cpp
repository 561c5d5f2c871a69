#include "ui/Dashboard.h"

#include <QCollator>
#include <QLocale>

#include <algorithm>

namespace quorvane {

namespace {

QString titleOf(const LocalAlbumItem& album) {
    return album.title;
}

QString titleOf(const GoogleAlbum& album) {
    return album.title.value_or(QString());
}

/// As a Turkish reader looks for them: ç after c, İ after ı.
template <typename Album>
std::vector<Album> sortedByTitle(std::vector<Album> albums) {
    QCollator collator(QLocale(QLocale::Turkish, QLocale::Turkey));
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::ranges::stable_sort(albums, [&](const Album& a, const Album& b) {
        return collator.compare(titleOf(a), titleOf(b)) < 0;
    });
    return albums;
}

MenuRow line() {
    return {.kind = MenuRow::Kind::line};
}

MenuRow header(const QString& title) {
    return {.kind = MenuRow::Kind::header, .title = title};
}

} // namespace

void Dashboard::updateMenus() {
    if (!isLive_)
        return;
    sourceMenu_.setRows(sourceRows());
    targetMenu_.setRows(targetRows());
    themeMenu_.setRows(themeRows());
    uploadLimitMenu_.setRows(uploadLimitRows());
}

std::vector<MenuRow> Dashboard::sourceRows() {
    const QString symbol = QStringLiteral("photo.stack.fill");
    if (!model_.hasLibrary())
        return {{.title = QStringLiteral("Fotoğraf Kitaplığını Seç..."),
                 .symbol = symbol,
                 .choose = [this] { chooseLibrary(); }}};
    const auto entry = [&](const QString& title, int count, const QString& id) {
        return MenuRow{.title = title + QStringLiteral(" (%1)").arg(groupedCount(count)),
                       .symbol = symbol,
                       .id = id,
                       .isChecked = id == model_.selectedSourceAlbumID(),
                       .isEnabled = !model_.isSyncing(),
                       .choose = [this, id] { model_.selectSourceAlbum(id); }};
    };
    std::vector<MenuRow> rows{
        entry(QStringLiteral("Fotoğraf & Video Arşivi"), model_.totalPhotoCount(), {})};
    const std::vector<LocalAlbumItem> albums = sortedByTitle(model_.localAlbums());
    for (const bool isSmart : {false, true}) {
        if (std::ranges::find(albums, isSmart, &LocalAlbumItem::isSmart) == albums.end())
            continue;
        rows.push_back(line());
        rows.push_back(header(isSmart ? QStringLiteral("Akıllı Albümler")
                                      : QStringLiteral("Özel Albümlerim")));
        for (const LocalAlbumItem& album : albums)
            if (album.isSmart == isSmart)
                rows.push_back(entry(album.title, album.count, album.id));
    }
    return rows;
}

std::vector<MenuRow> Dashboard::targetRows() {
    const bool canChange = !model_.isSyncing();
    const bool isMirrored = librarySettings_.mirrorsAlbums();
    const bool canTarget = canChange && !isMirrored;
    const auto entry = [&](const QString& title, const QString& symbol, const QString& id,
                           bool isEnabled) {
        return MenuRow{.title = title,
                       .symbol = symbol,
                       .id = id,
                       .isChecked = id == model_.selectedTargetAlbumID(),
                       .isEnabled = isEnabled,
                       .choose = [this, id] { model_.selectTargetAlbum(id); }};
    };
    std::vector<MenuRow> rows{entry(QStringLiteral("Google Fotoğraflar (Ana Akış / Kitaplık)"),
                                    QStringLiteral("icloud.and.arrow.up.fill"), {}, canChange),
                              line(),
                              header(QStringLiteral("Google Albümlerim (%1)")
                                         .arg(groupedCount(std::ssize(model_.googleAlbums()))))};
    if (isMirrored)
        rows.push_back(header(QStringLiteral("Albümler yansıtılırken hedef ana akıştır")));
    for (const GoogleAlbum& album : sortedByTitle(model_.googleAlbums()))
        rows.push_back(entry(album.menuDisplayTitle(), QStringLiteral("photo.on.rectangle.angled"),
                             album.id, canTarget));
    rows.push_back(line());
    rows.push_back({.title = QStringLiteral("Özel Albüm Yarat..."),
                    .symbol = QStringLiteral("folder.badge.plus"),
                    .isEnabled = canTarget,
                    .choose = [this] { Q_EMIT createAlbumRequested(); }});
    rows.push_back({.title = QStringLiteral("Google Albümlerini Yenile"),
                    .symbol = QStringLiteral("arrow.clockwise.circle.fill"),
                    .isEnabled = !model_.isLoadingGoogleAlbums(),
                    .choose = [this] { loadAlbums(); }});
    return rows;
}

std::vector<MenuRow> Dashboard::themeRows() {
    const auto row = [&](AppTheme theme, const QString& title, const QString& symbol) {
        return MenuRow{.title = title,
                       .symbol = symbol,
                       .isChecked = theme == model_.appTheme(),
                       .choose = [this, theme] { model_.setAppTheme(theme); }};
    };
    return {
        row(AppTheme::system, QStringLiteral("Sistem"), QStringLiteral("circle.lefthalf.filled")),
        row(AppTheme::light, QStringLiteral("Açık"), QStringLiteral("sun.max.fill")),
        row(AppTheme::dark, QStringLiteral("Koyu"), QStringLiteral("moon.fill"))};
}

std::vector<MenuRow> Dashboard::uploadLimitRows() {
    std::vector<MenuRow> rows;
    for (const int megabytes : {0, 1, 2, 5, 10}) {
        const std::int64_t limit = megabytes * std::int64_t(1'000'000);
        rows.push_back({.title = AutoSync::limitText(limit),
                        .isChecked = limit == automatic_.uploadLimit(),
                        .choose = [this, limit] { automatic_.setUploadLimit(limit); }});
    }
    return rows;
}

void Dashboard::help(int checkedRow) {
    const CheckedThing::Remedy remedy = sessionCheck()->remedyOf(checkedRow);
    sessionCheck()->hide();
    if (remedy == CheckedThing::Remedy::signIn)
        renewAccess();
    else if (remedy == CheckedThing::Remedy::chooseLibrary)
        chooseLibrary();
}

void Dashboard::answerAlert(int button) {
    if (model_.showPreSync20kAlert()) {
        if (button == 0)
            model_.confirmPreSyncAutoRollover();
        else if (button == 1)
            model_.confirmPreSyncStopAtLimit();
        else
            model_.dismissPreSync20kAlert();
    } else if (model_.showAlbumLimitAlert()) {
        if (button == 0)
            model_.createNextPartAlbumAndResume();
        else
            model_.dismissAlbumLimitAlert();
    } else {
        answerOwnQuestion(button == 1);
    }
}

void Dashboard::answerOwnQuestion(bool agrees) {
    const Question question = std::exchange(question_, Question::none);
    if (question == Question::trash)
        model_.answerTrash(agrees);
    else if (question == Question::quit && agrees)
        Q_EMIT quitRequested();
    else if (question == Question::signOut && agrees)
        model_.signOut();
    Q_EMIT sheetsChanged();
}

void Dashboard::clearLog() {
    model_.recentLogs()->clear();
}

void Dashboard::setHint(const QString& hint) {
    if (hint == hint_)
        return;
    hint_ = hint;
    Q_EMIT hintChanged();
}

} // namespace quorvane

#include "ui/Dashboard.h"

#include <QCollator>
#include <QLocale>

#include <algorithm>

namespace quorvane {

namespace {

/// A row of a menu, begun as a plain entry.
QVariantMap entry(const QString& title, const QString& symbol, const QString& command,
                  const QString& value = {}, bool isChecked = false, bool isEnabled = true) {
    return {{QStringLiteral("kind"), QStringLiteral("entry")},
            {QStringLiteral("title"), title},
            {QStringLiteral("symbol"), symbol},
            {QStringLiteral("command"), command},
            {QStringLiteral("value"), value},
            {QStringLiteral("isChecked"), isChecked},
            {QStringLiteral("isEnabled"), isEnabled}};
}

QVariantMap special(const QString& kind, const QString& title = {}) {
    QVariantMap row = entry(title, {}, {}, {}, false, false);
    row[QStringLiteral("kind")] = kind;
    return row;
}

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

const QString line = QStringLiteral("line");
const QString header = QStringLiteral("header");
const QString chooseLibraryTitle = QStringLiteral("Fotoğraf Kitaplığını Seç...");

} // namespace

QVariantList Dashboard::sourceMenu() const {
    if (!model_.hasLibrary())
        return {entry(chooseLibraryTitle, QStringLiteral("photo.stack.fill"),
                      QStringLiteral("chooseLibrary"))};
    const QString symbol = QStringLiteral("photo.stack.fill");
    const QString source = QStringLiteral("source");
    const QString& selected = model_.selectedSourceAlbumID();
    const bool canChange = !model_.isSyncing();
    const auto counted = [](const QString& title, int count) {
        return title + QStringLiteral(" (%1)").arg(QLocale().toString(count));
    };
    QVariantList rows{
        entry(counted(QStringLiteral("Fotoğraf & Video Arşivi"), model_.totalPhotoCount()), symbol,
              source, {}, selected.isEmpty(), canChange)};
    for (const bool isSmart : {false, true}) {
        QVariantList group;
        for (const LocalAlbumItem& album : sortedByTitle(model_.localAlbums()))
            if (album.isSmart == isSmart)
                group.append(entry(counted(album.title, album.count), symbol, source, album.id,
                                   album.id == selected, canChange));
        if (group.isEmpty())
            continue;
        rows << special(line)
             << special(header, isSmart ? QStringLiteral("Akıllı Albümler")
                                        : QStringLiteral("Özel Albümlerim"))
             << group;
    }
    return rows;
}

QVariantList Dashboard::targetMenu() const {
    const QString target = QStringLiteral("target");
    const QString& selected = model_.selectedTargetAlbumID();
    const bool canChange = !model_.isSyncing();
    const bool isMirrored = librarySettings_.mirrorsAlbums();
    const bool canTarget = canChange && !isMirrored;
    QVariantList rows{entry(QStringLiteral("Google Fotoğraflar (Ana Akış / Kitaplık)"),
                            QStringLiteral("icloud.and.arrow.up.fill"), target, {},
                            selected.isEmpty(), canChange),
                      special(line)};
    rows << special(header, QStringLiteral("Google Albümlerim (%1)")
                                .arg(QLocale().toString(qint64(model_.googleAlbums().size()))));
    if (isMirrored)
        rows << special(header, QStringLiteral("Albümler yansıtılırken hedef ana akıştır"));
    for (const GoogleAlbum& album : sortedByTitle(model_.googleAlbums()))
        rows << entry(album.menuDisplayTitle(), QStringLiteral("photo.on.rectangle.angled"), target,
                      album.id, album.id == selected, canTarget);
    rows << special(line)
         << entry(QStringLiteral("Özel Albüm Yarat..."), QStringLiteral("folder.badge.plus"),
                  QStringLiteral("createAlbum"), {}, false, canTarget)
         << entry(QStringLiteral("Google Albümlerini Yenile"),
                  QStringLiteral("arrow.clockwise.circle.fill"), QStringLiteral("loadAlbums"), {},
                  false, !model_.isLoadingGoogleAlbums());
    return rows;
}

QVariantList Dashboard::themeMenu() const {
    QVariantList rows;
    const auto add = [&](AppTheme theme, const QString& title, const QString& symbol) {
        rows << entry(title, symbol, QStringLiteral("theme"), rawValue(theme),
                      theme == model_.appTheme());
    };
    add(AppTheme::system, QStringLiteral("Sistem"), QStringLiteral("circle.lefthalf.filled"));
    add(AppTheme::light, QStringLiteral("Açık"), QStringLiteral("sun.max.fill"));
    add(AppTheme::dark, QStringLiteral("Koyu"), QStringLiteral("moon.fill"));
    return rows;
}

QVariantList Dashboard::uploadLimitMenu() const {
    QVariantList rows;
    for (const int megabytes : {0, 1, 2, 5, 10}) {
        const std::int64_t limit = megabytes * std::int64_t(1'000'000);
        rows << entry(AutoSync::limitText(limit), {}, QStringLiteral("uploadLimit"),
                      QString::number(limit), limit == automatic_.uploadLimit());
    }
    return rows;
}

void Dashboard::choose(const QString& command, const QString& value) {
    const std::map<QString, std::function<void()>> commands{
        {QStringLiteral("source"), [&] { model_.selectSourceAlbum(value); }},
        {QStringLiteral("target"), [&] { model_.selectTargetAlbum(value); }},
        {QStringLiteral("createAlbum"), [&] { Q_EMIT createAlbumRequested(); }},
        {QStringLiteral("loadAlbums"), [&] { model_.loadGoogleAlbums(); }},
        {QStringLiteral("theme"), [&] { model_.setAppTheme(appThemeFrom(value)); }},
        {QStringLiteral("uploadLimit"), [&] { automatic_.setUploadLimit(value.toLongLong()); }},
        {QStringLiteral("chooseLibrary"), [&] { Q_EMIT chooseLibraryRequested(); }},
        {QStringLiteral("checkSession"), [&] { sessionCheck()->show(); }},
        {QStringLiteral("signIn"), [&] { model_.reauthorizeGoogle(); }},
        {QStringLiteral("signOut"), [&] { signOut(); }},
        {QStringLiteral("quit"), [&] { quit(); }},
    };
    if (const auto found = commands.find(command); found != commands.end())
        found->second();
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

#include "app/cli/Command.h"
#include "app/cli/LibraryChoice.h"
#include "app/cli/SignIn.h"
#include "app/cli/TerminalConfirmation.h"

#include <QJsonArray>
#include <QJsonObject>

namespace quorvane::cli {

namespace {

struct Row {
    QString id;
    QString title;
    std::int64_t count = 0;
};

std::vector<Row> localAlbums(Invocation& invocation, CoreServices& core) {
    const auto path = chooseLibrary(invocation.arguments.value(QStringLiteral("library")),
                                    core.preferences, core.folders);
    TerminalConfirmation confirmation(core.console, false, invocation.stop);
    const auto library = openPhotoLibrary(path, core.folders, confirmation, core.logger);
    requireReadable(*library, path);
    PhotoAlbumService albums(*library, core.preferences, core.logger);
    std::vector<Row> rows;
    for (const LocalAlbumItem& album : albums.performFetchLocalAlbums())
        rows.push_back({album.id, album.title, album.count});
    rememberLibrary(path, core.preferences);
    return rows;
}

std::vector<Row> googleAlbums(Invocation& invocation, CoreServices& core) {
    NoAuthSession noSignIn;
    GoogleServices google(core, noSignIn);
    requireSignedIn(google.oauth);
    std::vector<Row> rows;
    for (const GoogleAlbum& album : google.albums.listAlbums(invocation.stop))
        rows.push_back({album.id, album.title.value_or(QString()), album.itemCount()});
    if (google.albums.lacksReadPermission())
        core.console.error(
            QStringLiteral("Albümleri görme izni yok, yalnız bilinen albümler listelendi. İzin "
                           "vermek için: quorvane-cli login"));
    return rows;
}

int albums(Invocation& invocation) {
    const bool local = invocation.arguments.has(QStringLiteral("local"));
    if (local == invocation.arguments.has(QStringLiteral("google")))
        throw UsageError(QStringLiteral("albums: --local veya --google seçin"));
    invocation.console.setChannel(Console::Channel::silent);
    CoreServices core(invocation.folders, invocation.console);
    for (const Row& row : local ? localAlbums(invocation, core) : googleAlbums(invocation, core)) {
        if (invocation.arguments.has(QStringLiteral("json")))
            printJson(core.console, {{QStringLiteral("id"), row.id},
                                     {QStringLiteral("title"), row.title},
                                     {QStringLiteral("count"), qint64(row.count)}});
        else
            core.console.result(
                QStringLiteral("%1  %2 (%3)").arg(row.id, row.title).arg(row.count));
    }
    return done;
}

} // namespace

Command albumsCommand() {
    return {{QStringLiteral("albums"),
             QStringLiteral("yerel albümleri veya Google Photos albümlerini listeler"),
             {{QStringLiteral("local"), {}, QStringLiteral("arşivin albümleri")},
              {QStringLiteral("google"), {}, QStringLiteral("Google Photos albümleri")},
              {QStringLiteral("library"), QStringLiteral("YOL"),
               QStringLiteral("Fotoğraflar arşivi veya resim klasörü (hatırlanır)")},
              {QStringLiteral("json"), {}, QStringLiteral("albüm başına bir JSON nesnesi yazar")}}},
            albums};
}

} // namespace quorvane::cli

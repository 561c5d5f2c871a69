#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"
#include "app/cli/TextTable.h"

#include <QJsonArray>
#include <QJsonObject>

namespace quorvane::cli {

namespace {

struct Row {
    QString id;
    QString title;
    std::int64_t count = 0;
};

std::vector<Row> localAlbums(Invocation& invocation, Program& program) {
    CoreServices& core = program.core;
    const auto path = chooseLibrary(invocation.arguments.value(QStringLiteral("library")), core);
    const AccountIdentity account = program.google.account();
    LibraryAt at(core, path);
    const auto place = core.states.find(at.identity(), account);
    SourceServices source(core, account, std::move(at), place, SourceServices::Use::look);
    requireReadable(*source.library, path);
    source.library->fetchAssets(); // what cannot be read has no list of albums, not an empty one
    std::vector<Row> rows;
    for (const LocalAlbumItem& album : source.albums.performFetchLocalAlbums())
        rows.push_back({album.id, album.title, album.count});
    rememberLibrary(source, core.preferences);
    return rows;
}

std::vector<Row> googleAlbums(Invocation& invocation, Program& program) {
    GoogleServices& google = program.google;
    requireSignedIn(google.oauth);
    std::vector<Row> rows;
    for (const GoogleAlbum& album : listedAlbums(google.albums, invocation.stop))
        rows.push_back({album.id, album.title.value_or(QString()), album.itemCount()});
    if (google.albums.lacksReadPermission())
        program.core.console.error(
            QStringLiteral("Albümleri görme izni yok, yalnız bilinen albümler listelendi. İzin "
                           "vermek için: quorvane-cli login"));
    return rows;
}

int albums(Invocation& invocation) {
    const bool local = invocation.arguments.has(QStringLiteral("local"));
    if (local == invocation.arguments.has(QStringLiteral("google")))
        throw UsageError(QStringLiteral("albums: --local veya --google seçin"));
    invocation.console.setChannel(Console::Channel::silent);
    Program program(invocation);
    CoreServices& core = program.core;
    for (const Row& row :
         local ? localAlbums(invocation, program) : googleAlbums(invocation, program)) {
        if (invocation.arguments.has(QStringLiteral("json")))
            printJson(core.console, {{QStringLiteral("id"), row.id},
                                     {QStringLiteral("title"), row.title},
                                     {QStringLiteral("count"), qint64(row.count)}});
        else
            core.console.result(
                QStringLiteral("%1  %2 (%3)").arg(row.id, row.title, countText(row.count)));
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

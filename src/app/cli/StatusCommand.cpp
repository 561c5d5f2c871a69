#include "app/cli/Absences.h"
#include "app/cli/FigureRows.h"
#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"
#include "app/cli/SyncReport.h"
#include "app/cli/TextTable.h"
#include "foundation/FileLock.h"
#include "store/RecordAbsences.h"
#include "sync/ProductState.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>

namespace quorvane::cli {

namespace {

struct Status {
    StoreCounts counts;
    bool signedIn = false;
    RunState run;
    ProductFacts facts;
    QString email;
    QString library;
    QString targetAlbum;
    RemainderCounts behind;
    QStringList absences; ///< the first of them, by reason
    int daysLeft = 0;
};

constexpr int absencesShown = 20;

AbsenceCounts absencesOf(const StoreCounts& counts) {
    return {counts.onlyInCloud, counts.elsewhere};
}

/// What the latest run does, or how it ended. One that was killed tells neither itself.
RunState runStateOf(const CoreServices& core) {
    RunState state = core.runState.last();
    if (state.phase != RunState::Phase::running && state.phase != RunState::Phase::waiting)
        return state;
    if (!FileLock::tryLock(core.folders.runLock()))
        return state;
    return {.phase = RunState::Phase::ended,
            .end = RunState::End::machine,
            .error = QStringLiteral("program kapandı")};
}

ProductFacts factsOf(const CoreServices& core, bool isSignedIn, const StoreCounts& counts,
                     const RunState& run) {
    using Library = ProductFacts::Library;
    const auto library = rememberedLibrary(core);
    return {.isSignedIn = isSignedIn,
            .library = !library            ? Library::none
                       : isThere(*library) ? Library::open
                                           : Library::away,
            .pending = counts.pending,
            .verified = counts.verified,
            .failed = counts.failed,
            .undated = counts.undated,
            .run = run};
}

QString accountText(const Status& status) {
    if (!status.signedIn)
        return QStringLiteral("açılmamış");
    const QString account = status.email.isEmpty() ? QStringLiteral("açık") : status.email;
    return status.run.needsSignIn()
               ? account + QStringLiteral(" (sona erdi, yeniden giriş: quorvane-cli login)")
               : account;
}

QString table(const Status& status, const UserFolders& folders, const StatePlace& place) {
    QString text =
        tableRow(QStringLiteral("Durum"), titleOf(productState(status.facts), status.facts)) +
        tableRow(QStringLiteral("Oturum"), accountText(status));
    if (const QString run = status.run.text(); !run.isEmpty())
        text += tableRow(QStringLiteral("Son durum"), run);
    text += tableRow(QStringLiteral("Arşiv"),
                     status.library.isEmpty() ? QStringLiteral("seçilmedi") : status.library);
    text += tableRow(QStringLiteral("Hedef albüm"), status.targetAlbum.isEmpty()
                                                        ? QStringLiteral("yok (ana akış)")
                                                        : status.targetAlbum);
    text += countRow(QStringLiteral("Doğrulanan"), status.counts.verified);
    if (status.counts.misdated > 0)
        text += countRow(QStringLiteral("  Google'da başka tarihte"), status.counts.misdated);
    text += countRow(QStringLiteral("Bekleyen"), status.counts.pending);
    if (status.counts.pending > 0)
        text += tableRow(QStringLiteral("Günlük sınırla süre"), daysText(status.daysLeft));
    text += countRow(QStringLiteral("Başarısız"), status.counts.failed);
    text += countRow(QStringLiteral("Tarihi bilinmeyen"), status.counts.undated);
    if (status.counts.undatable > 0)
        text += countRow(QStringLiteral("  tarih yazılamayan biçim"), status.counts.undatable);
    text += absencesOf(status.counts).rows();
    for (const QString& reason : status.absences)
        text += QStringLiteral("  ") + reason + u'\n';
    text += rowsOf(figuresOf(status.behind));
    text += tableRow(QStringLiteral("Durum veritabanı"), pathText(place.database));
    text += tableRow(QStringLiteral("Günlük"), pathText(folders.logs() / "quorvane.log"));
    text += tableRow(QStringLiteral("Hazırlanan dosyalar"), pathText(place.permanentStaging));
    return text.chopped(1);
}

QString dateText(Date date) {
    return QLocale(QLocale::Turkish)
        .toString(QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count()),
                  QStringLiteral("d MMMM yyyy HH:mm"));
}

/// The library that the state belongs to; none where it is not to be read now.
std::unique_ptr<SourceServices> libraryOf(CoreServices& core, const AccountIdentity& account,
                                          const std::optional<StatePlace>& place) {
    try {
        if (const auto path = rememberedLibrary(core))
            return std::make_unique<SourceServices>(core, account, LibraryAt(core, *path), place,
                                                    SourceServices::Use::look);
    } catch (const Error&) { // identifiers name the items then
    }
    return nullptr;
}

QString nameIn(SourceServices* source, const QString& identifier) {
    try {
        return (source ? nameOf(*source->library, identifier) : std::nullopt).value_or(identifier);
    } catch (const PhotoLibraryError&) {
        return identifier;
    }
}

void listMisdated(CoreServices& core, const AccountIdentity& account, StateServices& state,
                  bool asJson) {
    const std::vector<Misdating> items = RecordDates(state.db).misdated();
    const auto source = items.empty() ? nullptr : libraryOf(core, account, state.place);
    QJsonArray array;
    QString text;
    for (const Misdating& item : items) {
        const QString name = nameIn(source.get(), item.identifier);
        array += QJsonObject{{QStringLiteral("name"), name},
                             {QStringLiteral("identifier"), item.identifier},
                             {QStringLiteral("ours"), describe(item.ours)},
                             {QStringLiteral("google"), describe(item.theirs)}};
        text += QStringLiteral("%1: bizde %2, Google'da %3\n")
                    .arg(name, dateText(item.ours), dateText(item.theirs));
    }
    if (asJson)
        printJson(core.console, {{QStringLiteral("misdated"), array}});
    else
        core.console.result(items.empty() ? QStringLiteral("Google'da başka tarihte duran öğe yok")
                                          : text.chopped(1));
}

int status(Invocation& invocation) {
    invocation.console.setChannel(Console::Channel::silent);
    Program program(invocation);
    CoreServices& core = program.core;
    GoogleServices& google = program.google;
    const AccountIdentity account = google.account();
    StateServices state(core, rememberedState(core, account), account);
    if (invocation.arguments.has(QStringLiteral("misdated"))) {
        listMisdated(core, account, state, invocation.arguments.has(QStringLiteral("json")));
        return done;
    }
    const StatePlace place = state.place.value_or(core.states.first());
    const StoreCounts counts = StoreCounts::of(state.db);
    const RunState run = runStateOf(core);
    const Status now{counts,
                     google.oauth.isSignedIn(),
                     run,
                     factsOf(core, google.oauth.isSignedIn(), counts, run),
                     google.oauth.email().value_or(QString()),
                     core.preferences.string(preferenceKeys::libraryPath).value_or(QString()),
                     core.preferences.string(preferenceKeys::targetAlbumTitle).value_or(QString()),
                     RecordRemainders(state.db).counts(),
                     RecordAbsences(state.db).reasons(absencesShown),
                     daysUnderQuota(counts.pending, google.requests)};
    if (!invocation.arguments.has(QStringLiteral("json"))) {
        core.console.result(table(now, core.folders, place));
        return done;
    }
    printJson(core.console,
              {{QStringLiteral("signedIn"), now.signedIn},
               {QStringLiteral("needsSignIn"), now.run.needsSignIn()},
               {QStringLiteral("product"), rawValue(productState(now.facts))},
               {QStringLiteral("state"), now.run.json()},
               {QStringLiteral("daysLeft"), now.daysLeft},
               {QStringLiteral("email"), now.email},
               {QStringLiteral("library"), now.library},
               {QStringLiteral("targetAlbum"), now.targetAlbum},
               {QStringLiteral("verified"), now.counts.verified},
               {QStringLiteral("misdated"), now.counts.misdated},
               {QStringLiteral("pending"), now.counts.pending},
               {QStringLiteral("failed"), now.counts.failed},
               {QStringLiteral("undated"), now.counts.undated},
               {QStringLiteral("undatable"), now.counts.undatable},
               {QStringLiteral("absent"), absencesOf(now.counts).json()},
               {QStringLiteral("behind"), jsonOf(figuresOf(now.behind))},
               {QStringLiteral("absentItems"), QJsonArray::fromStringList(now.absences)},
               {QStringLiteral("database"), pathText(place.database)},
               {QStringLiteral("log"), pathText(core.logger.logFile())},
               {QStringLiteral("staging"), pathText(place.permanentStaging)}});
    return done;
}

} // namespace

Command statusCommand() {
    return {{QStringLiteral("status"),
             QStringLiteral("oturumu, sayıları ve dosyaların yerini gösterir"),
             {{QStringLiteral("misdated"),
               {},
               QStringLiteral("Google'da başka bir tarihte duran öğeleri listeler")},
              {QStringLiteral("json"), {}, QStringLiteral("tek bir JSON nesnesi yazar")}}},
            status};
}

} // namespace quorvane::cli

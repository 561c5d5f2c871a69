#include "app/RunLock.h"
#include "app/cli/Forecast.h"
#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"
#include "app/cli/Progress.h"
#include "app/cli/SyncReport.h"
#include "app/cli/UploadLimitOption.h"
#include "app/cli/Watching.h"
#include "foundation/File.h"

#include <QRegularExpression>

#include <algorithm>

namespace quorvane::cli {

namespace {

/// The page that `--report` asks for. What it says is safe in the store as well: a page that cannot
/// be written does not change how the run ended.
void writePage(const QString& file, const RunReport& report, Console& console) {
    try {
        replaceFile(pathFrom(file), report.html().toUtf8());
        console.notice(QStringLiteral("Rapor: ") + file);
    } catch (const Error& error) {
        console.error(QStringLiteral("Rapor yazılamadı: ") + error.localizedDescription());
    }
}

Progress::Form formOf(const Arguments& arguments) {
    if (arguments.has(QStringLiteral("json")))
        return Progress::Form::json;
    return arguments.has(QStringLiteral("quiet")) ? Progress::Form::none : Progress::Form::text;
}

/// The choices of this run that are settings elsewhere: they hold for this process only.
void applyOptions(const Arguments& arguments, Preferences& preferences) {
    if (const auto mode = arguments.value(QStringLiteral("date-fallback")))
        preferences.setVolatile(preferenceKeys::dateFallbackMode, *mode);
    if (const auto choice = arguments.value(QStringLiteral("on-album-limit"))) {
        preferences.setVolatile(preferenceKeys::autoRolloverOnLimit, *choice == u"rollover");
        preferences.setVolatile(preferenceKeys::stopAtLimit, *choice == u"stop");
    }
    applyUploadLimit(arguments, preferences);
}

/// "90", "90s", "10m", "2h" or "1d".
World::Patience patienceFrom(const Arguments& arguments) {
    const auto text = arguments.value(QStringLiteral("wait"));
    if (!text)
        return std::chrono::minutes(10);
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,6})([smhd]?)$"));
    const auto match = form.match(*text);
    if (!match.hasMatch())
        throw UsageError(QStringLiteral("--wait bir süre bekler (90s, 10m, 2h, 1d): ") + *text);
    const QString unit = match.captured(2);
    const int seconds = unit == u"m" ? 60 : unit == u"h" ? 3600 : unit == u"d" ? 86400 : 1;
    return World::Patience(match.captured(1).toLongLong() * seconds);
}

RunReport run(Invocation& invocation, CoreServices& core, GoogleServices& google,
              LibraryServices& library) {
    const auto started = core.clock.monotonic();
    const auto progress = std::make_shared<Progress>(formOf(invocation.arguments), core.console,
                                                     google.tracker, core.clock);
    std::optional<Watching> watching; // what is added during the run is taken along
    SyncRunCallbacks callbacks = shownBy(progress);
    callbacks.discovered = [&] {
        rememberLibrary(library, core.preferences);
        watching.emplace(library);
    };
    const SyncRunOrder order{.deletes = invocation.arguments.has(QStringLiteral("delete-verified")),
                             .patience = patienceFrom(invocation.arguments)};
    const SyncRunOutcome outcome = runSync(library.run, order, callbacks, invocation.stop);
    const auto ended = core.clock.monotonic();
    RunReport report = RunReport::of(library.run, outcome,
                                     invocation.arguments.value(QStringLiteral("report"))
                                         ? RunReport::Extent::page
                                         : RunReport::Extent::summary);
    report.library = pathText(library.path);
    report.account = google.account().email;
    report.end = core.clock.now();
    report.seconds = std::chrono::duration<double>(ended - started).count();
    return report;
}

/// Settles where this run reads and where it puts things.
void choose(Invocation& invocation, CoreServices& core, GoogleServices& google,
            SourceServices& source) {
    requireReadable(*source.library, source.path);
    if (const auto album = invocation.arguments.value(QStringLiteral("album")))
        chooseSourceAlbum(*album, source.albums);
    if (const auto album = invocation.arguments.value(QStringLiteral("target-album")))
        chooseTargetAlbum(*album, google.albums, core.preferences, invocation.stop);
    requireOneUseOfAlbums(source.choices, google.albums);
}

/// Leaves no trace but log lines: neither a store nor a staging folder is created.
int dryRun(Invocation& invocation, CoreServices& core, GoogleServices& google,
           const std::filesystem::path& path) {
    const AccountIdentity account = google.account();
    LibraryAt at(core, path);
    applyChoices(invocation.arguments, at);
    const auto place = core.states.find(at.identity(), account);
    SourceServices source(core, account, std::move(at), place, SourceServices::Use::look);
    choose(invocation, core, google, source);
    const QString mode =
        core.preferences.string(preferenceKeys::dateFallbackMode).value_or(QString());
    const Forecast result =
        forecast(source, google, dateFallbackModeFrom(mode).value_or(DateFallbackMode::strictNone),
                 invocation.stop);
    if (invocation.arguments.has(QStringLiteral("json")))
        printJson(core.console, result.json());
    else
        core.console.result(result.table());
    return result.leavesSomeOut() ? someItemsLeft : done;
}

int sync(Invocation& invocation) {
    const Arguments& arguments = invocation.arguments;
    if (arguments.has(QStringLiteral("json")))
        invocation.console.setChannel(Console::Channel::standardError);
    else if (arguments.has(QStringLiteral("quiet")))
        invocation.console.setChannel(Console::Channel::silent);

    invocation.console.setCalm(!arguments.has(QStringLiteral("verbose")));

    const RunLock lock(invocation.folders.runLock());
    Program program(invocation);
    CoreServices& core = program.core;
    applyOptions(arguments, core.preferences);
    const bool isDryRun = arguments.has(QStringLiteral("dry-run"));
    if (!isDryRun)
        requireSignedIn(program.google.oauth);
    const auto path = chooseLibrary(arguments.value(QStringLiteral("library")), core);
    if (isDryRun)
        return dryRun(invocation, core, program.google, path);

    LibraryAt at(core, path);
    applyChoices(arguments, at);
    LibraryServices library(core, program.google, std::move(at));
    choose(invocation, core, program.google, library);
    library.mirror.remakesGone = arguments.has(QStringLiteral("remake-albums"));
    const RunReport report = run(invocation, core, program.google, library);
    if (report.run.error || report.run.fault)
        core.console.error(report.run.state().text());
    if (arguments.has(QStringLiteral("json")))
        printJson(core.console, jsonOf(report));
    else
        core.console.result(tableOf(report));
    if (const auto file = arguments.value(QStringLiteral("report")))
        writePage(*file, report, core.console);
    return exitCodeOf(report);
}

} // namespace

Command syncCommand() {
    const QString album = QStringLiteral("KİMLİK|BAŞLIK");
    Command command{
        {QStringLiteral("sync"),
         QStringLiteral("arşivi tarar, hazırlar ve Google Photos'a yükler"),
         {{QStringLiteral("library"), QStringLiteral("YOL"),
           QStringLiteral("Fotoğraflar arşivi veya resim klasörü (hatırlanır)")},
          {QStringLiteral("album"), album, QStringLiteral("yalnızca bu yerel albüm")},
          {QStringLiteral("target-album"), album,
           QStringLiteral("yüklenenler bu Google Photos albümüne eklenir")},
          {QStringLiteral("date-fallback"),
           QStringLiteral("KİP"),
           QStringLiteral("tarihi bulunamayan öğeler için, bu çalıştırmada"),
           {QStringLiteral("strictNone"), QStringLiteral("fileSaveDate"), QStringLiteral("today")}},
          {QStringLiteral("on-album-limit"),
           QStringLiteral("SEÇİM"),
           QStringLiteral("hedef albüm 20.000 öğeyle dolunca"),
           {QStringLiteral("rollover"), QStringLiteral("stop")}},
          {QStringLiteral("remake-albums"),
           {},
           QStringLiteral("Google'da silinmiş albümleri yeniden oluşturur")},
          {QStringLiteral("delete-verified"),
           {},
           QStringLiteral("yüklendiği doğrulanan asılları, onayınızla, Çöp'e taşır")},
          {QStringLiteral("yes"), {}, QStringLiteral("Çöp'e taşımayı sormadan onaylar")},
          {QStringLiteral("wait"), QStringLiteral("SÜRE"),
           QStringLiteral("Google'a ulaşılamazken en çok bu kadar bekler (90s, 10m, 2h; 10m)")},
          uploadLimitOption(),
          {QStringLiteral("dry-run"),
           {},
           QStringLiteral("ne yapılacağını söyler, hiçbir şey yapmaz")},
          {QStringLiteral("report"), QStringLiteral("DOSYA"),
           QStringLiteral("sonunda bir HTML sayfasına yazar: kaçı, hangileri değil, neden")},
          {QStringLiteral("json"),
           {},
           QStringLiteral("standart çıktıya satır başına bir JSON nesnesi yazar")},
          {QStringLiteral("quiet"), {}, QStringLiteral("yalnızca sonucu yazar")},
          {QStringLiteral("verbose"), {}, QStringLiteral("uçbirimde de her adımı yazar")}}},
        sync};
    std::ranges::copy(choiceOptions(), std::back_inserter(command.spec.options));
    return command;
}

} // namespace quorvane::cli

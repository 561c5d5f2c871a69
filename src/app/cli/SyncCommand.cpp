#include "app/RunLock.h"
#include "app/cli/Command.h"
#include "app/cli/Forecast.h"
#include "app/cli/LibraryChoice.h"
#include "app/cli/Progress.h"
#include "app/cli/SignIn.h"
#include "app/cli/SyncReport.h"
#include "app/cli/TerminalConfirmation.h"
#include "app/cli/Watching.h"

#include <atomic>

namespace quorvane::cli {

namespace {

/// The name a person knows the item by: the library's, else that of the staged copy.
QString nameOf(const SyncRecord& record, LibraryServices& library) {
    const QString& identifier = record.assetLocalIdentifier;
    const auto assets = library.library->fetchAssets(QStringList{identifier});
    if (!assets->empty())
        if (const auto resource = resourceToStage(library.library->assetResources(assets->front())))
            return resource->originalFilename;
    const auto file = library.staging.findStagingFile(identifier);
    return file ? uploadName(record, *file) : identifier;
}

/// Writes down how a run went, with the names a person knows the files by.
void describeEnd(SyncReport& report, CoreServices& core, LibraryServices& library) {
    report.after = StoreCounts::of(core.db);
    report.failures = core.db.fetchFailedCategorySummaries();
    for (const SyncRecord& record : core.db.fetchUnfinishedRecords(SyncReport::shownItems))
        report.unfinished.push_back(
            {nameOf(record, library), record.syncStatus, record.lastError.value_or(QString())});
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
}

SyncReport drain(Invocation& invocation, CoreServices& core, GoogleServices& google,
                 LibraryServices& library) {
    SyncServices sync(core, google, library);
    SyncReport report;
    report.before = StoreCounts::of(core.db);
    const auto started = core.clock.monotonic();

    std::atomic<bool> albumFull = false;
    const Subscription limit =
        google.batchCoord.googlePhotosAlbumLimitReached.subscribe([&](const AlbumLimitReached&) {
            albumFull = true;
            sync.flags.cancel(); // else a full album means the same bytes again and again
        });
    const auto progress = std::make_shared<Progress>(formOf(invocation.arguments), core.console,
                                                     google.tracker, core.clock);
    sync.flags.begin();
    const std::stop_callback onStop(invocation.stop, [&] { sync.flags.cancel(); });
    report.run = sync.coordinator.drainPendingQueue(
        invocation.arguments.has(QStringLiteral("delete-verified")),
        [weak = std::weak_ptr(progress)](int completed, int total) {
            if (const auto shown = weak.lock())
                shown->update(completed, total);
        });
    sync.flags.end();

    report.albumFull = albumFull;
    report.seconds = std::chrono::duration<double>(core.clock.monotonic() - started).count();
    describeEnd(report, core, library);
    return report;
}

/// Settles where this run reads and where it puts things.
void choose(Invocation& invocation, CoreServices& core, GoogleServices& google,
            SourceServices& source) {
    requireReadable(*source.library, source.path);
    if (const auto album = invocation.arguments.value(QStringLiteral("album")))
        chooseSourceAlbum(*album, source.albums, core.preferences);
    if (const auto album = invocation.arguments.value(QStringLiteral("target-album")))
        chooseTargetAlbum(*album, google.albums, core.preferences, invocation.stop);
}

/// Leaves no trace but log lines: neither a store nor a staging folder is created.
int dryRun(Invocation& invocation, CoreServices& core, GoogleServices& google,
           SourceServices& library) {
    const QString mode =
        core.preferences.string(preferenceKeys::dateFallbackMode).value_or(QString());
    const Forecast result = forecast(
        core, library, google.oauth.isSignedIn() ? &google : nullptr,
        dateFallbackModeFrom(mode).value_or(DateFallbackMode::strictNone), invocation.stop);
    if (invocation.arguments.has(QStringLiteral("json")))
        printJson(core.console, result.json());
    else
        core.console.result(result.table());
    return result.undated + result.unavailable > 0 ? someItemsLeft : done;
}

int sync(Invocation& invocation) {
    const Arguments& arguments = invocation.arguments;
    if (arguments.has(QStringLiteral("json")))
        invocation.console.setChannel(Console::Channel::standardError);
    else if (arguments.has(QStringLiteral("quiet")))
        invocation.console.setChannel(Console::Channel::silent);

    const RunLock lock(invocation.folders.runLock());
    const bool isDryRun = arguments.has(QStringLiteral("dry-run"));
    CoreServices core(invocation.folders, invocation.console,
                      isDryRun ? CoreServices::Store::leaveAbsent
                               : CoreServices::Store::createWhenAbsent);
    core.db.requireUsable();
    applyOptions(arguments, core.preferences);
    NoAuthSession noSignIn;
    GoogleServices google(core, noSignIn);
    if (!isDryRun)
        requireSignedIn(google.oauth);

    const auto path =
        chooseLibrary(arguments.value(QStringLiteral("library")), core.preferences, core.folders);
    TerminalConfirmation confirmation(invocation.console, arguments.has(QStringLiteral("yes")),
                                      invocation.stop);
    if (isDryRun) {
        SourceServices source(core, path, confirmation);
        choose(invocation, core, google, source);
        return dryRun(invocation, core, google, source);
    }
    LibraryServices library(core, path, confirmation);
    choose(invocation, core, google, library);

    library.staging.removeLeftovers(invocation.stop);
    library.observer.initialScan(invocation.stop);
    rememberLibrary(path, core.preferences);
    const Watching watching(library);
    const SyncReport report = drain(invocation, core, google, library);
    if (arguments.has(QStringLiteral("json")))
        printJson(core.console, report.json());
    else
        core.console.result(report.table());
    return report.exitCode();
}

} // namespace

Command syncCommand() {
    const QString album = QStringLiteral("KİMLİK|BAŞLIK");
    return {
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
          {QStringLiteral("delete-verified"),
           {},
           QStringLiteral("yüklendiği doğrulanan asılları, onayınızla, Çöp'e taşır")},
          {QStringLiteral("yes"), {}, QStringLiteral("Çöp'e taşımayı sormadan onaylar")},
          {QStringLiteral("dry-run"),
           {},
           QStringLiteral("ne yapılacağını söyler, hiçbir şey yapmaz")},
          {QStringLiteral("json"),
           {},
           QStringLiteral("standart çıktıya satır başına bir JSON nesnesi yazar")},
          {QStringLiteral("quiet"), {}, QStringLiteral("yalnızca sonucu yazar")}}},
        sync};
}

} // namespace quorvane::cli

#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"
#include "app/cli/SyncReport.h"
#include "app/cli/TextTable.h"

namespace quorvane::cli {

namespace {

/// Puts failed records back in the queue, undated ones too once a date may be invented, and those
/// that take none once they may go without.
int retry(Invocation& invocation) {
    invocation.console.setChannel(Console::Channel::silent);
    Program program(invocation);
    CoreServices& core = program.core;
    const AccountIdentity account = program.google.account();
    StateServices state(core, rememberedState(core, account), account);
    if (const auto mode = invocation.arguments.value(QStringLiteral("date-fallback")))
        core.preferences.setString(preferenceKeys::dateFallbackMode, *mode);
    const QString mode =
        core.preferences.string(preferenceKeys::dateFallbackMode).value_or(QString());
    const bool withUndated = dateFallbackModeFrom(mode).value_or(DateFallbackMode::strictNone) !=
                             DateFallbackMode::strictNone;

    const StoreCounts before = StoreCounts::of(state.db);
    state.life.retriedFailed(true);
    if (withUndated)
        state.life.retriedUndated();
    const int released =
        invocation.arguments.has(QStringLiteral("undatable")) ? state.life.undatableReleased() : 0;
    const StoreCounts after = StoreCounts::of(state.db);
    core.console.result(QStringLiteral("%1 öğe yeniden sıraya alındı.")
                            .arg(countText(after.pending - before.pending)));
    if (released > 0)
        core.console.result(QStringLiteral("%1 öğe olduğu gibi yüklenecek; Google bunları "
                                           "yüklendikleri güne koyar.")
                                .arg(countText(released)));
    if (const int undated = after.undated - after.undatable; undated > 0)
        core.console.result(QStringLiteral("%1 tarihsiz öğe bekletiliyor; yüklemek için: "
                                           "quorvane-cli retry --date-fallback fileSaveDate")
                                .arg(countText(undated)));
    if (after.undatable > 0)
        core.console.result(undatableAdvice());
    return done;
}

} // namespace

Command retryCommand() {
    return {
        {QStringLiteral("retry"),
         QStringLiteral("yüklenemeyen öğeleri yeniden sıraya alır"),
         {{QStringLiteral("date-fallback"),
           QStringLiteral("KİP"),
           QStringLiteral("tarihsiz öğeler için kullanılacak tarih (hatırlanır)"),
           {QStringLiteral("strictNone"), QStringLiteral("fileSaveDate"), QStringLiteral("today")}},
          {QStringLiteral("undatable"),
           QStringLiteral("SEÇİM"),
           QStringLiteral("tarih yazılamayan biçimler: olduğu gibi yükle (Google yüklendikleri "
                          "güne koyar)"),
           {QStringLiteral("upload")}}}},
        retry};
}

} // namespace quorvane::cli

#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"

namespace quorvane::cli {

namespace {

/// Puts failed records back in the queue, and undated ones too once a date may be invented.
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
    const StoreCounts after = StoreCounts::of(state.db);
    core.console.result(
        QStringLiteral("%1 öğe yeniden sıraya alındı.").arg(after.pending - before.pending));
    if (after.undated > 0)
        core.console.result(QStringLiteral("%1 tarihsiz öğe bekletiliyor; yüklemek için: "
                                           "quorvane-cli retry --date-fallback fileSaveDate")
                                .arg(after.undated));
    return done;
}

} // namespace

Command retryCommand() {
    return {{QStringLiteral("retry"),
             QStringLiteral("yüklenemeyen öğeleri yeniden sıraya alır"),
             {{QStringLiteral("date-fallback"),
               QStringLiteral("KİP"),
               QStringLiteral("tarihsiz öğeler için kullanılacak tarih (hatırlanır)"),
               {QStringLiteral("strictNone"), QStringLiteral("fileSaveDate"),
                QStringLiteral("today")}}}},
            retry};
}

} // namespace quorvane::cli

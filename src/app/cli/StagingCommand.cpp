#include "app/RunLock.h"
#include "app/cli/LibraryChoice.h"
#include "app/cli/Program.h"
#include "app/cli/StagingContents.h"
#include "app/cli/SyncReport.h"
#include "app/cli/TextTable.h"

#include <QJsonArray>
#include <QJsonObject>

namespace quorvane::cli {

namespace {

QString nameOf(SyncStatus status) {
    switch (status) {
    case SyncStatus::discovered:
        return QStringLiteral("Hazırlanmayı bekleyen");
    case SyncStatus::staged:
        return QStringLiteral("Yüklenmeyi bekleyen");
    case SyncStatus::uploading:
        return QStringLiteral("Yüklenen");
    case SyncStatus::verified:
        return QStringLiteral("Doğrulanan");
    case SyncStatus::deletedLocally:
        return QStringLiteral("Aslı silinen");
    case SyncStatus::failed:
        return QStringLiteral("Başarısız");
    case SyncStatus::excluded:
        return QStringLiteral("Dışarıda bırakılan");
    case SyncStatus::dateUnresolved:
        return QStringLiteral("Tarihi bilinmeyen");
    }
    return {};
}

QString row(const QString& label, const FilesAndBytes& count) {
    return tableRow(
        label, QStringLiteral("%1 dosya, %2").arg(countText(count.files), byteText(count.bytes)));
}

QJsonObject json(const FilesAndBytes& count) {
    return {{QStringLiteral("files"), count.files}, {QStringLiteral("bytes"), qint64(count.bytes)}};
}

FilesAndBytes removable(const std::vector<StagingContents>& folders) {
    FilesAndBytes count;
    for (const StagingContents& contents : folders)
        for (const StagingContents::File& file : contents.removable)
            count.add(file.bytes);
    return count;
}

QString table(const std::vector<StagingContents>& folders) {
    if (folders.empty())
        return QStringLiteral("Hazırlık klasörü yok.");
    QString text;
    for (const StagingContents& contents : folders) {
        text += pathText(contents.folder) + u'\n';
        for (const auto& [status, count] : contents.byStatus)
            text += row(nameOf(status), count);
        if (contents.unknown.files > 0)
            text += row(QStringLiteral("Kaydı olmayan"), contents.unknown);
        text += row(QStringLiteral("Toplam"), contents.total());
    }
    return text + row(QStringLiteral("Artık gerekmeyen"), removable(folders)).chopped(1);
}

QJsonObject json(const std::vector<StagingContents>& folders) {
    QJsonArray listed;
    for (const StagingContents& contents : folders) {
        QJsonObject byStatus;
        for (const auto& [status, count] : contents.byStatus)
            byStatus[rawValue(status)] = json(count);
        QJsonObject object = json(contents.total());
        object[QStringLiteral("path")] = pathText(contents.folder);
        object[QStringLiteral("statuses")] = byStatus;
        object[QStringLiteral("unknown")] = json(contents.unknown);
        listed.append(object);
    }
    return {{QStringLiteral("folders"), listed},
            {QStringLiteral("removable"), json(removable(folders))}};
}

int prune(Invocation& invocation, CoreServices& core, DatabaseManager& db,
          const std::vector<StagingContents>& folders) {
    const FilesAndBytes before = removable(folders);
    TerminalConfirmation confirmation(core.console, invocation.arguments.has(QStringLiteral("yes")),
                                      invocation.stop);
    if (before.files > 0 &&
        !confirmation.confirm(
            QStringLiteral("Google Photos'ta doğrulanan öğelerin %1 hazırlık kopyası (%2) "
                           "silinecek.")
                .arg(countText(before.files), byteText(before.bytes)))) {
        core.console.error(QStringLiteral("Onay verilmedi, hiçbir şey silinmedi."));
        return failedToRun;
    }
    FilesAndBytes removed;
    for (const StagingContents& contents : folders) {
        const FilesAndBytes here = removeSafeCopies(contents, db);
        removed.files += here.files;
        removed.bytes += here.bytes;
    }
    if (invocation.arguments.has(QStringLiteral("json")))
        printJson(core.console, {{QStringLiteral("removed"), json(removed)}});
    else
        core.console.result(QStringLiteral("%1 hazırlık kopyası silindi, %2 yer açıldı.")
                                .arg(countText(removed.files), byteText(removed.bytes)));
    return done;
}

int staging(Invocation& invocation) {
    invocation.console.setChannel(Console::Channel::silent);
    const bool isPrune = invocation.arguments.has(QStringLiteral("prune"));
    std::optional<RunLock> lock; // nobody stages or uploads what is being removed
    if (isPrune)
        lock.emplace(invocation.folders.runLock());
    Program program(invocation);
    CoreServices& core = program.core;
    const AccountIdentity account = program.google.account();
    StateServices state(core, rememberedState(core, account), account);
    const auto folders = stagingContents(state.place.value_or(core.states.first()), state.db);
    if (isPrune)
        return prune(invocation, core, state.db, folders);
    if (invocation.arguments.has(QStringLiteral("json")))
        printJson(core.console, json(folders));
    else
        core.console.result(table(folders));
    return done;
}

} // namespace

Command stagingCommand() {
    return {{QStringLiteral("staging"),
             QStringLiteral("yüklemek için hazırlanan kopyaları gösterir"),
             {{QStringLiteral("prune"),
               {},
               QStringLiteral("yüklendiği doğrulanan öğelerin kopyalarını, onayınızla, siler")},
              {QStringLiteral("yes"), {}, QStringLiteral("sormadan onaylar")},
              {QStringLiteral("json"), {}, QStringLiteral("tek bir JSON nesnesi yazar")}}},
            staging};
}

} // namespace quorvane::cli

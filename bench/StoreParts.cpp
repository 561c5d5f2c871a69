#include "bench/Parts.h"
#include "foundation/File.h"
#include "store/DatabaseManager.h"
#include "store/RecordLife.h"
#include "store/Statements.h"

#include <cstdio>

namespace quorvane::bench {

namespace {

/// What a run that failed altogether leaves behind.
constexpr const char* failAll =
    "UPDATE sync_records SET sync_status = 'FAILED', last_error = 'Hata', retry_count = 1;";

QString identifierOf(int number) {
    return QStringLiteral("%1-0000-4000-8000-000000000000/L0/001")
        .arg(number, 8, 16, QLatin1Char('0'))
        .toUpper();
}

QString quoted(const QString& text) {
    return u'\'' + text + u'\'';
}

/// The statement with literals in place of its parameters, in turn.
QByteArray filled(const char* statement, const std::vector<QString>& values) {
    QByteArray text(statement);
    for (const QString& value : values)
        text.replace(text.indexOf('?'), 1, value.toUtf8());
    return text + ";\n";
}

} // namespace

int store(const QStringList& words) {
    Console console(Console::Channel::silent);
    DatabaseManager db(pathFrom(words[0]), console);
    db.requireUsable();
    const int count = words[1].toInt();
    int next = 0;
    db.insertDiscoveredBatch([&]() -> std::optional<SyncRecord> {
        if (next == count)
            return std::nullopt;
        SyncRecord record;
        record.assetLocalIdentifier = identifierOf(next++);
        return record;
    });
    const bool isRight =
        db.countPendingRecords() == count && std::ssize(db.fetchPendingRecords(count)) == count;
    db.onConnection([](sqlite::Connection& database) { database.execute(failAll); });
    db.retryFailedRecords(true);
    return isRight && (count == 0 || db.countPendingRecords() == count) ? 0 : 1;
}

int storeScript(const QStringList& words) {
    const int count = words[0].toInt();
    std::printf("%s\nBEGIN IMMEDIATE;\n", statements::synchronous);
    for (int i = 0; i < count; ++i) {
        const QByteArray insert =
            filled(statements::insertDiscovered,
                   {quoted(identifierOf(i)), quoted(googlePhotosProvider), quoted(pendingAccount),
                    quoted(rawValue(MediaType::photo))});
        std::fputs(insert.constData(), stdout);
    }
    std::printf("COMMIT;\n%s;\n", statements::countPending);
    std::fputs(filled(statements::fetchPending, {words[0], QStringLiteral("0")}).constData(),
               stdout);
    std::printf("%s\n", failAll);
    std::fputs(filled(statements::retryFailed, {QStringLiteral("1")}).constData(), stdout);
    std::printf("%s;\n", statements::countPending);
    return 0;
}

} // namespace quorvane::bench

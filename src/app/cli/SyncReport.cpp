#include "app/cli/SyncReport.h"

#include "app/cli/Command.h"
#include "app/cli/TextTable.h"

#include <QJsonArray>
#include <QLocale>

namespace quorvane::cli {

namespace {

const QLocale turkish(QLocale::Turkish, QLocale::Turkey);

QString countRow(const QString& label, int count) {
    return tableRow(label, turkish.toString(count));
}

QString title(const SyncReport& report) {
    if (report.run.storeFailure)
        return QStringLiteral("Eşitleme yarıda kaldı: durum veritabanına yazılamadı (%1)")
            .arg(*report.run.storeFailure);
    if (report.albumFull)
        return QStringLiteral("Eşitleme durdu: hedef albüm dolu");
    if (report.run.cancelled)
        return QStringLiteral("Eşitleme durduruldu");
    if (report.run.total == 0)
        return QStringLiteral("Yüklenecek yeni öğe yok");
    return QStringLiteral("Eşitleme bitti");
}

} // namespace

QString byteText(std::int64_t bytes) {
    return turkish.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QString SyncReport::table() const {
    QString text = title(*this) + u'\n';
    text += countRow(QStringLiteral("Doğrulanan (bu kez)"), after.verified - before.verified);
    text += countRow(QStringLiteral("Doğrulanan (toplam)"), after.verified);
    text += countRow(QStringLiteral("Başarısız"), after.failed);
    for (const FailedCategorySummary& failure : failures)
        text += countRow(QStringLiteral("  ") + failure.categoryName, failure.count);
    text += countRow(QStringLiteral("Tarihi bilinmeyen"), after.undated);
    text += countRow(QStringLiteral("Bekleyen"), after.pending);
    text += tableRow(QStringLiteral("Aktarılan"), byteText(run.uploadedBytes));
    text +=
        tableRow(QStringLiteral("Süre"), turkish.toString(seconds, 'f', 1) + QStringLiteral(" sn"));
    if (unfinished.empty())
        return text.chopped(1);
    text += QStringLiteral("İnceleme gereken öğeler:\n");
    for (const UnfinishedItem& item : unfinished)
        text += QStringLiteral("  %1: %2\n").arg(item.name, item.reason);
    const int more = after.failed + after.undated - static_cast<int>(unfinished.size());
    if (more > 0)
        text += QStringLiteral("  … ve %1 öğe daha\n").arg(turkish.toString(more));
    return text + QStringLiteral("Yeniden denemek için: quorvane-cli retry");
}

QJsonObject SyncReport::json() const {
    QJsonObject categories;
    for (const FailedCategorySummary& failure : failures)
        categories[failure.categoryName] = failure.count;
    QJsonArray items;
    for (const UnfinishedItem& item : unfinished)
        items += QJsonObject{{QStringLiteral("name"), item.name},
                             {QStringLiteral("status"), rawValue(item.status)},
                             {QStringLiteral("reason"), item.reason}};
    return {{QStringLiteral("event"), QStringLiteral("summary")},
            {QStringLiteral("verified"), after.verified - before.verified},
            {QStringLiteral("verifiedTotal"), after.verified},
            {QStringLiteral("failed"), after.failed},
            {QStringLiteral("failedByCategory"), categories},
            {QStringLiteral("undated"), after.undated},
            {QStringLiteral("pending"), after.pending},
            {QStringLiteral("bytes"), qint64(run.uploadedBytes)},
            {QStringLiteral("seconds"), seconds},
            {QStringLiteral("passes"), run.passes},
            {QStringLiteral("stopped"), run.cancelled},
            {QStringLiteral("albumFull"), albumFull},
            {QStringLiteral("items"), items}};
}

int SyncReport::exitCode() const {
    if (run.storeFailure)
        return failedToRun;
    if (run.cancelled && !albumFull)
        return stopped;
    return after.failed + after.undated + after.pending > 0 ? someItemsLeft : done;
}

} // namespace quorvane::cli

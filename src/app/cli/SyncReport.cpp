#include "app/cli/SyncReport.h"

#include "app/cli/Absences.h"
#include "app/cli/Command.h"
#include "app/cli/Remainders.h"
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
    const RunState state = report.run.state();
    if (report.run.total == 0 && state.end == RunState::End::complete)
        return QStringLiteral("Yüklenecek yeni öğe yok");
    return state.text();
}

/// What a person can do so that the rest goes on.
QString advice(const SyncReport& report) {
    const RunState state = report.run.state();
    if (state.needsSignIn())
        return QStringLiteral("Yeniden giriş için: quorvane-cli login\n");
    if (state.wasPutOff())
        return QStringLiteral("Her şey saklandı; sürdürmek için aynı komutu yeniden çalıştırın\n");
    return {};
}

/// Nothing for none.
QString rowUnlessZero(const QString& label, int count) {
    return count == 0 ? QString() : countRow(label, count);
}

QString deletionRows(const DeletionSummary& deletion) {
    QString text = rowUnlessZero(QStringLiteral("Çöp'e taşınan"), deletion.deleted);
    text += rowUnlessZero(QStringLiteral("Silinmeyen"), static_cast<int>(deletion.leftOut.size()));
    for (const DeletionSummary::LeftOut& item : deletion.leftOut)
        text += QStringLiteral("  %1: %2\n").arg(item.name, item.reason);
    return text;
}

QString mirrorRows(const MirrorOutcome& mirror) {
    QString text = rowUnlessZero(QStringLiteral("Albümlere eklenen"), mirror.added) +
                   rowUnlessZero(QStringLiteral("Yeni Google albümü"), mirror.made) +
                   rowUnlessZero(QStringLiteral("Albüme eklenemeyen"),
                                 static_cast<int>(mirror.refused.size()));
    for (const QString& title : mirror.gone)
        text += QStringLiteral("  '%1' albümü Google Photos'ta silinmiş; yeniden oluşturulsun "
                               "isterseniz: --remake-albums\n")
                    .arg(title);
    if (mirror.failure)
        text += QStringLiteral("  Albümler tamamlanamadı, sonraki eşitlemede sürecek: %1\n")
                    .arg(*mirror.failure);
    return text;
}

QJsonObject mirrorJson(const MirrorOutcome& mirror) {
    QJsonObject object{{QStringLiteral("added"), mirror.added},
                       {QStringLiteral("made"), mirror.made},
                       {QStringLiteral("gone"), QJsonArray::fromStringList(mirror.gone)},
                       {QStringLiteral("refused"), QJsonArray::fromStringList(mirror.refused)}};
    if (mirror.failure)
        object[QStringLiteral("failure")] = *mirror.failure;
    return object;
}

} // namespace

int daysUnderQuota(int items, const DailyRequests& requests) {
    constexpr auto batch = static_cast<std::int64_t>(BatchCoordinator::batchSize);
    return requests.daysFor(items + (items + batch - 1) / batch);
}

QString daysText(int days) {
    return QStringLiteral("%1 gün").arg(days);
}

QString byteText(std::int64_t bytes) {
    return turkish.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QString undatableAdvice() {
    return QStringLiteral("Tarih yazılamayanları olduğu gibi yüklemek için: quorvane-cli retry "
                          "--undatable upload (Google bunları yüklendikleri güne koyar)");
}

QString leftOutRows(const LeftOut& leftOut) {
    return rowUnlessZero(QStringLiteral("Okunamadığı için atlanan"), leftOut.unreadable) +
           rowUnlessZero(QStringLiteral("Yazıldığı için atlanan"), leftOut.inUse) +
           rowUnlessZero(QStringLiteral("Gizli veya bağ, atlanan"), leftOut.hidden) +
           rowUnlessZero(QStringLiteral("Resim veya video olmayan"), leftOut.otherFiles);
}

QJsonObject leftOutJson(const LeftOut& leftOut) {
    return {{QStringLiteral("unreadable"), leftOut.unreadable},
            {QStringLiteral("inUse"), leftOut.inUse},
            {QStringLiteral("hidden"), leftOut.hidden},
            {QStringLiteral("otherFiles"), leftOut.otherFiles}};
}

QString SyncReport::table() const {
    QString text = title(*this) + u'\n' + advice(*this);
    text += countRow(QStringLiteral("Doğrulanan (bu kez)"), run.verified);
    text += rowUnlessZero(QStringLiteral("  zaten yüklü, tanınan"), run.recognised);
    text += rowUnlessZero(QStringLiteral("  Google'da zaten varmış"), run.existing);
    text += rowUnlessZero(QStringLiteral("  tarihi addaki sayı"), run.datedByNumber);
    text += countRow(QStringLiteral("Doğrulanan (toplam)"), after.verified);
    text += rowUnlessZero(QStringLiteral("  Google'da başka tarihte"), after.misdated);
    text += countRow(QStringLiteral("Başarısız"), after.failed);
    for (const FailedCategorySummary& failure : failures)
        text += countRow(QStringLiteral("  ") + failure.categoryName, failure.count);
    text += countRow(QStringLiteral("Tarihi bilinmeyen"), after.undated);
    text += rowUnlessZero(QStringLiteral("  tarih yazılamayan biçim"), after.undatable);
    text += countRow(QStringLiteral("Bekleyen"), pending);
    text += AbsenceCounts{after.onlyInCloud, after.elsewhere}.rows();
    text += remainderRows(behind);
    text += mirrorRows(run.mirror);
    text += leftOutRows(run.leftOut);
    text += deletionRows(run.deletion);
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
    if (after.undated > after.undatable)
        text += QStringLiteral("Tarih ipuçları için: quorvane-cli undated\n");
    if (after.undatable > 0)
        text += undatableAdvice() + u'\n';
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
    QJsonArray notDeleted;
    for (const DeletionSummary::LeftOut& item : run.deletion.leftOut)
        notDeleted += QJsonObject{{QStringLiteral("name"), item.name},
                                  {QStringLiteral("reason"), item.reason}};
    QJsonObject object{
        {QStringLiteral("event"), QStringLiteral("summary")},
        {QStringLiteral("verified"), run.verified},
        {QStringLiteral("recognised"), run.recognised},
        {QStringLiteral("existing"), run.existing},
        {QStringLiteral("verifiedTotal"), after.verified},
        {QStringLiteral("failed"), after.failed},
        {QStringLiteral("failedByCategory"), categories},
        {QStringLiteral("datedByNumber"), run.datedByNumber},
        {QStringLiteral("misdated"), after.misdated},
        {QStringLiteral("undated"), after.undated},
        {QStringLiteral("undatable"), after.undatable},
        {QStringLiteral("pending"), pending},
        {QStringLiteral("bytes"), qint64(run.uploadedBytes)},
        {QStringLiteral("seconds"), seconds},
        {QStringLiteral("passes"), run.passes},
        {QStringLiteral("stopped"), run.wasStopped},
        {QStringLiteral("albumFull"), run.albumFull},
        {QStringLiteral("leftOut"), leftOutJson(run.leftOut)},
        {QStringLiteral("absent"), AbsenceCounts{after.onlyInCloud, after.elsewhere}.json()},
        {QStringLiteral("albums"), mirrorJson(run.mirror)},
        {QStringLiteral("behind"), remainderJson(behind)},
        {QStringLiteral("deleted"), run.deletion.deleted},
        {QStringLiteral("notDeleted"), notDeleted},
        {QStringLiteral("items"), items},
        {QStringLiteral("state"), run.state().json()}};
    if (run.error)
        object[QStringLiteral("error")] = *run.error;
    return object;
}

int SyncReport::exitCode() const {
    if (run.error)
        return failedToRun;
    if (run.fault)
        return exitCodeOf(*run.fault);
    if (run.wasStopped)
        return stopped;
    const bool isMirrored = !run.mirror.failure && run.mirror.refused.isEmpty();
    return !isMirrored || after.failed + after.undated + pending + run.leftOut.missed() > 0
               ? someItemsLeft
               : done;
}

} // namespace quorvane::cli

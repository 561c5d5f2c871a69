#include "app/cli/SyncReport.h"

#include "app/cli/Absences.h"
#include "app/cli/Command.h"
#include "app/cli/FigureRows.h"
#include "app/cli/TextTable.h"

#include <QJsonArray>
#include <QLocale>

#include <span>

namespace quorvane::cli {

namespace {

const QLocale turkish(QLocale::Turkish, QLocale::Turkey);

QString title(const RunReport& report) {
    const RunState state = report.run.state();
    if (report.run.total == 0 && state.end == RunState::End::complete)
        return QStringLiteral("Yüklenecek yeni öğe yok");
    return state.text();
}

/// What a person can do so that the rest goes on.
QString advice(const RunReport& report) {
    const RunState state = report.run.state();
    if (state.needsSignIn())
        return QStringLiteral("Yeniden giriş için: quorvane-cli login\n");
    if (state.wasPutOff())
        return QStringLiteral("Her şey saklandı; sürdürmek için aynı komutu yeniden çalıştırın\n");
    return {};
}

/// The page may have many more.
std::span<const RunReport::Item> shown(const RunReport& report) {
    const std::size_t most = RunReport::shownItems;
    return std::span(report.unfinished).first(std::min(report.unfinished.size(), most));
}

QString deletionRows(const DeletionSummary& deletion) {
    QString text = rowsOf(
        {{QStringLiteral("Çöp'e taşınan"), nullptr, deletion.deleted},
         {QStringLiteral("Silinmeyen"), nullptr, static_cast<int>(deletion.leftOut.size())}});
    for (const DeletionSummary::LeftOut& item : deletion.leftOut)
        text += QStringLiteral("  %1: %2\n").arg(item.name, item.reason);
    return text;
}

QString mirrorRows(const MirrorOutcome& mirror) {
    QString text = rowsOf(
        {{QStringLiteral("Albümlere eklenen"), nullptr, mirror.added},
         {QStringLiteral("Yeni Google albümü"), nullptr, mirror.made},
         {QStringLiteral("Albüme eklenemeyen"), nullptr, static_cast<int>(mirror.refused.size())}});
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
    return QStringLiteral("%1 gün").arg(countText(days));
}

QString byteText(std::int64_t bytes) {
    return turkish.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QString undatableAdvice() {
    return QStringLiteral("Tarih yazılamayanları olduğu gibi yüklemek için: quorvane-cli retry "
                          "--undatable upload (Google bunları yüklendikleri güne koyar)");
}

QString tableOf(const RunReport& report) {
    const SyncRunOutcome& run = report.run;
    const StoreCounts& now = report.now;
    QString text = title(report) + u'\n' + advice(report);
    text += rowsOf(report.figures());
    text += AbsenceCounts{now.onlyInCloud, now.elsewhere}.rows();
    text += rowsOf(figuresOf(report.behind));
    text += mirrorRows(run.mirror);
    text += rowsOf(figuresOf(run.leftOut));
    text += deletionRows(run.deletion);
    text += tableRow(QStringLiteral("Aktarılan"), byteText(run.uploadedBytes));
    text += tableRow(QStringLiteral("Süre"),
                     turkish.toString(report.seconds, 'f', 1) + QStringLiteral(" sn"));
    if (report.unfinished.empty())
        return text.chopped(1);
    text += QStringLiteral("İnceleme gereken öğeler:\n");
    for (const RunReport::Item& item : shown(report))
        text += QStringLiteral("  %1: %2\n").arg(item.name, item.reason);
    const int more = now.failed + now.undated - static_cast<int>(shown(report).size());
    if (more > 0)
        text += QStringLiteral("  … ve %1 öğe daha\n").arg(countText(more));
    if (now.undated > now.undatable)
        text += QStringLiteral("Tarih ipuçları için: quorvane-cli undated\n");
    if (now.undatable > 0)
        text += undatableAdvice() + u'\n';
    return text + QStringLiteral("Yeniden denemek için: quorvane-cli retry");
}

QJsonObject jsonOf(const RunReport& report) {
    const SyncRunOutcome& run = report.run;
    QJsonObject object;
    QJsonObject categories;
    for (const Figure& figure : report.figures())
        if (figure.key)
            object[QLatin1String(figure.key)] = figure.count;
    for (const FailedCategorySummary& failure : report.failures)
        categories[failure.categoryName] = failure.count;
    QJsonArray items;
    for (const RunReport::Item& item : shown(report))
        items += QJsonObject{{QStringLiteral("name"), item.name},
                             {QStringLiteral("status"), rawValue(item.status)},
                             {QStringLiteral("reason"), item.reason}};
    QJsonArray notDeleted;
    for (const DeletionSummary::LeftOut& item : run.deletion.leftOut)
        notDeleted += QJsonObject{{QStringLiteral("name"), item.name},
                                  {QStringLiteral("reason"), item.reason}};
    const std::pair<QString, QJsonValue> rest[] = {
        {QStringLiteral("event"), QStringLiteral("summary")},
        {QStringLiteral("failedByCategory"), categories},
        {QStringLiteral("bytes"), qint64(run.uploadedBytes)},
        {QStringLiteral("seconds"), report.seconds},
        {QStringLiteral("passes"), run.passes},
        {QStringLiteral("stopped"), run.wasStopped},
        {QStringLiteral("albumFull"), run.albumFull},
        {QStringLiteral("leftOut"), jsonOf(figuresOf(run.leftOut))},
        {QStringLiteral("absent"),
         AbsenceCounts{report.now.onlyInCloud, report.now.elsewhere}.json()},
        {QStringLiteral("albums"), mirrorJson(run.mirror)},
        {QStringLiteral("behind"), jsonOf(figuresOf(report.behind))},
        {QStringLiteral("deleted"), run.deletion.deleted},
        {QStringLiteral("notDeleted"), notDeleted},
        {QStringLiteral("items"), items},
        {QStringLiteral("state"), run.state().json()}};
    for (const auto& [name, value] : rest)
        object[name] = value;
    if (run.error)
        object[QStringLiteral("error")] = *run.error;
    return object;
}

int exitCodeOf(const RunReport& report) {
    const SyncRunOutcome& run = report.run;
    if (run.error)
        return failedToRun;
    if (run.fault)
        return exitCodeOf(*run.fault);
    if (run.wasStopped)
        return stopped;
    const bool isMirrored = !run.mirror.failure && run.mirror.refused.isEmpty();
    const int left = report.now.failed + report.now.undated + report.pending;
    return !isMirrored || left + run.leftOut.missed() > 0 ? someItemsLeft : done;
}

} // namespace quorvane::cli

#include "app/RunReport.h"

#include "metadata/LocalCalendar.h"
#include "store/RecordFaults.h"
#include "sync/RecordTransfer.h"

namespace quorvane {

namespace {

/// The record's own text, and what Google said about it.
QString reasonOf(const SyncRecord& record, RecordFaults& faults) {
    const QString text = record.lastError.value_or(QString());
    const auto fault = faults.of(record);
    const bool saysMore = record.syncStatus == SyncStatus::failed && fault &&
                          !fault->reason.isEmpty() && !text.contains(fault->reason);
    return saysMore ? text + QStringLiteral(" (Google: %1)").arg(fault->reason) : text;
}

/// The name a person knows the asset by: the library's, else that of the staged copy.
QString nameOf(const SyncRecord& record, const SyncRunServices& services) {
    const QString& identifier = record.assetLocalIdentifier;
    if (auto name = quorvane::nameOf(services.library, identifier))
        return *std::move(name);
    const auto file = services.staging.findStagingFile(identifier);
    return file ? uploadName(record, *file) : identifier;
}

void gather(RunReport& report, const SyncRunServices& services, int most) {
    DatabaseManager& db = services.db;
    report.now = StoreCounts::of(db);
    report.pending = db.countPendingRecords();
    report.behind = RecordRemainders(db).counts();
    report.failures = db.fetchFailedCategorySummaries();
    RecordFaults faults(db);
    for (const SyncRecord& record : db.fetchUnfinishedRecords(most))
        report.unfinished.push_back(
            {nameOf(record, services), record.syncStatus, reasonOf(record, faults)});
}

void gatherDates(RunReport& report, const SyncRunServices& services) {
    RecordDates dates(services.db);
    report.dated = dates.sent();
    const QString format = QStringLiteral("dd.MM.yyyy HH:mm:ss");
    for (const Misdating& item : dates.misdated()) {
        if (std::ssize(report.misdated) == RunReport::pageItems)
            return;
        SyncRecord record;
        record.assetLocalIdentifier = item.identifier;
        report.misdated.push_back(
            {nameOf(record, services), SyncStatus::verified,
             QStringLiteral("bizde %1, Google'da %2 (UTC)")
                 .arg(utcText(item.ours, format), utcText(item.theirs, format))});
    }
}

} // namespace

RunReport RunReport::of(const SyncRunServices& services, const SyncRunOutcome& outcome,
                        Extent extent) {
    RunReport report;
    report.run = outcome;
    try {
        gather(report, services, extent == Extent::page ? pageItems : shownItems);
        if (extent == Extent::page)
            gatherDates(report, services);
    } catch (const Error& error) {
        if (!report.run.error)
            report.run.error = error.localizedDescription();
    }
    return report;
}

std::vector<Figure> RunReport::figures() const {
    std::vector<Figure> figures{
        {QStringLiteral("Doğrulanan (bu kez)"), "verified", run.verified, true},
        {QStringLiteral("  zaten yüklü, tanınan"), "recognised", run.recognised},
        {QStringLiteral("  Google'da zaten varmış"), "existing", run.existing},
        {QStringLiteral("  tarihi addaki sayı"), "datedByNumber", run.datedByNumber},
        {QStringLiteral("Doğrulanan (toplam)"), "verifiedTotal", now.verified, true},
        {QStringLiteral("  Google'da başka tarihte"), "misdated", now.misdated},
        {QStringLiteral("Tarihi bilinmeyen"), "undated", now.undated, true},
        {QStringLiteral("  tarih yazılamayan biçim"), "undatable", now.undatable},
        {QStringLiteral("Bekleyen"), "pending", pending, true},
        {QStringLiteral("Başarısız"), "failed", now.failed, true}};
    for (const FailedCategorySummary& failure : failures)
        figures.push_back({QStringLiteral("  ") + failure.categoryName, nullptr, failure.count});
    return figures;
}

} // namespace quorvane

#include "ui/RecordTimeline.h"

#include "metadata/MetadataTypes.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

const QLocale turkish(QLocale::Turkish, QLocale::Turkey);

QString sizeText(const SyncRecord& record) {
    return record.fileSizeBytes
               ? turkish.formattedDataSize(*record.fileSizeBytes, 1, QLocale::DataSizeSIFormat)
               : QString();
}

QString minuteText(Date date) {
    return turkish.toString(QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count()),
                            u"d MMMM yyyy HH:mm"_s);
}

QString failureText(const RecordHistory& history) {
    QStringList parts;
    if (history.fault)
        parts << rawValue(history.fault->code) << history.fault->reason;
    parts << history.record.lastError.value_or(QString());
    parts.removeAll(QString());
    parts.removeDuplicates();
    if (history.record.retryCount > 1)
        parts << u"%1 kez"_s.arg(history.record.retryCount);
    return parts.join(u" · "_s);
}

/// Where it stands; nothing while it waits.
std::optional<TimelineStep> standing(const RecordHistory& history) {
    const SyncRecord& record = history.record;
    const QString reason = record.lastError.value_or(QString());
    switch (record.syncStatus) {
    case SyncStatus::verified:
        return TimelineStep{record.updatedAt, u"oluşturuldu"_s,
                            record.remoteMediaID.value_or(QString())};
    case SyncStatus::deletedLocally:
        return TimelineStep{record.updatedAt, u"aslı silindi"_s,
                            record.remoteMediaID.value_or(QString())};
    case SyncStatus::failed:
        return TimelineStep{record.updatedAt, u"başarısız"_s, failureText(history), true};
    case SyncStatus::dateUnresolved:
        return TimelineStep{record.updatedAt, u"bekletildi"_s, reason, true};
    case SyncStatus::excluded:
        return TimelineStep{record.updatedAt, u"dışarıda bırakıldı"_s, reason, true};
    case SyncStatus::discovered:
    case SyncStatus::staged:
    case SyncStatus::uploading:
        break;
    }
    return std::nullopt;
}

} // namespace

std::vector<TimelineStep> timelineOf(const RecordHistory& history,
                                     const std::vector<LogEntry>& linesAboutIt) {
    const SyncRecord& record = history.record;
    std::vector<TimelineStep> steps{{record.createdAt, u"keşfedildi"_s, {}}};
    if (history.staged)
        steps.push_back({*history.staged, u"hazırlandı"_s, sizeText(record)});
    const auto source = history.date ? dateSourceFrom(history.date->source) : std::nullopt;
    if (source)
        steps.push_back({history.staged.value_or(record.createdAt),
                         u"tarih: "_s + sourceText(*source), minuteText(history.date->date)});
    if (history.uploaded)
        steps.push_back({*history.uploaded, u"yüklendi"_s, sizeText(record)});
    if (const auto last = standing(history))
        steps.push_back(*last);
    for (const LogEntry& line : linesAboutIt)
        if (line.level == LogLevel::error)
            steps.push_back({line.timestamp, u"hata"_s, line.message, true});
    std::ranges::stable_sort(steps, {}, [](const TimelineStep& step) {
        return std::chrono::floor<std::chrono::seconds>(step.time); // as exact as the store is
    });
    return steps;
}

} // namespace quorvane

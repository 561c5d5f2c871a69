#include "sync/DateGate.h"

namespace quorvane {

namespace {

const QString undatedText =
    QStringLiteral("Tarih tespit edilemedi - Google Photos hatalı tarih koruması");
const QString undatableText =
    QStringLiteral("Bu biçime tarih yazılamaz - isterseniz olduğu gibi yüklenir");

} // namespace

bool DateGate::passes(const SyncRecord& record, StagedFile& file, const std::stop_token& stop) {
    if (s_.metadata.hasEmbeddedDate(file.path, file.originalName, stop))
        return true;
    const auto mode =
        dateFallbackModeFrom(
            s_.preferences.string(preferenceKeys::dateFallbackMode).value_or(QString()))
            .value_or(DateFallbackMode::strictNone);
    const MetadataResult result = s_.staging.ensureMetadata(file, record, mode, stop);
    const bool isUnresolved = result.which == MetadataResult::Case::unresolvedDate;
    if (!isUnresolved && s_.metadata.carriesDate(file.path, result, file.originalName, stop))
        return true;
    const bool isKindToBlame = s_.metadata.isUndatable(file.path, file.originalName, stop);
    // Also a damaged file may refuse the date that is known.
    const bool isUndatable = isKindToBlame || !isUnresolved;
    const auto choice = RecordDates(s_.db).choiceOf(record.assetLocalIdentifier);
    if (isUndatable && choice && !choice->date) {
        s_.console.print(QStringLiteral("[Sync] Tarihsiz, olduğu gibi yükleniyor: ") +
                         record.assetLocalIdentifier);
        return true;
    }
    holdBack(record, result, isUndatable ? RecordLife::Want::undatable : RecordLife::Want::date,
             isKindToBlame);
    return false;
}

void DateGate::holdBack(const SyncRecord& record, const MetadataResult& result,
                        RecordLife::Want want, bool isKindToBlame) {
    s_.console.notice(
        (result.which == MetadataResult::Case::unresolvedDate
             ? QStringLiteral(
                   "[Sync] 🛑 Tarih tespit edilemedi (DATE_UNRESOLVED), upload engellendi: ")
             : QStringLiteral("[Sync] 🛑 Dosyada geçerli gömülü tarih bulunamadı, upload "
                              "engellendi: ")) +
            record.assetLocalIdentifier,
        record.assetLocalIdentifier);
    s_.life.heldBack(record, isKindToBlame ? undatableText : undatedText, want);
}

} // namespace quorvane

#include "metadata/MediaMetadataService.h"

#include "foundation/File.h"
#include "metadata/FileDates.h"
#include "metadata/FilenameDates.h"
#include "metadata/ImageMetadata.h"
#include "metadata/LocalCalendar.h"
#include "metadata/RawDates.h"
#include "metadata/movie/MovieMetadata.h"

#include <QUuid>

namespace quorvane {

/// One file and what is known of it.
struct MediaMetadataService::Request {
    const std::filesystem::path& file;
    const std::optional<AssetFacts>& asset;
    const std::optional<QString>& assetLocalIdentifier;
    DateFallbackMode fallbackMode;
    const QString& originalFileName;
    const std::stop_token& stop;
};

namespace {

class SilentLog final : public Log {
  public:
    void log(const QString& /*message*/) override {}
};

/// The name whose extension tells the kind: a staged copy has that of the original.
QString extensionOf(const std::filesystem::path& file, const QString& originalFileName) {
    const auto name = originalFileName.isEmpty() ? file : pathFrom(originalFileName);
    return pathText(name.extension()).mid(1).toLower();
}

/// A source of dates that fails is a source without a date, unless it is the system that fails:
/// another source would then give another date.
template <typename Source>
std::optional<Date> dateFrom(Source&& source) {
    try {
        return writableDate(source());
    } catch (const std::exception& error) {
        if (isSystems(error))
            throw;
        return std::nullopt;
    }
}

std::optional<Date> embeddedDate(const std::filesystem::path& file, const QString& originalFileName,
                                 const std::stop_token& stop) {
    const MediaKind* kind = mediaKindOf(extensionOf(file, originalFileName));
    return dateFrom([&]() -> std::optional<Date> {
        switch (kind == nullptr ? DateReading::none : kind->reading) {
        case DateReading::exif:
            return readExistingImageDate(file, stop);
        case DateReading::rawExif:
            return exif::instantOf(readRawDates(file));
        case DateReading::movie:
            return readExistingVideoDate(file, {.stop = stop}, originalFileName);
        case DateReading::none:
            break;
        }
        return std::nullopt;
    });
}

std::optional<ResolvedDate> with(DateSource source, const std::optional<Date>& date) {
    return date ? std::optional(ResolvedDate{*date, source}) : std::nullopt;
}

} // namespace

MediaMetadataService::MediaMetadataService(AssetFactsSource& assets,
                                           std::filesystem::path picturesFolder, Log& log,
                                           Clock& clock)
    : assets_(assets),
      photosDatabase_(std::move(picturesFolder), clock),
      log_(log),
      clock_(clock) {}

MetadataResult MediaMetadataService::ensureMetadata(
    const std::filesystem::path& file, const std::optional<AssetFacts>& asset,
    const std::optional<QString>& assetLocalIdentifier, DateFallbackMode fallbackMode,
    const QString& originalFileName, const std::stop_token& stop) {
    return ensure({file, asset, assetLocalIdentifier, fallbackMode, originalFileName, stop},
                  Effect::write, log_);
}

MetadataForecast MediaMetadataService::wouldEnsureMetadata(
    const std::filesystem::path& original, const std::optional<AssetFacts>& asset,
    const std::optional<QString>& assetLocalIdentifier, DateFallbackMode fallbackMode,
    const QString& originalFileName, const std::stop_token& stop) {
    SilentLog silent;
    MetadataResult result =
        ensure({original, asset, assetLocalIdentifier, fallbackMode, originalFileName, stop},
               Effect::none, silent);
    const bool carries = carriesDate(original, result, originalFileName, stop);
    return {std::move(result), carries};
}

MetadataResult MediaMetadataService::ensure(const Request& request, Effect effect, Log& log) {
    const QString extension = extensionOf(request.file, request.originalFileName);
    const auto resolved = resolve(request, log);
    if (!resolved) {
        log.log(QStringLiteral("[Metadata] ⚠️ Tarih çözümlenemedi (UNRESOLVED_DATE): ") +
                pathText(request.file.filename()));
        return MetadataResult::unresolvedDate();
    }
    const MediaKind* kind = mediaKindOf(extension);
    MetadataResult result =
        MetadataResult::failed(QStringLiteral("Desteklenmeyen dosya uzantısı: ") + extension);
    result.source = resolved->source;
    switch (kind == nullptr ? DateWriting::none : kind->writing) {
    case DateWriting::exif:
        result = enrichImageMetadata(request.file, resolved->date, request.asset, log, effect,
                                     request.stop);
        break;
    case DateWriting::movie:
        result = enrichVideoMetadata(request.file, resolved->date, log, effect, request.stop);
        break;
    case DateWriting::none:
        if (const auto own = embeddedDate(request.file, request.originalFileName, request.stop)) {
            result = MetadataResult::skippedAlreadyHasDate(*own);
            result.source = DateSource::embedded;
            return result;
        }
        break;
    }
    result.source = resolved->source;
    return result;
}

std::optional<ResolvedDate> MediaMetadataService::resolveDate(
    const std::filesystem::path& file, const std::optional<AssetFacts>& asset,
    const std::optional<QString>& assetLocalIdentifier, DateFallbackMode fallbackMode,
    const QString& originalFileName, const std::stop_token& stop) {
    return resolve({file, asset, assetLocalIdentifier, fallbackMode, originalFileName, stop}, log_);
}

std::optional<ResolvedDate> MediaMetadataService::resolve(const Request& request, Log& log) {
    const auto& asset = request.asset;
    if (asset && asset->chosenDate)
        return with(DateSource::chosen, asset->chosenDate);
    if (const auto date = dateFrom([&] { return asset ? asset->creationDate : std::nullopt; }))
        return with(DateSource::asset, date);
    const auto identifier = request.assetLocalIdentifier
                                ? request.assetLocalIdentifier
                                : identifierOfStagedName(pathText(request.file.filename()));
    if (identifier)
        if (const auto date = dateOfAsset(*identifier, log))
            return date;
    if (const auto date = embeddedDate(request.file, request.originalFileName, request.stop))
        return with(DateSource::embedded, date);
    if (const auto date = dateOfName(request))
        return date;
    return fallbackDate(request, log);
}

bool MediaMetadataService::hasEmbeddedDate(const std::filesystem::path& file,
                                           const QString& originalFileName,
                                           const std::stop_token& stop) {
    return embeddedDate(file, originalFileName, stop).has_value();
}

bool MediaMetadataService::carriesDate(const std::filesystem::path& file,
                                       const MetadataResult& result,
                                       const QString& originalFileName,
                                       const std::stop_token& stop) {
    return result.statesDate || hasEmbeddedDate(file, originalFileName, stop);
}

bool MediaMetadataService::isUndatable(const std::filesystem::path& file,
                                       const QString& originalFileName,
                                       const std::stop_token& stop) {
    const MediaKind* kind = mediaKindOf(extensionOf(file, originalFileName));
    return (kind == nullptr || !kind->isDatable()) &&
           !hasEmbeddedDate(file, originalFileName, stop);
}

std::optional<ResolvedDate> MediaMetadataService::dateOfAsset(const QString& identifier, Log& log) {
    const auto known = dateFrom([&]() -> std::optional<Date> {
        const auto asset = assets_.factsOf(identifier);
        return asset ? asset->creationDate : std::nullopt;
    });
    if (known)
        return with(DateSource::asset, known);
    const auto leftover = photosDatabase_.queryDateFromPhotosSQLite(identifier);
    if (leftover)
        log.log(QStringLiteral(
                    "[Metadata] 🗄️ Photos.sqlite kalıntı taramasından tarih bulundu: "
                    "%1 (ID: %2)")
                    .arg(describe(*leftover), identifier));
    return with(DateSource::photosDatabase, leftover);
}

std::optional<ResolvedDate> MediaMetadataService::dateOfName(const Request& request) {
    const Date now = clock_.now();
    if (!request.originalFileName.isEmpty())
        return parseDateFromFilename(request.originalFileName, now);
    const QString name = pathText(request.file.filename());
    if (const auto date = parseDateFromFilename(stripSafeIDPrefix(name), now))
        return date;
    // The digits of an identifier are chance: one in seven hundred would pass for a Unix time.
    if (!QUuid::fromString(QStringView(name).left(36)).isNull())
        return std::nullopt;
    return parseDateFromFilename(name, now);
}

std::optional<ResolvedDate> MediaMetadataService::fallbackDate(const Request& request, Log& log) {
    switch (request.fallbackMode) {
    case DateFallbackMode::strictNone:
        return std::nullopt;
    case DateFallbackMode::today:
        return ResolvedDate{clock_.now(), DateSource::today};
    case DateFallbackMode::fileSaveDate:
        break;
    }
    const auto saved = readFileCreationDate(request.file);
    if (saved)
        log.log(QStringLiteral("[Metadata] 🕒 Dosya kayıt/oluşturulma tarihi kullanıldı: ") +
                describe(*saved));
    return with(DateSource::fileSaveDate, saved);
}

} // namespace quorvane

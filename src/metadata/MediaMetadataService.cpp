#include "metadata/MediaMetadataService.h"

#include "foundation/File.h"
#include "metadata/FileDates.h"
#include "metadata/FilenameDates.h"
#include "metadata/ImageMetadata.h"
#include "metadata/LocalCalendar.h"
#include "metadata/MovieMetadata.h"

#include <QUuid>

#include <algorithm>
#include <array>

namespace quorvane {

namespace {

constexpr std::array<QStringView, 8> imageExtensions = {u"jpg", u"jpeg", u"heic", u"heif",
                                                        u"png", u"tiff", u"tif",  u"webp"};
constexpr std::array<QStringView, 3> videoExtensions = {u"mov", u"mp4", u"m4v"};

QString extensionOf(const std::filesystem::path& file) {
    return pathText(file.extension()).mid(1).toLower();
}

/// A source of dates that fails is a source without a date.
template <typename Source>
std::optional<Date> dateFrom(Source&& source) noexcept {
    try {
        return writableDate(source());
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace

bool isImageExtension(const QString& extension) {
    return std::ranges::find(imageExtensions, extension) != imageExtensions.end();
}

bool isVideoExtension(const QString& extension) {
    return std::ranges::find(videoExtensions, extension) != videoExtensions.end();
}

MediaMetadataService::MediaMetadataService(AssetFactsSource& assets,
                                           std::filesystem::path picturesFolder, Log& log,
                                           Clock& clock)
    : assets_(assets),
      photosDatabase_(std::move(picturesFolder), clock),
      log_(log),
      clock_(clock) {}

MetadataResult MediaMetadataService::ensureMetadata(
    const std::filesystem::path& file, const std::optional<AssetFacts>& asset,
    const std::optional<QString>& assetLocalIdentifier, DateFallbackMode fallbackMode) noexcept {
    const QString extension = extensionOf(file);
    const std::optional<Date> date = resolveDate(file, asset, assetLocalIdentifier, fallbackMode);
    if (!date) {
        log_.log(QStringLiteral("[Metadata] ⚠️ Tarih çözümlenemedi (UNRESOLVED_DATE): ") +
                 pathText(file.filename()));
        return MetadataResult::unresolvedDate();
    }
    if (isImageExtension(extension))
        return enrichImageMetadata(file, *date, asset, log_);
    if (isVideoExtension(extension))
        return enrichVideoMetadata(file, *date, log_);
    return MetadataResult::failed(QStringLiteral("Desteklenmeyen dosya uzantısı: ") + extension);
}

std::optional<Date> MediaMetadataService::resolveDate(
    const std::filesystem::path& file, const std::optional<AssetFacts>& asset,
    const std::optional<QString>& assetLocalIdentifier, DateFallbackMode fallbackMode) noexcept {
    const QString name = pathText(file.filename());
    const auto identifier =
        assetLocalIdentifier ? assetLocalIdentifier : identifierOfStagedName(name);

    if (const auto date = dateFrom([&] { return asset ? asset->creationDate : std::nullopt; }))
        return date;
    if (identifier)
        if (const auto date = dateOfAsset(*identifier))
            return date;
    if (const auto date = dateFrom([&] { return embeddedDate(file); }))
        return date;
    if (const auto date = parseDateFromFilename(stripSafeIDPrefix(name)))
        return date;
    // The digits of an identifier are chance: one in seven hundred would pass for a Unix time.
    if (QUuid::fromString(QStringView(name).left(36)).isNull())
        if (const auto date = parseDateFromFilename(name))
            return date;
    return fallbackDate(file, fallbackMode);
}

bool MediaMetadataService::hasEmbeddedDate(const std::filesystem::path& file) noexcept {
    return embeddedDate(file).has_value();
}

std::optional<Date> MediaMetadataService::dateOfAsset(const QString& identifier) {
    const auto known = dateFrom([&]() -> std::optional<Date> {
        const auto asset = assets_.factsOf(identifier);
        return asset ? asset->creationDate : std::nullopt;
    });
    if (known)
        return known;
    const auto leftover = photosDatabase_.queryDateFromPhotosSQLite(identifier);
    if (leftover)
        log_.log(QStringLiteral(
                     "[Metadata] 🗄️ Photos.sqlite kalıntı taramasından tarih bulundu: "
                     "%1 (ID: %2)")
                     .arg(describe(*leftover), identifier));
    return leftover;
}

std::optional<Date> MediaMetadataService::embeddedDate(const std::filesystem::path& file) {
    const QString extension = extensionOf(file);
    if (isImageExtension(extension))
        return writableDate(readExistingImageDate(file));
    if (isVideoExtension(extension))
        return readExistingVideoDate(file);
    return std::nullopt;
}

std::optional<Date> MediaMetadataService::fallbackDate(const std::filesystem::path& file,
                                                       DateFallbackMode mode) {
    switch (mode) {
    case DateFallbackMode::strictNone:
        return std::nullopt;
    case DateFallbackMode::today:
        return clock_.now();
    case DateFallbackMode::fileSaveDate:
        break;
    }
    const auto saved = readFileCreationDate(file);
    if (saved)
        log_.log(QStringLiteral("[Metadata] 🕒 Dosya kayıt/oluşturulma tarihi kullanıldı: ") +
                 describe(*saved));
    return saved;
}

} // namespace quorvane

#include "sync/GoogleDestination.h"

#include <algorithm>

namespace quorvane {

namespace {

// google.rpc.Code
constexpr qint64 alreadyExistsCode = 6;
constexpr qint64 resourceExhaustedCode = 8;

using Outcome = NewItemResult::Outcome;

/// Of what, was not said: of requests, or of room in the album.
bool isExhausted(const NewMediaItemResult& said) {
    return said.code == resourceExhaustedCode && said.fault->code == FaultCode::rateLimited;
}

NewItemResult resultFrom(const NewMediaItemResult& said) {
    if (!said.isAnswered) {
        const QString text = QStringLiteral("Google yanıtı bu medya için sonuç içermedi; yerel "
                                            "medya güvenlik için saklandı.");
        return {.outcome = Outcome::refused, .reason = text, .detail = text};
    }
    if (said.code == 0 && !said.id.isEmpty())
        return {.outcome = Outcome::created, .remoteID = said.id, .filedUnder = said.creationTime};
    const QString detail =
        said.statusText.isEmpty() ? QStringLiteral("status.code = 0") : said.statusText;
    if (said.fault && said.fault->code == FaultCode::albumFull)
        return {.outcome = Outcome::heldBack, .detail = detail, .fault = said.fault};
    if (said.code == alreadyExistsCode)
        return {.outcome = Outcome::alreadyExists, .detail = detail};
    const QString noID = QStringLiteral("Google yaniti mediaItem.id icermedi; yerel medya güvenlik "
                                        "için saklandı.");
    return {.outcome = Outcome::refused,
            .reason = said.code == 0 ? noID : detail,
            .detail = detail,
            .fault = said.fault};
}

} // namespace

GoogleDestination::GoogleDestination(GoogleLibraryApi& api, GoogleAlbumManager& albums)
    : uploadTask_(api), mediaItems_(api), albums_(albums) {}

QString GoogleDestination::upload(const UploadSource& source, UploadMemory& memory,
                                  const Progress& progress, std::stop_token stop) {
    return uploadTask_.upload(source, memory, progress, std::move(stop));
}

std::vector<NewItemResult> GoogleDestination::create(const std::vector<NewItem>& items,
                                                     std::stop_token stop) {
    std::vector<NewMediaItem> mediaItems;
    mediaItems.reserve(items.size());
    for (const NewItem& item : items)
        mediaItems.push_back({item.uploadToken, item.fileName, item.caption});
    const std::optional<QString> albumID = albums_.targetAlbumID();
    std::vector<NewMediaItemResult> answers = mediaItems_.batchCreate(mediaItems, albumID, stop);
    if (albumID && std::ranges::any_of(answers, isExhausted) && albums_.isFull(*albumID, stop))
        for (NewMediaItemResult& said : answers)
            if (isExhausted(said))
                said.fault->code = FaultCode::albumFull;
    std::vector<NewItemResult> results;
    std::ranges::transform(answers, std::back_inserter(results), resultFrom);
    return results;
}

bool GoogleDestination::hasTargetAlbum() const {
    return albums_.targetAlbumID().has_value();
}

bool GoogleDestination::makeNextAlbum(std::stop_token stop) {
    return albums_.continueInNextPart(std::move(stop));
}

std::optional<std::set<QString>> GoogleDestination::existing(const QStringList& remoteIDs,
                                                             std::stop_token stop) {
    return mediaItems_.batchGet(remoteIDs, stop);
}

} // namespace quorvane

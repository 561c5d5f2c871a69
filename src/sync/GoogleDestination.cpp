#include "sync/GoogleDestination.h"

namespace quorvane {

namespace {

constexpr qint64 alreadyExistsCode = 6; // google.rpc.Code

using Outcome = NewItemResult::Outcome;

bool tellsAlbumLimit(const QString& errorText) {
    return errorText.contains(u"ERR_PHOTO_PER_ALBUM_LIMIT") ||
           errorText.contains(u"maximum number of photos in an album");
}

NewItemResult resultFrom(const NewMediaItemResult& said) {
    if (!said.isAnswered) {
        const QString text = QStringLiteral("Google yanıtı bu medya için sonuç içermedi; yerel "
                                            "medya güvenlik için saklandı.");
        return {.outcome = Outcome::refused, .reason = text, .detail = text};
    }
    if (said.code == 0 && !said.id.isEmpty())
        return {.outcome = Outcome::created, .remoteID = said.id};
    const QString detail =
        said.statusText.isEmpty() ? QStringLiteral("status.code = 0") : said.statusText;
    if (tellsAlbumLimit(detail))
        return {.outcome = Outcome::heldBack, .detail = detail};
    if (said.code == alreadyExistsCode)
        return {.outcome = Outcome::alreadyExists, .detail = detail};
    const QString noID = QStringLiteral("Google yaniti mediaItem.id icermedi; yerel medya güvenlik "
                                        "için saklandı.");
    return {
        .outcome = Outcome::refused, .reason = said.code == 0 ? noID : detail, .detail = detail};
}

} // namespace

GoogleDestination::GoogleDestination(HttpClient& http, AccessTokenProvider& tokens,
                                     GoogleAlbumManager& albums, const GoogleEndpoints& endpoints)
    : uploadTask_(http, tokens, endpoints), mediaItems_(http, tokens, endpoints), albums_(albums) {}

QString GoogleDestination::upload(const std::filesystem::path& file, const QString& fileName,
                                  const Progress& progress, std::stop_token stop) {
    return uploadTask_.upload(file, fileName, progress, std::move(stop));
}

std::vector<NewItemResult> GoogleDestination::create(const std::vector<NewItem>& items,
                                                     std::stop_token stop) {
    std::vector<NewMediaItem> mediaItems;
    for (const NewItem& item : items)
        mediaItems.push_back({item.uploadToken, item.fileName});
    std::vector<NewItemResult> results;
    for (const NewMediaItemResult& said :
         mediaItems_.batchCreate(mediaItems, albums_.targetAlbumID(), stop))
        results.push_back(resultFrom(said));
    return results;
}

bool GoogleDestination::hasTargetAlbum() const {
    return albums_.targetAlbumID().has_value();
}

void GoogleDestination::makeNextAlbum(std::stop_token stop) {
    albums_.createAndSelectNextPartAlbum(std::move(stop));
}

std::optional<std::set<QString>> GoogleDestination::existing(const QStringList& remoteIDs,
                                                             std::stop_token stop) {
    return mediaItems_.batchGet(remoteIDs, stop);
}

} // namespace quorvane

#include "sync/AlbumMirror.h"

#include "google/GoogleAlbumManager.h"

#include <algorithm>

namespace quorvane {

namespace {

using State = MirrorAlbum::State;

std::optional<FaultCode> codeOf(const Error& error) {
    const auto& fault = error.fault();
    return fault ? std::optional(fault->code) : std::nullopt;
}

} // namespace

MirrorOutcome AlbumMirror::run(const std::stop_token& stop) {
    outcome_ = {};
    parts_.clear();
    try {
        for (MirrorAlbum& part : s_.state.albums())
            parts_[part.album].push_back(std::move(part));
        items_ = s_.state.mediaItems();
        takeStock(stop);
        for (const AssetCollection& album : s_.library.fetchAssetCollections(
                 CollectionType::album, collectionSubtype::albumRegular))
            mirror(album, stop);
    } catch (const Error& error) {
        outcome_.failure = error.localizedDescription();
        s_.log.log(QStringLiteral(
                       "[Album] ⚠️ Albümler tamamlanamadı, sonraki eşitlemede sürecek: ") +
                   *outcome_.failure);
    }
    if (outcome_.added > 0 || outcome_.made > 0)
        s_.log.log(QStringLiteral("[Album] %1 öğe albümlere eklendi, %2 albüm oluşturuldu")
                       .arg(outcome_.added)
                       .arg(outcome_.made));
    return outcome_;
}

/// What became of the albums since the last run: one that was asked for by a run which died is
/// taken over when it is there, empty and nobody else's; one that is not there was deleted.
void AlbumMirror::takeStock(const std::stop_token& stop) {
    if (parts_.empty())
        return;
    std::vector<GoogleAlbum> there =
        s_.attempts.patiently(stop, [&] { return s_.contents.ownAlbums(stop); });
    const auto takeOut = [&](auto predicate) { // its id; empty when there is none
        const auto found = std::ranges::find_if(there, predicate);
        if (found == there.end())
            return QString();
        QString id = found->id;
        there.erase(found);
        return id;
    };
    for (auto& [album, parts] : parts_)
        for (MirrorAlbum& part : parts)
            if (part.state != State::making && part.state != State::gone &&
                takeOut([&](const GoogleAlbum& each) {
                    return each.id == part.remoteID;
                }).isEmpty())
                setState(part, State::gone);
    for (auto& [album, parts] : parts_)
        for (MirrorAlbum& part : parts)
            if (part.state == State::making) {
                part.remoteID = takeOut([&](const GoogleAlbum& each) {
                    return each.title == part.title && each.itemCount() == 0;
                });
                if (part.remoteID.isEmpty())
                    continue;
                setState(part, State::open);
                ++outcome_.made;
            }
    std::erase_if(parts_, [&](const auto& each) {
        const bool isGone =
            std::ranges::find(each.second, State::gone, &MirrorAlbum::state) != each.second.end();
        if (isGone && remakesGone)
            s_.state.forget(each.first);
        return isGone && remakesGone;
    });
}

void AlbumMirror::mirror(const AssetCollection& album, const std::stop_token& stop) {
    const QString& identifier = album.localIdentifier;
    const QString title = album.title.trimmed().isEmpty() ? QStringLiteral("İsimsiz") : album.title;
    for (const MirrorAlbum& part : parts_[identifier])
        if (part.state == State::gone) {
            outcome_.gone += part.title;
            return;
        }
    QStringList items = lacking(album);
    for (qsizetype next = 0; next < items.size();) {
        MirrorAlbum& part = openPart(identifier, title, stop);
        const qsizetype room = GoogleAlbum::capacity - s_.state.countIn(identifier, part.part);
        const QStringList some =
            items.mid(next, std::min(GoogleAlbumContents::atOnce, std::max<qsizetype>(room, 0)));
        if (some.isEmpty()) {
            setState(part, State::full);
            continue;
        }
        if (addSome(part, some, stop)) {
            next += some.size();
            continue;
        }
        if (part.state == State::gone)
            return;
        items = lacking(album); // some of them may have found room
        next = 0;
    }
}

/// The media items of the album's assets that were not put into it yet, in the album's order.
QStringList AlbumMirror::lacking(const AssetCollection& album) {
    std::set<QString> known = s_.state.itemsOf(album.localIdentifier);
    const AssetFetchResult assets = s_.library.fetchAssets(album);
    QStringList items;
    for (const PhotoAsset& asset : *assets)
        if (const auto item = items_.find(asset.localIdentifier);
            item != items_.end() && known.insert(item->second).second)
            items += item->second;
    return items;
}

/// False when the part takes no more: it is full or gone by now. What is refused is halved until
/// the item that is to blame stands alone.
bool AlbumMirror::addSome(MirrorAlbum& part, const QStringList& items,
                          const std::stop_token& stop) {
    try {
        s_.attempts.patiently(stop, [&] {
            s_.contents.add(part.remoteID, items, stop);
            return true;
        });
    } catch (const Error& error) {
        const auto code = codeOf(error);
        const bool isFull = code == FaultCode::albumFull && items.size() == 1 &&
                            s_.state.countIn(part.album, part.part) > 0;
        if (isFull || code == FaultCode::albumGone) {
            setState(part, isFull ? State::full : State::gone);
            if (part.state == State::gone)
                outcome_.gone += part.title;
            return false;
        }
        if (code != FaultCode::itemRefused && code != FaultCode::albumFull)
            throw;
        if (items.size() > 1) { // also to fill an album to its brim
            const qsizetype half = items.size() / 2;
            return addSome(part, items.first(half), stop) &&
                   addSome(part, items.sliced(half), stop);
        }
        s_.log.log(QStringLiteral("[Album] ⚠️ '%1' albümüne eklenemedi: %2 (%3)")
                       .arg(part.title, items.front(), error.localizedDescription()));
        outcome_.refused += items.front();
        s_.state.added(part.album, 0, items);
        return true;
    }
    s_.state.added(part.album, part.part, items);
    outcome_.added += static_cast<int>(items.size());
    return true;
}

/// The part that goes on, made when there is none. That it is asked for is written down first: a
/// run that dies meanwhile leaves one album, not two.
MirrorAlbum& AlbumMirror::openPart(const QString& album, const QString& title,
                                   const std::stop_token& stop) {
    std::vector<MirrorAlbum>& parts = parts_[album];
    if (parts.empty() || parts.back().state == State::full) {
        MirrorAlbum next;
        next.album = album;
        if (!parts.empty()) {
            next.part = parts.back().part + 1;
            next.title = GoogleAlbumManager::nextPartTitle(parts.back().title);
        } else {
            next.title = title.left(GoogleAlbumContents::longestTitle);
        }
        s_.state.save(next);
        parts.push_back(next);
    }
    MirrorAlbum& part = parts.back();
    if (part.state == State::making) {
        part.remoteID = make(part.title, stop);
        setState(part, State::open);
        ++outcome_.made;
    }
    return part;
}

/// An album whose answer got lost is there all the same.
QString AlbumMirror::make(const QString& title, const std::stop_token& stop) {
    bool wasAskedFor = false;
    return s_.attempts.patiently(stop, [&] {
        const QString lost = std::exchange(wasAskedFor, true) ? unclaimed(title, stop) : QString();
        return lost.isEmpty() ? s_.contents.make(title, stop).id : lost;
    });
}

/// The empty album of that title that stands for none of the library's; empty when there is none.
QString AlbumMirror::unclaimed(const QString& title, const std::stop_token& stop) {
    const auto isClaimed = [&](const GoogleAlbum& album) {
        return std::ranges::any_of(parts_, [&](const auto& each) {
            return std::ranges::find(each.second, album.id, &MirrorAlbum::remoteID) !=
                   each.second.end();
        });
    };
    for (const GoogleAlbum& album : s_.contents.ownAlbums(stop))
        if (album.title == title && album.itemCount() == 0 && !isClaimed(album))
            return album.id;
    return {};
}

void AlbumMirror::setState(MirrorAlbum& part, State state) {
    part.state = state;
    s_.state.save(part);
}

} // namespace quorvane

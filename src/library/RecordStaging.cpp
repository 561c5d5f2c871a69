#include "library/RecordStaging.h"

#include "foundation/File.h"
#include "library/Absences.h"
#include "library/MovieJoin.h"
#include "library/StagedName.h"

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

/// So much of a file is freed within some tens of milliseconds.
constexpr std::int64_t removedAtOnce = 32 << 20;

/// True when a staged file is there. Something else in its place is refused: what a link leads to
/// is not ours to rewrite.
bool isStaged(const std::filesystem::path& file) {
    struct stat info {};
    if (::lstat(file.c_str(), &info) != 0)
        return false;
    if (!S_ISREG(info.st_mode))
        throw FileError(QStringLiteral("Hazırlık dosyası yerinde başka bir şey var"), file, EEXIST);
    return true;
}

/// What the staging of an asset takes on the disk at most: a movie that is joined stands there
/// twice, and its still as well.
std::optional<std::int64_t> roomFor(const RecordStaging::Source& source) {
    const auto movie = movieToJoin(source.resources);
    if (!movie || !source.resource.fileSize)
        return source.resource.fileSize;
    return 2 * (*source.resource.fileSize + movie->fileSize.value_or(0));
}

StagedFile proven(const std::filesystem::path& file, const HashAndSize& content,
                  const QString& originalName = {}) {
    const auto version = fileVersion(file);
    if (!version)
        throw FileError(QStringLiteral("Dosya okunamadı"), file, ENOENT);
    return {file, originalName, content, *version};
}

std::optional<RecordDate> dateIn(const MetadataResult& result) {
    if (!result.date || !result.source)
        return std::nullopt;
    return RecordDate{*result.date, rawValue(*result.source)};
}

} // namespace

/// The record is read again: another caller, in this process or another, may have staged it since.
std::optional<StagedFile> RecordStaging::stage(const SyncRecord& before,
                                               const std::stop_token& stop) {
    const QString& identifier = before.assetLocalIdentifier;
    const auto record = s_.database.fetchRecord(identifier, before.providerID, before.accountID);
    const bool isStaged = record && record->syncStatus == SyncStatus::staged;
    if (!record || (!isStaged && record->syncStatus != SyncStatus::discovered))
        return std::nullopt;
    if (isStaged)
        if (auto file = provenCopy(*record, stop))
            return file;
    std::optional<Source> source;
    try {
        source = sourceOf(identifier);
    } catch (const PhotoLibraryError& error) { // nothing was tried yet: the record stays as it is
        if (isMachines(error))
            throw;
        printError(identifier, error.localizedDescription());
        return std::nullopt;
    }
    if (!source && isStaged && !record->sha256Hash)
        return rescue(*record, stop);
    if (isStaged)
        s_.life.requeued(*record);
    if (!source) {
        const auto file = provenCopy(*record, stop);
        return file ? recordCopy(*record, *file, s_.life.sourceOf(identifier)) : std::nullopt;
    }
    unavailable_.erase(identifier);
    if (const auto& absence = source->resource.absence) {
        if (const auto file = provenCopy(*record, stop))
            return recordCopy(*record, *file, s_.life.sourceOf(identifier));
        s_.life.absent(*record, codeOf(*absence), absence->reason);
        return std::nullopt;
    }
    return stageAsset(*record, *source, stop);
}

std::optional<StagedFile> RecordStaging::stageAsset(const SyncRecord& record, const Source& source,
                                                    const std::stop_token& stop) {
    const QString& identifier = record.assetLocalIdentifier;
    try {
        const auto known = s_.life.sourceOf(identifier);
        if (known && isMadeOf(*known, source.resource, source.resources))
            if (const auto file = provenCopy(record, stop)) // its run was stopped while sending
                return recordCopy(record, *file, known);
        return exportAndRecord(record, source, known, stop);
    } catch (const Error& error) {
        if (isMachines(error))
            throw;
        requireThere(s_.library); // else every original would be found unreadable
        printError(identifier, error.localizedDescription());
        s_.life.stageFailed(record, error.localizedDescription(), error.fault());
    }
    return std::nullopt;
}

/// None when there is no copy, or when its bytes are not those of the record.
std::optional<StagedFile> RecordStaging::provenCopy(const SyncRecord& record,
                                                    const std::stop_token& stop) {
    if (!record.sha256Hash || !record.fileSizeBytes)
        return std::nullopt;
    const auto file = copies_.find(record.assetLocalIdentifier);
    if (!file)
        return std::nullopt;
    const HashAndSize expected{*record.sha256Hash, *record.fileSizeBytes};
    try {
        if (copies_.hashOf(*file, stop) == expected)
            return proven(*file, expected);
    } catch (const FileError& error) { // a copy that cannot be read is made anew
        printError(record.assetLocalIdentifier, error.localizedDescription());
    }
    return std::nullopt;
}

/// The copy is all that is left of the asset. It is sent as it is and never proves anything, since
/// nobody knows what it was made of.
std::optional<StagedFile> RecordStaging::rescue(SyncRecord record, const std::stop_token& stop) {
    const auto file = copies_.find(record.assetLocalIdentifier);
    if (!file)
        return std::nullopt;
    unavailable_.erase(record.assetLocalIdentifier);
    const HashAndSize content = copies_.hashOf(*file, stop);
    record.sha256Hash = content.sha256;
    record.fileSizeBytes = content.sizeBytes;
    return s_.life.redated(record) ? std::optional(proven(*file, content)) : std::nullopt;
}

std::optional<RecordStaging::Source> RecordStaging::sourceOf(const QString& identifier) {
    const AssetFetchResult assets = s_.library.fetchAssets(QStringList{identifier});
    if (!assets || assets->empty()) {
        missing(QStringLiteral("Asset"), identifier);
        return std::nullopt;
    }
    auto resources = s_.library.assetResources(assets->front());
    const auto resource = resourceToStage(resources);
    if (!resource) {
        missing(QStringLiteral("Resource"), identifier);
        return std::nullopt;
    }
    return Source{assets->front(), *resource, std::move(resources)};
}

/// None when the record was cleared or moved on meanwhile: it is not brought back to this state.
std::optional<StagedFile> RecordStaging::recordCopy(const SyncRecord& record,
                                                    const StagedFile& copy,
                                                    const std::optional<RecordSource>& source) {
    SyncRecord staged = record;
    staged.sha256Hash = copy.content.sha256;
    staged.fileSizeBytes = copy.content.sizeBytes;
    if (!s_.life.staged(staged, source, copy.date))
        return std::nullopt;
    return copy;
}

std::optional<StagedFile> RecordStaging::exportAndRecord(const SyncRecord& record,
                                                         const Source& source,
                                                         const std::optional<RecordSource>& known,
                                                         const std::stop_token& stop) {
    StagingFolder& folder = copies_.folderForStaging();
    const std::filesystem::path name =
        stagedFileName(record.assetLocalIdentifier, source.resource.originalFilename);
    const std::filesystem::path file = folder.path() / name;
    auto aside = makeWay(source, known, file);
    const StagingFolder::OwnChange change(folder, name);
    try {
        if (const auto room = roomFor(source); room && !copies_.makeRoom(*room))
            throw FileError(QStringLiteral("Dosya kopyalanamadı"), file, ENOSPC);
        auto exported = exportDated(record, source, file, stop);
        StagedFile& copy = exported.first;
        const RecordSource& original = exported.second;
        copy.isFirst = !known;
        if (aside)
            settleAside(*aside, original, copy, stop);
        aside.reset();
        std::optional<StagedFile> staged;
        s_.life.together([&] {
            s_.life.leavesBehind(record, remainderOf(source.resources, original.movie.has_value()));
            staged = recordCopy(record, copy, original);
        });
        if (!staged) // recovery would bring it back to the queue
            ::unlink(file.c_str());
        return staged;
    } catch (const Cancelled&) {
        if (aside) // the next run makes the same way again
            copies_.putBack(*aside, file);
        else if (fileVersion(file).value_or(FileVersion()).size <= removedAtOnce)
            ::unlink(file.c_str()); // a large file takes its time
        throw;
    } catch (...) {
        if (aside)
            tellAside(*aside);
        ::unlink(file.c_str());
        throw;
    }
}

/// What is in the place of the copy to come has bytes that nobody knows. It may be the last of an
/// original that has changed since; then its new place is returned.
std::optional<std::filesystem::path>
RecordStaging::makeWay(const Source& source, const std::optional<RecordSource>& known,
                       const std::filesystem::path& file) {
    const QString& identifier = source.asset.localIdentifier;
    std::optional<std::filesystem::path> old;
    if (isStaged(file))
        old = file;
    else if (known) // else nothing was ever staged of it, by any name
        old = copies_.find(identifier);
    if (!old)
        return std::nullopt;
    if (!known || !isUnchanged(*known, source.resources))
        return copies_.setAside(*old);
    copies_.removeAll(identifier);
    return std::nullopt;
}

std::pair<StagedFile, RecordSource> RecordStaging::exportDated(const SyncRecord& record,
                                                               const Source& source,
                                                               const std::filesystem::path& file,
                                                               const std::stop_token& stop) {
    const SourceContent content = s_.library.writeData(source.resource, file, stop);
    RecordSource original{content.sha256, content.version, content.sample};
    // A movie is dated in place, or joined to its still: a kill in between leaves bytes that nobody
    // else could explain.
    if (record.mediaType == MediaType::video || movieToJoin(source.resources))
        s_.life.exporting(record, original);
    // Without a fallback: whether a file with no date may be uploaded is decided by the sync.
    const MetadataResult result = s_.metadata.ensureMetadata(
        file, source.asset.facts(), std::nullopt, DateFallbackMode::strictNone,
        source.resource.originalFilename, stop);
    if (result.date)
        original.movie = joined(source, file, result.date, stop);
    const HashAndSize dated = copies_.hashOf(file, stop);
    s_.console.print(QStringLiteral("[Staging] Tamamlandı (Metadata Enjekte Edildi): %1 (%2 bytes)")
                         .arg(source.resource.originalFilename, QString::number(dated.sizeBytes)));
    StagedFile copy = proven(file, dated, source.resource.originalFilename);
    copy.date = dateIn(result);
    return {copy, original};
}

/// The original gave the same bytes again, or this is all that is left of another version.
void RecordStaging::settleAside(const std::filesystem::path& aside, const RecordSource& original,
                                const StagedFile& copy, const std::stop_token& stop) {
    const HashAndSize old = copies_.hashOf(aside, stop);
    if (old == copy.content || old.sha256 == original.sha256)
        copies_.removeAside(aside);
    else
        tellAside(aside);
}

/// True when the copy was made of any of the asset's files that is there as it was.
bool RecordStaging::isUnchanged(const RecordSource& known,
                                const std::vector<PhotoAssetResource>& resources) {
    return std::ranges::any_of(resources,
                               [&](const auto& each) { return isMadeOf(known, each, resources); });
}

/// True when the file is, as far as its file system tells, what was staged of the asset last; with
/// the movie that was joined to it.
bool RecordStaging::isMadeOf(const RecordSource& known, const PhotoAssetResource& resource,
                             const std::vector<PhotoAssetResource>& resources) {
    if (s_.library.versionOf(resource) != known.version)
        return false;
    return !known.movie || std::ranges::any_of(resources, [&](const auto& each) {
        return s_.library.versionOf(each) == known.movie->version;
    });
}

/// A movie that cannot be joined stays behind, and the still goes up alone. None then, and where
/// there is none to join.
std::optional<RecordSource::Movie> RecordStaging::joined(const Source& source,
                                                         const std::filesystem::path& still,
                                                         const std::optional<Date>& date,
                                                         const std::stop_token& stop) {
    const auto movie = movieToJoin(source.resources);
    if (!movie || !date)
        return std::nullopt;
    try {
        return joinMovie(s_.library, *movie, still, *date, stop);
    } catch (const Error& error) {
        if (isMachines(error))
            throw;
        requireThere(s_.library); // else the still would go up alone
        tellAlone(source, error);
    }
    return std::nullopt;
}

/// What the library knows of an item for which a person named the date; none for any other item.
std::optional<AssetFacts> RecordStaging::chosenFacts(const QString& identifier) {
    const auto choice = RecordDates(s_.database).choiceOf(identifier);
    if (!choice || !choice->date)
        return std::nullopt;
    AssetFacts facts;
    try {
        facts = s_.library.factsOf(identifier).value_or(facts);
    } catch (const PhotoLibraryError& error) { // the date is known without it
        printError(identifier, error.localizedDescription());
    }
    facts.chosenDate = choice->date;
    return facts;
}

MetadataResult RecordStaging::redate(StagedFile& file, const SyncRecord& record,
                                     DateFallbackMode fallbackMode, const std::stop_token& stop) {
    const StagingFolder::OwnChange change(copies_.folderOf(file.path), file.path.filename());
    MetadataResult result = s_.metadata.ensureMetadata(
        file.path, chosenFacts(record.assetLocalIdentifier), record.assetLocalIdentifier,
        fallbackMode, file.originalName, stop);
    if (result.which != MetadataResult::Case::success)
        return result;
    joinLate(record, file.path, result.date, stop);
    SyncRecord redated = record;
    file = proven(file.path, copies_.hashOf(file.path, stop), file.originalName);
    redated.sha256Hash = file.content.sha256;
    redated.fileSizeBytes = file.content.sizeBytes;
    s_.life.redated(redated, dateIn(result));
    return result;
}

/// The movie of a still that had no date before.
void RecordStaging::joinLate(const SyncRecord& record, const std::filesystem::path& still,
                             const std::optional<Date>& date, const std::stop_token& stop) {
    auto original = s_.life.sourceOf(record.assetLocalIdentifier);
    if (!original || original->movie)
        return;
    const auto source = sourceOf(record.assetLocalIdentifier);
    if (!source || !movieToJoin(source->resources))
        return;
    original->movie = joined(*source, still, date, stop);
    s_.life.exporting(record, *original);
    s_.life.leavesBehind(record, remainderOf(source->resources, original->movie.has_value()));
}

/// Unless the original is there as it was, the copy may be the last of its bytes.
void RecordStaging::discard(const QString& identifier) {
    const auto file = copies_.find(identifier);
    if (!file)
        return;
    const AssetFetchResult assets = s_.library.fetchAssets(QStringList{identifier});
    const auto known = s_.life.sourceOf(identifier);
    if (known && assets && !assets->empty() &&
        isUnchanged(*known, s_.library.assetResources(assets->front())))
        copies_.removeAll(identifier);
    else
        tellAside(copies_.setAside(*file));
}

void RecordStaging::missing(const QString& what, const QString& identifier) {
    unavailable_.insert(identifier);
    s_.console.print(QStringLiteral("[Staging] %1 bulunamadı: ").arg(what) + identifier);
}

void RecordStaging::printError(const QString& identifier, const QString& reason) {
    s_.console.notice(QStringLiteral("[Staging] Hata %1: %2").arg(identifier, reason), identifier);
}

void RecordStaging::tellAlone(const Source& source, const Error& error) {
    s_.console.print(
        QStringLiteral("[Staging] ⚠️ Canlı fotoğrafın videosu eklenemedi, yalnızca "
                       "fotoğrafı yüklenecek: %1 (%2)")
            .arg(source.resource.originalFilename, error.localizedDescription()));
}

void RecordStaging::tellAside(const std::filesystem::path& aside) {
    s_.console.notice(
        QStringLiteral("[Staging] ⚠️ Aslı değişmiş bir kopya kenara alındı: ") +
        pathText(aside));
}

} // namespace quorvane

#include "platform/folder/FileRecognition.h"

#include "platform/folder/FolderIndex.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace quorvane {

namespace {

/// A known file that is not there any more as it was known.
struct Row {
    const KnownFile* known = nullptr;
    bool isTaken = false;    ///< some file goes by its identifier
    bool isReplaced = false; ///< another file stands at its path
    bool wasAsked = false;
    std::optional<QString> content; ///< of what was staged; asked for once
};

/// A file that does not agree with what is known of its path.
struct OpenFile {
    KnownFile* file = nullptr;
    Row* own = nullptr; ///< of its path
    std::optional<QString> content;
    bool isUnreadable = false;

    bool isSettled() const { return isUnreadable || !file->identifier.isNull(); }
};

std::string_view nameOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0
}

class Recognition {
  public:
    Recognition(const QUuid& library, KnownFiles& memory, const ContentReader& read)
        : library_(library), memory_(memory), read_(read) {}

    FileDifferences run(std::vector<KnownFile>& files, const KnownByPath& known) {
        compareWithPaths(files, known);
        if (!open_.empty() && !rows_.empty()) {
            takeUntouched();
            takeOwnContent();
            takeMovedContent();
            takeUnstaged();
        }
        nameTheRest(known.files());
        return differences();
    }

  private:
    void compareWithPaths(std::vector<KnownFile>& files, const KnownByPath& knownByPath) {
        const std::vector<const KnownFile*>& known = knownByPath.files();
        std::vector<bool> agrees(known.size());
        std::vector<std::pair<std::size_t, std::size_t>> disagreeing; // file in open_, known
        for (KnownFile& file : files) {
            const auto found = knownByPath.find(file.path);
            if (found && known[*found]->version == file.version) {
                file.identifier = known[*found]->identifier;
                agrees[*found] = true;
                continue;
            }
            if (found)
                disagreeing.emplace_back(open_.size(), *found);
            open_.push_back({&file, nullptr, std::nullopt, false});
        }
        std::unordered_map<std::size_t, std::size_t> rowOf;
        for (std::size_t i = 0; i < known.size(); ++i)
            if (!agrees[i]) {
                rowOf.emplace(i, rows_.size());
                rows_.push_back({known[i], false, false, false, std::nullopt});
            }
        for (const auto& [open, i] : disagreeing)
            open_[open].own = &rows_[rowOf.at(i)];
    }

    /// Moved, also with a folder around it. A rename of the file itself changes a time.
    void takeUntouched() {
        std::unordered_multimap<std::uint64_t, Row*> byInode;
        for (Row& row : rows_)
            byInode.emplace(row.known->version.inode, &row);
        for (OpenFile& open : open_)
            take(open, byInode, open.file->version.inode,
                 [&open](const Row& row) { return row.known->version == open.file->version; });
    }

    /// Touched, or restored from a copy.
    void takeOwnContent() {
        for (OpenFile& open : open_)
            if (!open.isSettled() && open.own && !open.own->isTaken && contentOf(*open.own) &&
                read(open) && *open.own->content == *open.content)
                settle(open, *open.own);
    }

    void takeMovedContent() {
        std::unordered_set<std::int64_t> sizes, candidateSizes;
        for (const OpenFile& open : open_)
            if (!open.isSettled())
                sizes.insert(open.file->version.size);
        std::unordered_multimap<QString, Row*> byContent;
        for (Row& row : rows_)
            if (!row.isTaken && sizes.contains(row.known->version.size) && contentOf(row)) {
                candidateSizes.insert(row.known->version.size);
                byContent.emplace(*row.content, &row);
            }
        for (OpenFile& open : open_)
            if (!open.isSettled() && candidateSizes.contains(open.file->version.size) && read(open))
                take(open, byContent, *open.content, [](const Row&) { return true; });
    }

    /// What was never staged stands for no bytes yet: its identifier goes to what looks the same,
    /// without reading it. The same inode weighs more than the same place, which two files that
    /// swapped their names have as well.
    void takeUnstaged() {
        const auto looksLike = [this](const OpenFile& open, Row& row) {
            return row.known->version.size == open.file->version.size &&
                   row.known->version.modified == open.file->version.modified && !contentOf(row);
        };
        const auto takeOwn = [&](bool sameInode) {
            for (OpenFile& open : open_)
                if (!open.isSettled() && open.own && !open.own->isTaken &&
                    (!sameInode || open.own->known->version.inode == open.file->version.inode) &&
                    looksLike(open, *open.own))
                    settle(open, *open.own);
        };
        takeOwn(true);
        std::unordered_multimap<std::uint64_t, Row*> byInode;
        for (Row& row : rows_)
            if (!row.isTaken)
                byInode.emplace(row.known->version.inode, &row);
        for (OpenFile& open : open_)
            take(open, byInode, open.file->version.inode,
                 [&](Row& row) { return looksLike(open, row); });
        takeOwn(false);
    }

    void nameTheRest(const std::vector<const KnownFile*>& known) {
        std::vector<QUuid> taken;
        for (OpenFile& open : open_) {
            if (open.isSettled())
                continue;
            if (taken.empty() && !known.empty()) {
                taken.reserve(known.size());
                for (const KnownFile* file : known)
                    taken.push_back(file->identifier);
                std::ranges::sort(taken);
            }
            open.file->identifier = newIdentifier(open, taken);
        }
    }

    /// Null when the file cannot be read. An identifier is another's also when nothing but staged
    /// bytes remind of it.
    QUuid newIdentifier(OpenFile& open, const std::vector<QUuid>& taken) {
        QUuid other = open.own ? open.own->known->identifier : QUuid();
        while (true) {
            const QUuid identifier = folderFileIdentifier(library_, *open.file, other);
            if (!std::ranges::binary_search(taken, identifier)) {
                const auto content = taken.empty() ? std::nullopt : memory_.contentOf(identifier);
                if (!content)
                    return identifier;
                if (!read(open))
                    return {};
                if (*content == *open.content)
                    return identifier;
            }
            other = identifier;
        }
    }

    /// Takes one of the free rows under `key`: of the same name or inode, if there is such a one.
    template <typename Rows, typename Key, typename Fits>
    void take(OpenFile& open, Rows& rows, const Key& key, Fits fits) {
        if (open.isSettled())
            return;
        const auto [begin, end] = rows.equal_range(key);
        auto best = end;
        for (auto candidate = begin; candidate != end; ++candidate) {
            Row& row = *candidate->second;
            if (row.isTaken || !fits(row))
                continue;
            best = candidate;
            if (nameOf(row.known->path) == nameOf(open.file->path) ||
                row.known->version.inode == open.file->version.inode)
                break;
        }
        if (best == end)
            return;
        settle(open, *best->second);
        rows.erase(best);
    }

    static void settle(OpenFile& open, Row& row) {
        open.file->identifier = row.known->identifier;
        row.isTaken = true;
    }

    const std::optional<QString>& contentOf(Row& row) {
        if (!std::exchange(row.wasAsked, true))
            row.content = memory_.contentOf(row.known->identifier);
        return row.content;
    }

    /// The file as it is now: its times may be newer than the scan's.
    bool read(OpenFile& open) {
        if (open.content || open.isUnreadable)
            return !open.isUnreadable;
        if (auto content = read_(open.file->path)) {
            open.content = std::move(content->sha256);
            open.file->version = content->version;
        } else {
            open.isUnreadable = true;
        }
        return !open.isUnreadable;
    }

    FileDifferences differences() {
        FileDifferences found;
        for (const OpenFile& open : open_) {
            if (open.file->identifier.isNull())
                continue;
            found.changed.push_back(*open.file);
            if (open.own)
                open.own->isReplaced = true;
        }
        for (const Row& row : rows_) {
            if (row.isTaken && !row.isReplaced)
                found.gone.push_back(row.known->path);
            else if (row.isReplaced && !row.isTaken)
                found.superseded.push_back(row.known->identifier);
            else if (!row.isTaken)
                found.absent.push_back(*row.known);
        }
        return found;
    }

    const QUuid library_;
    KnownFiles& memory_;
    const ContentReader& read_;
    std::vector<Row> rows_;
    std::vector<OpenFile> open_;
};

} // namespace

KnownByPath::KnownByPath(std::vector<const KnownFile*> files)
    : files_(std::move(files)), byPath_(files_.size()) {
    for (std::size_t i = 0; i < files_.size(); ++i)
        byPath_.emplace(files_[i]->path, i);
}

std::optional<std::size_t> KnownByPath::find(std::string_view path) const {
    const auto found = byPath_.find(path);
    return found == byPath_.end() ? std::nullopt : std::optional(found->second);
}

bool KnownByPath::isKnown(std::string_view path, const FileVersion& version) const {
    const auto found = find(path);
    return found && files_[*found]->version == version;
}

FileDifferences recogniseFiles(std::vector<KnownFile>& files, const KnownByPath& known,
                               const QUuid& library, KnownFiles& memory,
                               const ContentReader& read) {
    return Recognition(library, memory, read).run(files, known);
}

} // namespace quorvane

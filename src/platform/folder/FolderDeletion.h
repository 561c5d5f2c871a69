#pragma once

#include "library/DeletionConfirmation.h"
#include "library/PhotoLibrary.h"
#include "platform/folder/Mount.h"
#include "platform/folder/Trash.h"

#include <map>
#include <set>

namespace quorvane {

/// One removal of originals from a folder library. Each file goes only if its bytes, read now, are
/// those of its candidate, and if what lies in the Trash then is that very file. One thread.
class FolderDeletion {
  public:
    FolderDeletion(const std::filesystem::path& root, DeletionGuard& guard,
                   const std::stop_token& stop);

    /// `path`: inside the library; none when the file is not there.
    void add(const DeletionCandidate& candidate, const std::optional<std::filesystem::path>& path);

    /// Completes the question, asks it, and removes. Throws `PhotoLibraryError` when nobody agreed,
    /// or when there is no Trash for any of them.
    void run(DeletionConfirmation& confirmation, DeletionQuestion question);

  private:
    struct File {
        DeletionCandidate candidate;
        std::filesystem::path path;
        Trash* trash = nullptr;
        QString noTrash; ///< the reason why there is none
    };

    void complete(DeletionQuestion& question) const;
    Trash& trashFor(const std::filesystem::path& folder);
    void remove(const File& file);
    /// What the file's name says of it, once its bytes were read and are the candidate's. Throws
    /// the reason against it.
    struct stat prove(const File& file, const FileDescriptor& folder) const;
    void leaveOut(const DeletionCandidate& candidate, const std::filesystem::path& path,
                  const QString& reason);

    std::filesystem::path root_; ///< canonical
    DeletionGuard& guard_;
    const std::stop_token& stop_;
    std::vector<File> files_;
    std::map<QString, std::size_t> positions_; ///< of the files, by identifier
    std::map<Mount, std::unique_ptr<Trash>> trashes_;
};

} // namespace quorvane

// What a folder library takes of its platform; built on a Mac only.
#include "platform/macos/FileManagerTrash.h"
#include "platform/macos/FolderEvents.h"

namespace quorvane {

std::unique_ptr<FolderNotifier> FolderNotifier::make(Events) {
    return std::make_unique<FolderEvents>(); // which tells of writes as well
}

std::unique_ptr<Trash> Trash::forFilesIn(const std::filesystem::path&) {
    return std::make_unique<FileManagerTrash>();
}

} // namespace quorvane

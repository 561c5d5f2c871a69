#pragma once

#include "platform/folder/Trash.h"

namespace quorvane {

/// The Trash of the Mac, through the file manager, which finds the right one for each volume.
class FileManagerTrash final : public Trash {
  public:
    const std::filesystem::path& place() const override { return place_; }
    /// The name is the whole path in the Trash.
    std::string take(const FileDescriptor& folder, const std::filesystem::path& path) override;
    struct stat statusOf(const std::string& name) const override;
    bool giveBack(const std::string& name, const FileDescriptor& folder,
                  const std::filesystem::path& path) noexcept override;

  private:
    const std::filesystem::path place_ = homeTrash();

    static std::filesystem::path homeTrash();
};

} // namespace quorvane

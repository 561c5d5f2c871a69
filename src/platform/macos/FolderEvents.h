#pragma once

#include "platform/watch/FolderNotifier.h"

#include <filesystem>
#include <memory>
#include <set>

namespace quorvane {

/// The word of FSEvents, which watches whole trees: one stream over the topmost of the folders.
class FolderEvents final : public FolderNotifier {
  public:
    FolderEvents();
    ~FolderEvents() override;

    Watched watch(const std::vector<std::filesystem::path>& folders) override;
    Wake wait(std::chrono::milliseconds atMost, const std::stop_token& stop) override;

  private:
    struct Happened;

    void close();

    const std::shared_ptr<Happened> happened_;
    std::set<std::filesystem::path> trees_; ///< of the open stream
    void* stream_ = nullptr;                ///< FSEventStreamRef
};

} // namespace quorvane

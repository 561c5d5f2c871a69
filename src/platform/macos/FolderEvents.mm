#include "platform/macos/FolderEvents.h"

#include "foundation/File.h"
#include "foundation/Guarded.h"
#include "platform/macos/CocoaText.h"

#import <CoreServices/CoreServices.h>

namespace quorvane {

namespace {

constexpr CFTimeInterval latency = 0.1; ///< seconds

/// Those that lie in none of the others.
std::set<std::filesystem::path> topmost(const std::vector<std::filesystem::path>& folders) {
    const std::set<std::filesystem::path> sorted(folders.begin(), folders.end());
    std::set<std::filesystem::path> trees; // a folder comes before what lies in it
    for (const std::filesystem::path& folder : sorted) {
        bool isInside = false;
        for (auto above = folder; !isInside && above.has_relative_path();) {
            above = above.parent_path();
            isInside = trees.contains(above);
        }
        if (!isInside)
            trees.insert(folder);
    }
    return trees;
}

} // namespace

/// Shared with the stream, whose last call may come while it is being closed.
struct FolderEvents::Happened {
    Guarded<bool> something{false};
    std::condition_variable_any changed;

    static void tell(ConstFSEventStreamRef, void* info, size_t, void*,
                     const FSEventStreamEventFlags*, const FSEventStreamEventId*) {
        Happened& happened = **static_cast<std::shared_ptr<Happened>*>(info);
        *happened.something.lock() = true;
        happened.changed.notify_all();
    }
    static void release(const void* info) {
        delete static_cast<const std::shared_ptr<Happened>*>(info);
    }
};

FolderEvents::FolderEvents() : happened_(std::make_shared<Happened>()) {}

FolderEvents::~FolderEvents() {
    close();
}

FolderNotifier::Watched FolderEvents::watch(const std::vector<std::filesystem::path>& folders) {
    auto trees = topmost(folders);
    if (stream_ && trees == trees_)
        return {};
    close();
    if (trees.empty())
        return {};
    @autoreleasepool {
        QStringList texts;
        for (const std::filesystem::path& tree : trees)
            texts += pathText(tree);
        FSEventStreamContext context{0, new std::shared_ptr(happened_), nullptr, &Happened::release,
                                     nullptr};
        FSEventStreamRef stream = FSEventStreamCreate(
            nullptr, &Happened::tell, &context, reinterpret_cast<CFArrayRef>(stringsOf(texts)),
            kFSEventStreamEventIdSinceNow, latency,
            kFSEventStreamCreateFlagNoDefer | kFSEventStreamCreateFlagWatchRoot);
        if (!stream) {
            Happened::release(context.info);
            return {false, static_cast<int>(trees.size())};
        }
        stream_ = stream;
        FSEventStreamSetDispatchQueue(stream, dispatch_get_global_queue(QOS_CLASS_UTILITY, 0));
        if (!FSEventStreamStart(stream)) {
            close();
            return {false, static_cast<int>(trees.size())};
        }
    }
    trees_ = std::move(trees);
    return {true, 0};
}

void FolderEvents::close() {
    trees_.clear();
    auto* stream = static_cast<FSEventStreamRef>(std::exchange(stream_, nullptr));
    if (!stream)
        return;
    FSEventStreamStop(stream);
    FSEventStreamInvalidate(stream);
    FSEventStreamRelease(stream);
}

FolderNotifier::Wake FolderEvents::wait(std::chrono::milliseconds atMost,
                                        const std::stop_token& stop) {
    auto something = happened_->something.lock();
    const bool told =
        something.waitFor(happened_->changed, stop, atMost, [&something] { return *something; });
    if (stop.stop_requested())
        return Wake::stopped;
    *something = false;
    return told ? Wake::changed : Wake::timeout;
}

} // namespace quorvane

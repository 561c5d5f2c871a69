#include "foundation/File.h"
#include "platform/watch/FolderNotifier.h"

#include <array>
#include <cerrno>
#include <set>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::uint32_t entryEvents = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                                      IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ATTRIB |
                                      IN_ONLYDIR | IN_EXCL_UNLINK;

class InotifyNotifier final : public FolderNotifier {
  public:
    explicit InotifyNotifier(Events events);

    Watched watch(const std::vector<std::filesystem::path>& folders) override;
    Wake wait(std::chrono::milliseconds atMost, const std::stop_token& stop) override;

  private:
    void forgetArrived();

    std::uint32_t mask_;
    FileDescriptor notifications_; ///< not open when the kernel gave none
    std::set<int> watched_;
};

InotifyNotifier::InotifyNotifier(Events events)
    : mask_(events == Events::contents ? entryEvents | IN_MODIFY : entryEvents),
      notifications_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

FolderNotifier::Watched InotifyNotifier::watch(const std::vector<std::filesystem::path>& folders) {
    Watched result;
    std::set<int> now;
    for (const std::filesystem::path& folder : folders) {
        // A folder that is watched already answers with the number it has, whatever its name.
        const int number = ::inotify_add_watch(notifications_.get(), folder.c_str(), mask_);
        if (number >= 0) {
            now.insert(number);
            result.gained = result.gained || !watched_.contains(number);
        } else if (errno != ENOENT && errno != ENOTDIR) { // gone: its parent has told
            ++result.refused;
        }
    }
    for (const int number : watched_)
        if (!now.contains(number))
            ::inotify_rm_watch(notifications_.get(), number);
    watched_ = std::move(now);
    return result;
}

FolderNotifier::Wake InotifyNotifier::wait(std::chrono::milliseconds atMost,
                                           const std::stop_token& stop) {
    const FileDescriptor wake(::eventfd(0, EFD_CLOEXEC));
    const std::stop_callback onStop(stop, [&wake] { ::eventfd_write(wake.get(), 1); });
    // A descriptor that is not open is passed over.
    std::array<pollfd, 2> waited{pollfd{wake.get(), POLLIN, 0},
                                 pollfd{notifications_.get(), POLLIN, 0}};
    const auto milliseconds = std::max<std::int64_t>(atMost.count(), 0);
    const int ready = ::poll(waited.data(), waited.size(),
                             static_cast<int>(std::min<std::int64_t>(milliseconds, 1'000'000'000)));
    if (stop.stop_requested())
        return Wake::stopped;
    if (ready <= 0)
        return Wake::timeout;
    forgetArrived();
    return Wake::changed;
}

void InotifyNotifier::forgetArrived() {
    std::array<char, 1 << 16> buffer{};
    while (::read(notifications_.get(), buffer.data(), buffer.size()) > 0) {
    }
}

} // namespace

std::unique_ptr<FolderNotifier> FolderNotifier::make(Events events) {
    return std::make_unique<InotifyNotifier>(events);
}

} // namespace quorvane

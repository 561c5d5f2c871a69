#pragma once

#include "foundation/Guarded.h"
#include "foundation/Log.h"
#include "library/PhotoLibrary.h"

#include <memory>
#include <mutex>

namespace quorvane {

/// The port's one observer, registered with PhotoKit, which calls it on threads of its own. Any
/// thread.
class PhotoKitChanges {
  public:
    explicit PhotoKitChanges(Log& log);
    ~PhotoKitChanges();
    PhotoKitChanges(const PhotoKitChanges&) = delete;
    PhotoKitChanges& operator=(const PhotoKitChanges&) = delete;

    /// Takes the place of the observer before, if any.
    void observe(LibraryChangeObserver& observer);

    /// Waits for a call that is under way. Not from inside the observer's own call.
    void unobserve(LibraryChangeObserver& observer);

    /// What PhotoKit's notifications reach. Outlives the registration: one that is on its way may
    /// still come after it.
    class Receiver {
      public:
        explicit Receiver(Log& log) : log_(log) {}

        /// A failure of the observer goes to the log: PhotoKit could do nothing with it.
        void receive(const LibraryChange& change) noexcept;
        /// Waits for a call that is under way.
        void set(LibraryChangeObserver* observer);
        bool isFor(const LibraryChangeObserver& observer) const;

      private:
        Log& log_;                                 ///< used only while there is an observer
        Guarded<LibraryChangeObserver*> observer_; ///< locked during a call
    };

  private:
    void unregister();

    std::mutex mutex_; ///< of the registration; never taken by a notification
    const std::shared_ptr<Receiver> receiver_;
    void* registered_ = nullptr; ///< the object that PhotoKit knows
};

} // namespace quorvane

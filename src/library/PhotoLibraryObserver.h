#pragma once

#include "foundation/Console.h"
#include "foundation/Guarded.h"
#include "foundation/Preferences.h"
#include "foundation/Publisher.h"
#include "foundation/TaskRunner.h"
#include "library/AssetStagingService.h"
#include "library/PhotoAlbumService.h"
#include "library/PhotoLibrary.h"
#include "store/DatabaseManager.h"

#include <memory>
#include <stop_token>
#include <vector>

namespace quorvane {

/// The assets of a scan or of a change that are in the store now.
struct RecordedAssets {
    enum class Cause { scan, change };
    Cause cause = Cause::scan;
    std::size_t count = 0; ///< 0 also after a change that only took some away
};

/// The one way by which assets become records: files left in the permanent staging folder, the
/// chosen source as a whole, and what is added to it while registered. After every insertion the
/// staging service is asked to stage. Failures are told on the console and swallowed. Created and
/// destroyed on the main thread.
class PhotoLibraryObserver final : public LibraryChangeObserver {
  public:
    PhotoLibraryObserver(PhotoLibrary& library, DatabaseManager& database, RecordLife& life,
                         AssetStagingService& staging, PhotoAlbumService& albums,
                         const Preferences& preferences, Console& console);
    ~PhotoLibraryObserver() override;
    PhotoLibraryObserver(const PhotoLibraryObserver&) = delete;
    PhotoLibraryObserver& operator=(const PhotoLibraryObserver&) = delete;

    /// Registers with the library and scans in the background. Main thread; posts itself there
    /// from any other.
    void start();

    /// Unregisters. Main thread; posts itself there from any other.
    void stop();

    /// Runs `initialScan` in the background and returns at once; its failure is told on the
    /// console. Any thread.
    void performInitialScan();

    /// Recovers staged files, then records the source's assets and stages the first of them, on the
    /// calling thread. What is pending or may be deleted is from then on told of the source's
    /// assets only. Throws `PhotoLibraryError` when the library cannot be read, `DBError` when the
    /// store refused the assets, or `Cancelled`.
    void initialScan(std::stop_token stop = {});

    /// Records the files in the permanent staging folder as STAGED, known assets excepted.
    void reconcilePermanentStagingAssets();

    /// All assets in one transaction, then staging. Throws `DBError`, or `Cancelled` from the
    /// staging.
    void processInitialAssets(const std::vector<PhotoAsset>& assets, std::stop_token stop = {});

    /// One asset after another, then staging. Throws `Cancelled` from the staging.
    void processNewAssets(const std::vector<PhotoAsset>& assets, std::stop_token stop = {});

    /// Sent on the thread of the scan or of the change.
    Publisher<RecordedAssets> assetsRecorded;

    /// Any thread. Insertions are processed in the background; nothing else is of interest.
    void photoLibraryDidChange(const LibraryChange& change) override;

  private:
    void discardLeft();
    void settle(const std::vector<PhotoAsset>& assets, const std::stop_token& stop);
    bool awaitsOriginals();
    void tellRefusal(const DBError& error);
    void startOnMainThread();
    void stopOnMainThread();
    /// Runs `operation` later on the main thread, unless this object is gone by then.
    void onMainThreadWhileAlive(void (PhotoLibraryObserver::*operation)());

    PhotoLibrary& library_;
    DatabaseManager& database_;
    RecordLife& life_;
    AssetStagingService& staging_;
    PhotoAlbumService& albums_;
    const Preferences& preferences_;
    Console& console_;
    bool isRegistered_ = false;             ///< main thread only
    Guarded<AssetFetchResult> fetchResult_; ///< of the current source; none before the first scan
    std::shared_ptr<PhotoLibraryObserver*> alive_;
    TaskRunner tasks_; ///< last: its work uses the rest
};

} // namespace quorvane

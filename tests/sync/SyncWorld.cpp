#include "SyncWorld.h"

#include "library/StagedName.h"
#include "platform/folder/FolderIndex.h"
#include "sample/SampleMedia.h"
#include "support/Records.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace quorvane::test {

SyncWorld::SyncWorld() {
    google.start();
    accessToken = google.issueTokens().accessToken;
    std::filesystem::create_directories(pictures);
}

void SyncWorld::addPicture(const QString& name, const std::optional<QByteArray>& exifDate) {
    const std::uint32_t seed = ++pictureCount_;
    const QByteArray bytes =
        name.endsWith(u".gif") ? sample::gif(seed) : sample::jpeg(seed, exifDate);
    folder.write("library" / pathFrom(name), bytes);
}

void SyncWorld::addPictures(int count) {
    for (int i = 0; i < count; ++i)
        addPicture(QStringLiteral("%1.jpg").arg(i, 3, 10, QLatin1Char('0')));
}

std::map<QString, int> SyncWorld::storedContents() const {
    std::map<QString, int> contents;
    for (const auto& item : google.mediaItems())
        ++contents[QString::fromLatin1(item.sha256)];
    return contents;
}

HttpResponse WatchedHttp::send(const HttpRequest& request, std::stop_token stop) {
    const int number = ++number_;
    before(number);
    const int now = ++inFlight_;
    for (int most = mostAtOnce_; most < now && !mostAtOnce_.compare_exchange_weak(most, now);)
        ;
    struct Leave {
        std::atomic<int>& inFlight;
        ~Leave() { --inFlight; }
    } const leave{inFlight_};
    HttpResponse response = http_.send(request, std::move(stop));
    after(number);
    return response;
}

SyncProgram::SyncProgram(SyncWorld& world, const std::filesystem::path& home,
                         StageAhead::Limits stagingLimits)
    : pictures_(world.pictures),
      folders_{home, home / "Pictures", home / "temporary"},
      preferences(folders_.preferences()),
      database(folders_.database(), console),
      library(world.pictures, confirmation_, log),
      metadata(library, folders_.pictures, log, clock),
      staging(library, database, metadata, folders_, console),
      deletion(database, staging, library, log),
      endpoints(GoogleEndpoints::resolve(world.google.baseURL())),
      uploadTask(http, tokens_, tracker, endpoints),
      albums(http, tokens_, preferences, log, endpoints),
      batches(http, tokens_, albums, database, preferences, log, console, batchClock, endpoints),
      coordinator({database, staging, metadata, uploadTask, batches, tracker, deletion, preferences,
                   flags, log, console, clock},
                  stagingLimits) {
    tokens_.token = world.accessToken;
    batches.onStopAtLimit = [this] { flags.cancel(); };
}

void SyncProgram::discover() {
    const AssetFetchResult assets = library.fetchAssets();
    std::vector<SyncRecord> records;
    for (const PhotoAsset& asset : *assets) {
        SyncRecord record;
        record.assetLocalIdentifier = asset.localIdentifier;
        records.push_back(record);
    }
    database.insertDiscoveredBatch(test::batchOf(records));
}

SyncCoordinator::Summary SyncProgram::run() {
    start();
    return finish();
}

void SyncProgram::start() {
    testing::internal::CaptureStdout();
    flags.begin();
    run_ = std::async(std::launch::async,
                      [this] { return coordinator.drainPendingQueue(false, onProgress); });
}

SyncCoordinator::Summary SyncProgram::finish() {
    const SyncCoordinator::Summary summary = run_.get();
    flags.end();
    printed = QString::fromStdString(testing::internal::GetCapturedStdout())
                  .split(u'\n', Qt::SkipEmptyParts);
    QCoreApplication::sendPostedEvents();
    return summary;
}

std::chrono::milliseconds SyncProgram::stop() {
    const auto begin = std::chrono::steady_clock::now();
    flags.cancel();
    run_.wait();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 begin);
}

QString SyncProgram::identifierOf(const QString& name) const {
    return folderFileIdentifier(folderLibraryIdentifier(pictures_), name.toStdString())
               .toString(QUuid::WithoutBraces)
               .toUpper() +
           QStringLiteral("/L0/001");
}

SyncRecord SyncProgram::record(const QString& name) {
    return database.fetchRecordsOfAsset(identifierOf(name)).at(0);
}

Counts SyncProgram::counts() {
    const auto counts = database.countByStatus();
    return {counts.begin(), counts.end()};
}

std::filesystem::path SyncProgram::stagedPath(const QString& name) const {
    return staging.permanentFolder() / stagedFileName(identifierOf(name), name);
}

int SyncProgram::stagedFiles() const {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(staging.permanentFolder()))
        files += entry.path().extension() == ".jpg" ? 1 : 0;
    return files;
}

void expectAllStoredOnce(const SyncWorld& world, SyncProgram& program, int count) {
    EXPECT_EQ(program.counts(), (Counts{{SyncStatus::verified, count}}));
    std::map<QString, int> contents;
    std::map<QString, QString> contentOfItem;
    for (const auto& item : world.google.mediaItems())
        contentOfItem[item.id] = QString::fromLatin1(item.sha256);
    for (const SyncRecord& record : program.database.fetchVerifiedForDeletion()) {
        ++contents[*record.sha256Hash];
        EXPECT_EQ(contentOfItem[*record.remoteMediaID], record.sha256Hash);
    }
    EXPECT_EQ(contents.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(world.storedContents(), contents);
}

emulator::Fault faultOf(emulator::RequestKind kind, int nth, int times) {
    emulator::Fault fault;
    fault.kind = kind;
    fault.nth = nth;
    fault.times = times;
    return fault;
}

emulator::Fault refusal(int nth, int times) {
    emulator::Fault fault = faultOf(emulator::RequestKind::upload, nth, times);
    fault.status = 500;
    return fault;
}

emulator::Fault stall(emulator::RequestKind kind) {
    emulator::Fault fault = faultOf(kind, 1, 0);
    fault.stall = true;
    return fault;
}

} // namespace quorvane::test

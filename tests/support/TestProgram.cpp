#include "support/TestProgram.h"

#include "library/StagedName.h"
#include "sample/SampleMedia.h"
#include "support/Records.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace quorvane::test {

SyncWorld::SyncWorld() {
    google.start();
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

TestHouse::TestHouse(SyncWorld& world, const std::filesystem::path& home, Console::Channel channel,
                     DeletionConfirmation* asked)
    : Outside(channel),
      core({home, home / "Pictures", home / "temporary"},
           {console, clock, http, keychain,
            asked != nullptr ? *asked : static_cast<DeletionConfirmation&>(confirmation),
            batchClock, world.google.baseURL()}),
      google(core, browser),
      recording(core.logger.logPublisher().subscribe(
          [this](const LogEntry& entry) { log.log(entry.message); })) {}

void TestHouse::haveSignedIn(SyncWorld& world) {
    const auto issued = world.google.issueTokens();
    const Date expiry = clock.now() + std::chrono::hours(24 * 365);
    for (const auto& [key, value] :
         {std::pair{tokenKeys::accessToken, issued.accessToken},
          std::pair{tokenKeys::refreshToken, issued.refreshToken},
          std::pair{tokenKeys::expiry, QString::number(unixSeconds(expiry), 'f', 3)},
          std::pair{tokenKeys::userID, QStringLiteral("1")},
          std::pair{tokenKeys::email, QStringLiteral("kisi@example.com")}})
        google.tokens.writeToken(key, value);
}

/// The order of the house: whose library it is has to be known before it is opened.
TestProgram::TestProgram(SyncWorld& world, const std::filesystem::path& home,
                         StageAhead::Limits ahead)
    : TestHouse(world, home),
      services_(core, (haveSignedIn(world), google), LibraryAt(core, world.pictures), ahead) {}

void TestProgram::discover() {
    const AssetFetchResult assets = library.fetchAssets();
    std::vector<SyncRecord> records;
    for (const PhotoAsset& asset : *assets) {
        SyncRecord record;
        record.assetLocalIdentifier = asset.localIdentifier;
        identifiers_[library.assetResources(asset).at(0).originalFilename] = asset.localIdentifier;
        records.push_back(record);
    }
    database.insertDiscoveredBatch(test::batchOf(records));
}

SyncCoordinator::Summary TestProgram::run() {
    start();
    return finish();
}

void TestProgram::start() {
    testing::internal::CaptureStdout();
    flags.begin();
    attempts.begin(patience);
    run_ = std::async(std::launch::async,
                      [this] { return coordinator.drainPendingQueue(false, onProgress); });
}

SyncCoordinator::Summary TestProgram::finish() {
    const SyncCoordinator::Summary summary = run_.get();
    flags.end();
    printed = QString::fromStdString(testing::internal::GetCapturedStdout())
                  .split(u'\n', Qt::SkipEmptyParts);
    QCoreApplication::sendPostedEvents();
    return summary;
}

std::chrono::milliseconds TestProgram::stop() {
    const auto begin = std::chrono::steady_clock::now();
    flags.cancel();
    run_.wait();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 begin);
}

QString TestProgram::identifierOf(const QString& name) const {
    return identifiers_.at(name);
}

SyncRecord TestProgram::record(const QString& name) {
    return database.fetchRecordsOfAsset(identifierOf(name)).at(0);
}

Counts TestProgram::counts() {
    const auto counts = database.countByStatus();
    return {counts.begin(), counts.end()};
}

std::filesystem::path TestProgram::stagedPath(const QString& name) const {
    return staging.permanentFolder() / stagedFileName(identifierOf(name), name);
}

int TestProgram::stagedFiles() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(staging.permanentFolder()))
        count += entry.path().extension() == ".jpg" ? 1 : 0;
    return count;
}

void expectAllStoredOnce(const SyncWorld& world, TestProgram& program, int count) {
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

emulator::Disturbance faultOf(emulator::RequestKind kind, int nth, int times) {
    emulator::Disturbance fault;
    fault.kind = kind;
    fault.nth = nth;
    fault.times = times;
    return fault;
}

emulator::Disturbance refusal(int nth, int times) {
    emulator::Disturbance fault = faultOf(emulator::RequestKind::upload, nth, times);
    fault.status = 500;
    return fault;
}

emulator::Disturbance stall(emulator::RequestKind kind) {
    emulator::Disturbance fault = faultOf(kind, 1, 0);
    fault.stall = true;
    return fault;
}

} // namespace quorvane::test

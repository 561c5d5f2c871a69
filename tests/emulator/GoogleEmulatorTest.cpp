#include "EmulatorWorld.h"

#include "support/TemporaryFolder.h"

#include <future>
#include <thread>

namespace quorvane::test {

namespace {

using GoogleEmulatorTest = EmulatorWorld;

TEST_F(GoogleEmulatorTest, anotherProcessTakesUpTheStateFile) {
    const TemporaryFolder folder;
    const EmulatorOptions options{.stateFile = folder / "state.json"};
    begin(options);
    const QString album = emulator->addAlbum(u"Aile"_s, 5);
    const QString unused = uploadToken(movie, "video/quicktime");
    ASSERT_EQ(statusOf(create({uploadToken(jpeg)}, album)), 200);
    const QString early = token;
    const QJsonObject before = emulator->report();

    begin(options);
    token = early;
    EXPECT_EQ(emulator->report()[u"mediaItems"_s], before[u"mediaItems"_s]);
    EXPECT_EQ(emulator->report()[u"albums"_s], before[u"albums"_s]);
    EXPECT_EQ(statusOf(create({unused, uploadToken(jpeg)}, album)), 200);
    EXPECT_EQ(emulator->mediaItems().size(), 2U);
    EXPECT_EQ(emulator->albums().at(0).itemCount, 7);

    folder.write("state.json", "{\"tokens\":");
    EXPECT_THROW(GoogleEmulator(options, clock), Error);
}

TEST_F(GoogleEmulatorTest, storesWhatItAcceptedAndNothingElse) {
    const TemporaryFolder folder;
    begin({.storeFolder = folder.path()});
    httplib::Headers headers = uploadHeaders();
    headers.emplace("X-Goog-Upload-File-Name", "a%2F%C3%87i%C3%A7ek%201.jpg");
    ASSERT_EQ(statusOf(client->Post("/v1/uploads", headers, jpeg.toStdString(),
                                    "application/octet-stream")),
              200);
    emulator->addDisturbance({.kind = RequestKind::upload, .status = 500});
    upload(movie);
    emulator->addDisturbance({.kind = RequestKind::upload, .dropRequestAfter = 3});
    upload(movie);

    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        files.push_back(entry.path());
    ASSERT_EQ(files.size(), 1U);
    EXPECT_TRUE(pathText(files[0]).endsWith(u"-a_Çiçek 1.jpg"_s));
    EXPECT_EQ(readFile(files[0]), jpeg);
}

} // namespace

} // namespace quorvane::test

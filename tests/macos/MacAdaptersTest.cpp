#include "macos/StandInPhotos.h"
#include "macos/StandInSystem.h"
#include "platform/macos/AppleScripts.h"
#include "platform/macos/FileManagerTrash.h"
#include "platform/macos/FolderEvents.h"
#include "platform/macos/KeychainStore.h"
#include "platform/macos/MacDesktop.h"
#include "platform/macos/PhotoKitLibrary.h"
#include "platform/macos/SheetAuthSession.h"
#include "platform/macos/UnifiedLog.h"
#include "platform/macos/UserDefaults.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include "foundation/MainThread.h"
#include "library/PhotoAlbumService.h"
#include "platform/FolderWorld.h"

#include <gmock/gmock.h>

#include <fcntl.h>

#include <future>

namespace quorvane::test {

namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

class MacAdapters : public testing::Test {
  protected:
    MacAdapters() { mac = {}; }

    StandInSystem& mac = StandInSystem::shared();
    TemporaryFolder folder;
    RecordingLog log;
};

TEST_F(MacAdapters, AnAlbumOfThePhotosApplicationIsASourceOrAnEmptyOne) {
    StandInPhotos::shared().reset();
    for (const char* name : {"new/L0/001", "old/L0/001", "other/L0/001"})
        StandInPhotos::shared().put(StandInPhotos::Asset{name, {}, *name == 'n' ? 2000.0 : 1000.0});
    FakeConfirmation confirmation;
    PhotoKitLibrary library(confirmation, log);
    Preferences preferences(folder / "p.json");
    AppleScripts scripts;
    PhotoAlbumService albums(library, preferences, log, u"photos:"_s, &scripts);
    mac.scriptResult = "new/L0/001\nold/L0/001\n\n";
    const auto assets = albums.fetchAssets(u"photos_app_album:A"_s).oldestFirst;
    ASSERT_EQ(assets->size(), 2u);
    EXPECT_EQ(assets->front().localIdentifier.text(), u"old/L0/001");
    EXPECT_TRUE(mac.programs.back().starts_with("tell application \"Photos\"\n    set prevTIDs"));

    mac.scriptError = "Not authorized";
    EXPECT_TRUE(albums.fetchAssets(u"photos_app_album:A"_s).fetched->empty());
    EXPECT_TRUE(albums.fetchApplePhotosAlbums().empty());
    mac.compiles = false;
    EXPECT_TRUE(albums.fetchAssets(u"photos_app_album:A"_s).fetched->empty());
    EXPECT_TRUE(albums.fetchApplePhotosAlbums().empty());
    for (const QString& line :
         {u"Media item IDs AppleScript hatası: {"_s, u"Not authorized"_s,
          u"AppleScript albüm sorgusu hatası: {"_s, u"Media item IDs AppleScript derlenemedi"_s,
          u"[PhotoAlbumService] AppleScript derlenemedi"_s})
        EXPECT_TRUE(log.contains(line)) << line.toStdString();
}

TEST_F(MacAdapters, TheKeychainKeepsWhatItTakesAndSaysWhatItRefuses) {
    KeychainStore keychain;
    const QString key = u"com.quorvane.test"_s;
    EXPECT_EQ(keychain.write(key, u"eski"_s), 0);
    EXPECT_EQ(mac.lastAttributes, "access acct class data");
    mac.makesAccess = false;
    EXPECT_EQ(keychain.write(key, u"şifre"_s), 0);
    EXPECT_EQ(mac.lastAttributes, "accessible acct class data");
    EXPECT_EQ(keychain.read(key), u"şifre"_s);
    mac.addStatus = -34018;
    EXPECT_EQ(keychain.write(key, u"yeni"_s), -34018);
    EXPECT_FALSE(keychain.read(key)) << "the old one does not come back";
    mac.addStatus = 0;
    keychain.write(key, u"son"_s);
    keychain.remove(key);
    EXPECT_FALSE(keychain.read(key));
}

TEST_F(MacAdapters, ASheetEndsInEachOfItsWaysOnce) {
    struct Case {
        std::function<void(StandInSystem&)> set;
        QString outcome;
        bool stops = false;
    };
    const QString address = u"com.quorvane:/cb?code=1"_s;
    const std::vector<Case> cases{
        {[](auto& sheet) { sheet.callback = "com.quorvane:/cb?code=1"; }, address},
        {[](auto&) {}, QString()},
        {[](auto& sheet) { sheet.sheetError = "cancelled by the person"; },
         u"cancelled by the person"_s},
        {[](auto& sheet) { sheet.sheetStarts = false; }, u"not started"_s},
        {[](auto& sheet) { sheet.answers = false; }, u"stopped"_s, true},
    };
    for (const Case& one : cases) {
        mac = {};
        one.set(mac);
        std::optional<bool> started;
        std::stop_source stop;
        const auto attempt = [&] {
            SheetAuthSession session(log);
            const WebAuthRequest request{
                u"com.quorvane:/cb"_s, false, {}, false, [](const QString& redirect) {
                    return QUrl(u"https://accounts.example/?redirect_uri="_s + redirect);
                }};
            const auto tell = [&](bool did) {
                EXPECT_TRUE(isMainThread());
                started = did;
                if (one.stops)
                    stop.request_stop();
            };
            try {
                return session.authenticate(request, tell, stop.get_token()).toString();
            } catch (const Cancelled&) {
                return u"stopped"_s;
            } catch (const Error& error) {
                return started == false ? u"not started"_s : error.localizedDescription();
            }
        };
        auto outcome = std::async(std::launch::async, attempt);
        EXPECT_TRUE(waitOnMainThread(
            [&] { return outcome.wait_for(0s) == std::future_status::ready && mac.wasCancelled; }));
        EXPECT_EQ(outcome.get(), one.outcome);
        EXPECT_EQ(started, mac.sheetStarts);
    }
    EXPECT_TRUE(log.contains(u"[OAuth] 🪟 presentationAnchor istendi (isMain: true)"_s));
    StandInPhotos::shared().settle();
}

TEST_F(MacAdapters, FolderEventsWatchTheTopmostFoldersOnly) {
    using Wake = FolderNotifier::Wake;
    FolderEvents events;
    const auto root = folder.path();
    EXPECT_TRUE(events.watch({root / "b", root / "a/x", root / "a"}).gained);
    EXPECT_THAT(mac.watchedTrees,
                testing::ElementsAre((root / "a").native(), (root / "b").native()));
    EXPECT_FALSE(events.watch({root / "b", root / "a", root / "a/y"}).gained);
    EXPECT_EQ(events.wait(0ms, {}), Wake::timeout);
    mac.tellOfFolders();
    EXPECT_EQ(events.wait(5s, {}), Wake::changed);
    EXPECT_EQ(events.wait(0ms, {}), Wake::timeout);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(events.wait(60s, stop.get_token()), Wake::stopped);
    EXPECT_TRUE(events.watch({root / "a"}).gained);
    events.watch({});
    mac.tellOfFolders();
    EXPECT_EQ(events.wait(0ms, {}), Wake::timeout);
}

TEST_F(MacAdapters, TheTrashGivesBackWhatItTook) {
    folder.write("pictures/a.jpg", "bytes");
    std::filesystem::create_directory(folder / "trash");
    mac.trash = folder / "trash";
    FileManagerTrash trash;
    const auto file = folder / "pictures/a.jpg";
    const FileDescriptor opened = openFile(file.parent_path(), O_RDONLY | O_DIRECTORY);
    const std::string name = trash.take(opened, file);
    EXPECT_EQ(trash.statusOf(name).st_size, 5);
    EXPECT_THROW(trash.take(opened, file), Error);
    EXPECT_TRUE(trash.giveBack(name, opened, file));
    EXPECT_EQ(readFile(file), "bytes");
    EXPECT_THROW(trash.statusOf(name), FileError);
}

TEST_F(MacAdapters, SettingsLogAndShellSpeakToTheSystem) {
    UserDefaults defaults;
    Preferences preferences(defaults);
    const QString key = u"com.quorvane.test.setting"_s;
    preferences.setString(key, u"değer"_s);
    EXPECT_EQ(Preferences(defaults).string(key), u"değer"_s);
    preferences.setBoolean(key, true);
    EXPECT_TRUE(preferences.boolean(key));
    preferences.remove(key);
    EXPECT_FALSE(preferences.string(key));

    UnifiedLog().log(u"✅ satır %s"_s);
    EXPECT_THAT(mac.logged, testing::ElementsAre("com.quorvane app", "%{public}s ✅ satır %s"));

    MacDesktop desktop(folder.path(), log);
    MacDesktop::becomeAccessory();
    EXPECT_EQ(mac.activationPolicy, 1);
    for (const auto& [theme, name] :
         std::map<AppTheme, std::string>{{AppTheme::light, "NSAppearanceNameAqua"},
                                         {AppTheme::dark, "NSAppearanceNameDarkAqua"}}) {
        MacDesktop::useAppearance(theme);
        EXPECT_EQ(mac.appearance, name);
    }
    MacDesktop::useAppearance(AppTheme::system);
    EXPECT_TRUE(mac.appearance.empty());
    desktop.openPrivacySettings();
    EXPECT_EQ(mac.opened.back(),
              "x-apple.systempreferences:com.apple.preference.security?Privacy_Photos");
    desktop.open(folder / "log");
    EXPECT_TRUE(log.contains(u"[Desktop] ⚠️ Dosya açılamadı"_s));
    desktop.reveal("/a/b.jpg");
    EXPECT_EQ(mac.opened.back(), "file:///a/b.jpg");
    desktop.setStartsAtLogin(true);
    EXPECT_TRUE(desktop.startsAtLogin());
    EXPECT_TRUE(readFile(folder / "Library/LaunchAgents/com.quorvane.login.plist")
                    .contains("test-macos</string>"));
    desktop.setStartsAtLogin(false);
    EXPECT_FALSE(desktop.startsAtLogin());
}

} // namespace

} // namespace quorvane::test

#include "CliWorld.h"

#include "app/cli/Command.h"

#include <QJsonArray>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane::test {

namespace {

using CliTest = CliWorld;

/// The objects of machine-readable output; a line that is none fails the test.
std::vector<QJsonObject> objectsIn(const QString& output) {
    std::vector<QJsonObject> objects;
    for (const QString& line : output.split(u'\n', Qt::SkipEmptyParts)) {
        const QJsonDocument document = QJsonDocument::fromJson(line.toUtf8());
        EXPECT_TRUE(document.isObject()) << line.toStdString();
        objects.push_back(document.object());
    }
    return objects;
}

TEST_F(CliTest, everyCommandHelps) {
    EXPECT_EQ(run({u"--help"_s}).code, 0);
    EXPECT_EQ(run({u"--version"_s}).out, u"quorvane-cli " QUORVANE_VERSION "\n");
    for (const cli::Command& command : cli::allCommands()) {
        const Outcome help = run({command.spec.name, u"--help"_s});
        EXPECT_EQ(help.code, 0);
        EXPECT_TRUE(help.out.contains(u"quorvane-cli "_s + command.spec.name));
        EXPECT_EQ(help.err, QString());
    }
    EXPECT_FALSE(std::filesystem::exists(folders.home / "Library")) << "help leaves no trace";
}

TEST_F(CliTest, wrongUsageIsTold) {
    for (const QStringList& words : std::vector<QStringList>{
             {},
             {u"senkron"_s},
             {u"sync"_s, u"--date-fallback"_s, u"yesterday"_s},
             {u"albums"_s},
             {u"albums"_s, u"--local"_s, u"--google"_s},
             {u"retry"_s, u"all"_s},
             {u"handle-url"_s},
             {u"watch"_s, u"--settle"_s, u"bir"_s},
         }) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.code, 2) << words.join(u' ').toStdString();
        EXPECT_FALSE((outcome.out + outcome.err).isEmpty());
    }
}

TEST_F(CliTest, withoutASignInNothingIsUploaded) {
    sample::writeManyPictures(library, 1);
    for (const QStringList& words : {sync(), QStringList{u"albums"_s, u"--google"_s}}) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.code, 3);
        EXPECT_TRUE(outcome.err.contains(u"OAuth: kullanici giris yapmamis"))
            << outcome.err.toStdString();
    }
    std::filesystem::remove_all(folders.database().parent_path());
    std::filesystem::remove_all(folders.permanentStaging());
    EXPECT_EQ(run(sync({u"--dry-run"_s})).code, 0);
    EXPECT_EQ(run(sync({u"--dry-run"_s, u"--captions"_s})).code, 2) << "a folder has none";
    EXPECT_EQ(run({u"staging"_s}).code, 0);
    EXPECT_FALSE(std::filesystem::exists(folders.permanentStaging())) << "a trial leaves no trace";
    EXPECT_FALSE(std::filesystem::exists(folders.database()));
    EXPECT_EQ(emulator.requestCount(RequestKind::upload), 0);
}

TEST_F(CliTest, aLibraryIsBackedUpAndWhatIsHeldBackIsNamed) {
    const Outcome login = signIn();
    ASSERT_EQ(login.code, 0) << login.err.toStdString();
    EXPECT_TRUE(login.out.contains(u"Oturum açıldı: kullanici@example.com"));
    sample::writeSampleLibrary(library);

    const Outcome dryRun = run(sync({u"--dry-run"_s, u"--json"_s}));
    EXPECT_EQ(dryRun.code, 4);
    const auto forecast = objectsIn(dryRun.out);
    ASSERT_EQ(forecast.size(), 1U);
    EXPECT_EQ(stored(), Stored{});
    EXPECT_EQ(emulator.requestCount(RequestKind::upload), 0);

    std::filesystem::copy_file(library / "tarihsiz.jpg", library / "<i>tarihsiz & 1.jpg");
    const Outcome first = run(sync({u"--quiet"_s, u"--report"_s, u"rapor.html"_s}));
    EXPECT_EQ(first.code, 4) << first.out.toStdString() << first.err.toStdString();
    EXPECT_TRUE(first.out.contains(u"tarihsiz.jpg:")) << first.out.toStdString();
    Stored counts = stored();
    EXPECT_EQ(counts[SyncStatus::verified], forecast[0][u"toUpload"_s].toInt());
    EXPECT_EQ(counts[SyncStatus::dateUnresolved], forecast[0][u"undated"_s].toInt() + 1);
    const QString page = QString::fromUtf8(readFile(folder / "rapor.html"));
    EXPECT_TRUE(page.contains(u"&lt;i&gt;tarihsiz &amp; 1.jpg"_s)) << page.toStdString();
    EXPECT_TRUE(page.contains(u"<td>Doğrulanan (toplam)</td><td class=\"count\">%1<"_s.arg(
        counts[SyncStatus::verified])));
    for (const QString& outside : {u"<script"_s, u"http"_s, u"src="_s, u"<i>tarih"_s})
        EXPECT_FALSE(page.contains(outside)) << outside.toStdString();
    EXPECT_GT(counts[SyncStatus::dateUnresolved], 0);

    EXPECT_EQ(run({u"retry"_s, u"--date-fallback"_s, u"fileSaveDate"_s}).code, 0);
    const Outcome second = run({u"sync"_s, u"--json"_s}); // the library is remembered
    const auto objects = objectsIn(second.out);
    ASSERT_FALSE(objects.empty());
    const QJsonObject& summary = objects.back();
    EXPECT_EQ(summary[u"event"_s].toString(), u"summary");
    EXPECT_GT(summary[u"verified"_s].toInt(), 0);
    EXPECT_EQ(summary[u"verified"_s].toInt() + summary[u"failed"_s].toInt() +
                  summary[u"undated"_s].toInt(),
              counts[SyncStatus::dateUnresolved]);
    QStringList left;
    for (const QJsonValue& item : summary[u"items"_s].toArray())
        left += item[u"name"_s].toString();
    left.sort();
    EXPECT_EQ(left, (QStringList{u"bozuk.jpg"_s, u"hareketli.gif"_s})) << "no place for a date";
    EXPECT_TRUE(second.err.contains(u"[Sync]")) << "the log goes to standard error";
}

TEST_F(CliTest, anOddSurroundingDoesNoHarm) {
    sample::writeSampleLibrary(library);
    ASSERT_EQ(signIn().code, 0);
    ASSERT_EQ(::mkfifo((folder / ".env").c_str(), 0600), 0) << "nobody will ever write into it";
    inChild = [] {
        ::umask(0);
        ::close(STDIN_FILENO);
        ::close(STDERR_FILENO);
    };
    EXPECT_EQ(run({u"sync"_s, u"--library"_s, pathText(library), u"--quiet"_s}).code, 4);
    using std::filesystem::perms;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folders.home)) {
        if (entry.is_regular_file() && !entry.path().native().starts_with(library.native()) &&
            entry.path().filename() != "user-dirs.dirs") {
            EXPECT_EQ(entry.status().permissions() & (perms::group_all | perms::others_all),
                      perms::none)
                << entry.path();
        }
    }
}

TEST_F(CliTest, stagedCopiesAreShownAndOnlySafeOnesRemoved) {
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, 3);
    ASSERT_EQ(run(sync()).code, 0);
    const auto contents = [this]() -> QJsonValue {
        const auto listed = objectsIn(run({u"staging"_s, u"--json"_s}).out).at(0);
        return listed[u"folders"_s][0]; // the other one is the computer's
    };
    {
        Console silent(Console::Channel::silent);
        DatabaseManager db(folders.database(), silent);
        const QString identifier = db.fetchStatuses().front().first;
        db.updateStatus(identifier, googlePhotosProvider, pendingAccount, SyncStatus::failed);
    }
    replaceFile(folders.permanentStaging() / "mine.jpg", "a person's own");
    EXPECT_EQ(contents()[u"files"_s].toInt(), 4);
    EXPECT_EQ(contents()[u"statuses"_s][u"VERIFIED"_s][u"files"_s].toInt(), 2);
    EXPECT_GT(contents()[u"statuses"_s][u"FAILED"_s][u"bytes"_s].toInt(), 0);
    EXPECT_TRUE(run({u"staging"_s}).out.contains(u"Kaydı olmayan"));

    EXPECT_EQ(run({u"staging"_s, u"--prune"_s}).code, 1) << "nobody was asked";
    EXPECT_EQ(contents()[u"files"_s].toInt(), 4);
    const auto pruned = objectsIn(run({u"staging"_s, u"--prune"_s, u"--yes"_s, u"--json"_s}).out);
    EXPECT_EQ(pruned.at(0)[u"removed"_s][u"files"_s].toInt(), 2);
    EXPECT_EQ(contents()[u"files"_s].toInt(), 2);
    EXPECT_EQ(contents()[u"statuses"_s][u"FAILED"_s][u"files"_s].toInt(), 1);
    EXPECT_EQ(contents()[u"unknown"_s][u"files"_s].toInt(), 1);
}

TEST_F(CliTest, whatIsDoneIsNotDoneAgain) {
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, 5);
    const Outcome first = run(sync());
    EXPECT_EQ(first.code, 0) << first.out.toStdString() << first.err.toStdString();
    EXPECT_EQ(stored(), (Stored{{SyncStatus::verified, 5}}));
    EXPECT_EQ(emulator.mediaItems().size(), 5U);

    emulator.clearRequests();
    const Outcome second = run(sync({u"--quiet"_s}));
    EXPECT_EQ(second.code, 0);
    EXPECT_TRUE(second.out.startsWith(u"Yüklenecek yeni öğe yok"));
    EXPECT_TRUE(emulator.requests().empty());

    const auto status = objectsIn(run({u"status"_s, u"--json"_s}).out);
    ASSERT_EQ(status.size(), 1U);
    EXPECT_EQ(status[0][u"verified"_s].toInt(), 5);
    EXPECT_TRUE(status[0][u"signedIn"_s].toBool());
    EXPECT_TRUE(run({u"log"_s}).out.contains(u"🚀 Quorvane Başlatıldı"));
    for (const QString& place : {u"database"_s, u"log"_s})
        EXPECT_TRUE(std::filesystem::is_regular_file(pathFrom(status[0][place].toString())));

    EXPECT_EQ(run({u"logout"_s}).code, 0);
    EXPECT_EQ(emulator.requestCount(RequestKind::revoke), 1);
    EXPECT_EQ(run(sync()).code, 3);
}

TEST_F(CliTest, albumsOfBothSidesAreListed) {
    ASSERT_EQ(signIn().code, 0);
    sample::writeSampleLibrary(library);
    const QString id = emulator.addAlbum(u"Aile"_s, 12);
    EXPECT_EQ(run({u"albums"_s, u"--google"_s}).out, id + u"  Aile (12)\n"_s);
    const Outcome local = run({u"albums"_s, u"--local"_s, u"--library"_s, pathText(library)});
    EXPECT_EQ(local.code, 0);
    EXPECT_TRUE(local.out.contains(u"Yaz Tatili (8)")) << local.out.toStdString();

    EXPECT_EQ(run(sync({u"--album"_s, u"Yaz Tatili"_s, u"--target-album"_s, u"Aile"_s})).code, 0);
    EXPECT_EQ(emulator.mediaItems().size(), 8U);
    EXPECT_EQ(emulator.albums()[0].itemCount, 20);
    const Outcome unknown = run(sync({u"--album"_s, u"Yok"_s}));
    EXPECT_EQ(unknown.code, 1);
    EXPECT_EQ(unknown.err, u"Albüm bulunamadı: Yok\n");
}

TEST_F(CliTest, whatCannotWorkIsRefusedBeforeAnythingHappens) {
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, 1);
    folder.write("Eski.photoslibrary/database/photos.db", "older than the format we read");
    const struct {
        QString library, baseURL, text;
    } cases[]{
        {u"yok"_s, emulator.baseURL(), u"Arşiv bulunamadı: "_s},
        {u"arşiv/000/IMG_000000.jpg"_s, emulator.baseURL(), u"Arşiv bulunamadı: "_s},
        {u"Eski.photoslibrary"_s, emulator.baseURL(), u"Bu Fotoğraflar arşivi çok eski"_s},
        {u"arşiv"_s, u"http://photos.example.com"_s, u"QUORVANE_GOOGLE_BASE_URL"_s},
        {u"arşiv"_s, u"https://127.0.0.1:1"_s, u"QUORVANE_GOOGLE_BASE_URL"_s},
    };
    for (const auto& each : cases) {
        environment.insert(u"QUORVANE_GOOGLE_BASE_URL"_s, each.baseURL);
        const Outcome outcome = run({u"sync"_s, u"--library"_s, each.library});
        EXPECT_EQ(outcome.code, 1) << each.text.toStdString();
        EXPECT_TRUE(outcome.err.contains(each.text)) << outcome.err.toStdString();
    }
    EXPECT_EQ(stored(), Stored{});
    EXPECT_EQ(emulator.requestCount(RequestKind::upload), 0);
}

TEST_F(CliTest, aForeignStateDatabaseIsLeftAsItIs) {
    ASSERT_EQ(signIn().code, 0);
    sample::writeManyPictures(library, 1);
    for (const QByteArray& bytes : {QByteArray(5000, 'x'), QByteArray("SQLite format 3\0", 16)}) {
        const auto file = folder.write(folders.database().lexically_relative(folder.path()), bytes);
        for (const QStringList& words : {sync(), QStringList{u"retry"_s}}) {
            const Outcome outcome = run(words);
            EXPECT_EQ(outcome.code, 1) << words[0].toStdString();
            EXPECT_FALSE(outcome.err.isEmpty());
        }
        EXPECT_EQ(readFile(file), bytes);
    }
    EXPECT_EQ(emulator.requestCount(RequestKind::upload), 0);
}

} // namespace

} // namespace quorvane::test

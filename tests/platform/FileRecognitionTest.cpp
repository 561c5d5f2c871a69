#include "platform/folder/FileRecognition.h"

#include "FolderWorld.h"
#include "foundation/Crypto.h"
#include "platform/folder/FolderIdentity.h"
#include "platform/folder/FolderLibrary.h"
#include "support/Fakes.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvane::test {

namespace {

using std::filesystem::path;

const QString bogus = QStringLiteral("f").repeated(64);
const char* const library =
    "mkdir A B; printf one | tee A/1.jpg > same.jpg; printf two! > A/2.jpg; "
    "printf ONE > B/1.jpg; touch -d @1500000000 A/* B/* same.jpg";

enum Staged { staged, unstaged, damaged }; ///< damaged: reading would not find it again

struct Case {
    const char* name;
    Staged state;
    const char* act; ///< commands in the library's folder
    /// "file=file of the beginning", "=-" for gone, "=" for another picture. Without what stayed.
    const char* now;
    const char* superseded;

    friend void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }
};

const Case cases[] = {
    {"Touched", staged, "touch -d @5 A/1.jpg; chmod 600 A/2.jpg", "", ""},
    {"FolderRenamed", damaged, "mv A D", "D/1.jpg=A/1.jpg D/2.jpg=A/2.jpg A/1.jpg=- A/2.jpg=-", ""},
    {"FoldersSwapped", damaged, "mv A C; mv B A; mv C B",
     "A/1.jpg=B/1.jpg B/1.jpg=A/1.jpg B/2.jpg=A/2.jpg A/2.jpg=-", ""},
    {"AnotherFolderInItsPlace", damaged, "mv A C; mkdir A; printf new > A/1.jpg",
     "C/1.jpg=A/1.jpg C/2.jpg=A/2.jpg A/1.jpg= A/2.jpg=-", ""},
    {"AnotherCardAtThePath", staged, "rm A/*; printf ENO > A/1.jpg; printf OWT! > A/2.jpg",
     "A/1.jpg= A/2.jpg=", "A/1.jpg A/2.jpg"},
    {"FileRenamed", staged, "mv A/2.jpg x.jpg", "x.jpg=A/2.jpg A/2.jpg=-", ""},
    {"NamesSwapped", staged, "mv A/1.jpg x; mv B/1.jpg A/1.jpg; mv x B/1.jpg",
     "A/1.jpg=B/1.jpg B/1.jpg=A/1.jpg", ""},
    {"RestoredFromACopy", staged, "rm A/*; printf one > B/x.jpg; printf two! > A/2.jpg",
     "B/x.jpg=A/1.jpg A/1.jpg=-", ""},
    {"Edited", staged, "printf edited > A/1.jpg", "A/1.jpg=", "A/1.jpg"},
    {"EditedWithTheSameSizeAndTime", staged, "printf uno > A/1.jpg; touch -r B/1.jpg A/1.jpg",
     "A/1.jpg=", "A/1.jpg"},
    {"EditedBesideACopyOfTheOriginal", staged, "cp A/1.jpg A/x.jpg; printf edited > A/1.jpg",
     "A/x.jpg=A/1.jpg A/1.jpg=", ""},
    {"Copied", staged, "cp -p A/1.jpg x.jpg", "x.jpg=", ""},
    {"UnstagedSwapped", unstaged, "mv A/1.jpg x; mv B/1.jpg A/1.jpg; mv x B/1.jpg; mv A/2.jpg B",
     "A/1.jpg=B/1.jpg B/1.jpg=A/1.jpg B/2.jpg=A/2.jpg A/2.jpg=-", ""},
    {"UnstagedLinked", unstaged, "ln A/1.jpg A/0.jpg", "A/0.jpg=", ""},
    {"UnstagedEdited", unstaged, "printf edited > A/1.jpg", "A/1.jpg=", "A/1.jpg"},
};

class FileRecognition : public testing::Test {
  protected:
    FileRecognition() { begin(); }

    void begin() {
        std::filesystem::remove_all(root);
        std::filesystem::create_directory(root);
        runIn(root, quorvane::test::library);
        known = {};
    }

    std::map<std::string, QString> identifiers(PhotoLibrary& photos) {
        std::map<std::string, QString> found;
        const AssetFetchResult assets = photos.fetchAssets();
        for (const PhotoAsset& asset : *assets)
            found[photos.assetResources(asset).at(0).location] = asset.localIdentifier;
        return found;
    }

    void stage(Staged state) {
        for (const auto& [name, file] : known.rows)
            if (state != unstaged)
                known.contents[file.identifier] =
                    state == damaged
                        ? bogus
                        : QString::fromLatin1(Sha256::digest(readFile(root / name)).toHex());
    }

    TemporaryFolder folder;
    path root = folder / "library";
    RememberedFiles known;
    FakeConfirmation confirmation;
    RecordingLog log;
};

class FileRecognitionCase : public FileRecognition, public testing::WithParamInterface<Case> {};

} // namespace

TEST_P(FileRecognitionCase, TellsWhichVersionIsWhich) {
    const Case& row = GetParam();
    for (const bool restarted : {true, false}) {
        SCOPED_TRACE(restarted ? "found by another run" : "found by the same run");
        begin();
        FolderLibrary first(root, known, confirmation, log), second(root, known, confirmation, log);
        const auto before = identifiers(first);
        stage(row.state);
        runIn(root, row.act);
        FolderLibrary& photos = restarted ? second : first;
        const auto after = identifiers(photos);

        auto expected = before;
        for (const QString& word : QString::fromUtf8(row.now).split(u' ', Qt::SkipEmptyParts)) {
            const std::string name = word.section(u'=', 0, 0).toStdString();
            const std::string was = word.section(u'=', 1).toStdString();
            if (was == "-") {
                expected.erase(name);
            } else if (!was.empty()) {
                expected[name] = before.at(was);
            } else {
                expected[name] = after.contains(name) ? after.at(name) : QString();
                for (const auto& [path, identifier] : before)
                    EXPECT_NE(expected[name], identifier) << name << " goes by that of " << path;
            }
        }
        EXPECT_EQ(after, expected);
        QStringList replaced, expectedReplaced;
        for (const QUuid& identifier : known.superseded)
            replaced +=
                identifier.toString(QUuid::WithoutBraces).toUpper() + QStringLiteral("/L0/001");
        for (const QString& name :
             QString::fromUtf8(row.superseded).split(u' ', Qt::SkipEmptyParts))
            expectedReplaced += before.at(name.toStdString());
        EXPECT_THAT(replaced, testing::UnorderedElementsAreArray(expectedReplaced));

        EXPECT_EQ(known.updates, 2);
        FolderLibrary third(root, known, confirmation, log);
        EXPECT_EQ(identifiers(photos), after);
        EXPECT_EQ(identifiers(third), after);
        EXPECT_EQ(known.updates, 2) << "wrote although nothing changed";
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, FileRecognitionCase, testing::ValuesIn(cases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(FileRecognition, FindsTheSameIdentifiersWhenEverythingWasForgotten) {
    FolderLibrary first(root, known, confirmation, log);
    const auto before = identifiers(first);
    std::filesystem::rename(root, folder / "elsewhere");
    RememberedFiles nothing;
    FolderLibrary moved(folder / "elsewhere", nothing, confirmation, log);
    EXPECT_EQ(identifiers(moved), before);
}

TEST_F(FileRecognition, NeverTakesAFileThatCannotBeReadForAnotherVersion) {
    const KnownFile was{"a.jpg", QUuid::createUuid(), {3, 1, 1, 1}};
    known.contents[was.identifier] = bogus;
    std::vector<KnownFile> files{{"a.jpg", {}, {3, 2, 2, 1}}, {"new.jpg", {}, {9, 2, 2, 2}}};
    int reads = 0;
    const auto found = recogniseFiles(files, KnownByPath({&was}), QUuid::createUuid(), known,
                                      [&](const std::string&) -> std::optional<SourceContent> {
                                          ++reads;
                                          return std::nullopt;
                                      });
    EXPECT_TRUE(files[0].identifier.isNull());
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(found.changed, (std::vector{files[1]}));
    EXPECT_EQ(found.absent, (std::vector{was}));
    EXPECT_TRUE(found.superseded.empty() && found.gone.empty());
}

TEST_F(FileRecognition, KnowsALibraryFolderByWhatTheFileSystemSays) {
    const QString identity = folderLibraryIdentity(root);
    EXPECT_FALSE(identity.isEmpty());
    std::filesystem::create_directory_symlink(root, folder / "link");
    EXPECT_EQ(folderLibraryIdentity(folder / "link"), identity);
    std::filesystem::rename(root, folder / "moved");
    EXPECT_EQ(folderLibraryIdentity(root), QString());
    std::filesystem::copy(folder / "moved", root, std::filesystem::copy_options::recursive);
    EXPECT_NE(folderLibraryIdentity(root), identity);
    EXPECT_EQ(folderLibraryIdentity(folder / "moved"), identity);

    const auto file = folder.write("card/DCIM/1.jpg", "picture");
    const LibraryFile kept{"DCIM/1.jpg", {}, *fileVersion(file)}, gone{"DCIM/2.jpg", {}, {}};
    EXPECT_TRUE(holdsFiles(folder / "card", {}));
    EXPECT_TRUE(holdsFiles(folder / "card", {kept, gone}));
    EXPECT_FALSE(holdsFiles(folder / "card", {kept, gone, gone}));

    std::filesystem::create_directories(folder / "QuorvaneStaging_Permanent/sub");
    std::filesystem::create_directory_symlink(folder / "QuorvaneStaging_Permanent",
                                              folder / "shortcut");
    for (const char* name : {"QuorvaneStaging_Permanent", "QuorvaneStaging_Permanent/sub",
                             "shortcut", "QuorvaneStaging_Permanent/", "QuorvaneStaging"})
        EXPECT_TRUE(isStagingFolder(folder / name)) << name;
    EXPECT_FALSE(isStagingFolder(folder / "moved"));
}

} // namespace quorvane::test

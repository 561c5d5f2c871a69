#include "platform/MadeBundle.h"
#include "platform/PhotoLibraryContract.h"

#include "platform/folder/FolderLibrary.h"

namespace quorvane::test {

namespace {

using namespace std::chrono_literals;

constexpr WatchTimes soon{20ms, 200ms, 100ms, 300ms};

/// An album is a folder; a picture's date is that of its file.
class FolderContractWorld final : public LibraryWorld {
  public:
    FolderContractWorld() {
        std::filesystem::create_directories(root);
        qputenv("XDG_DATA_HOME", QByteArray::fromStdString((folder / "data").native()));
    }
    ~FolderContractWorld() override { qunsetenv("XDG_DATA_HOME"); }

    PhotoLibrary& library() override { return library_; }
    void add(const std::string& name, const QByteArray& bytes, int date,
             const std::string& album) override {
        const std::filesystem::path file = root / album / name;
        std::filesystem::create_directories(file.parent_path());
        setModified(folder.write("beside", bytes), date); // it comes as it stays
        std::filesystem::rename(folder / "beside", file);
    }
    void replace(const std::string& name, const QByteArray& bytes) override {
        folder.write("library/" + name, bytes);
    }
    void takeBytes(const std::string& name) override { std::filesystem::remove(root / name); }
    void answerDeletion(bool agreed) override { confirmation.answer = agreed; }

  private:
    TemporaryFolder folder;
    std::filesystem::path root = folder / "library";
    RememberedFiles known;
    FakeConfirmation confirmation;
    RecordingLog log;
    FolderLibrary library_{root, known, confirmation, log, soon};
};

class BundleContractWorld final : public LibraryWorld, private MadeBundle {
  public:
    BundleContractWorld() {
        MadeBundle::SetUp();
        make();
    }

    PhotoLibrary& library() override { return watched; }
    void add(const std::string& name, const QByteArray& bytes, int date,
             const std::string& album) override {
        const std::string key = std::to_string(++last);
        const std::string kind = name.ends_with(".mov") ? "1" : "0";
        setModified(folder.write("Made.photoslibrary/originals/0/" + name, bytes), date);
        execute("BEGIN");
        addAsset(last, ", ZDIRECTORY, ZFILENAME, ZDATECREATED, ZKIND",
                 ", '0', '" + name + "', " + std::to_string(date - 978307200) + ", " + kind);
        execute("INSERT INTO ZADDITIONALASSETATTRIBUTES VALUES (" + key + ", '" + name +
                "', NULL)");
        if (!album.empty())
            execute("INSERT INTO ZGENERICALBUM (Z_PK, ZUUID, ZKIND, ZTITLE) VALUES (1, 'U1', 2, '" +
                    album + "'); INSERT INTO Z_30ASSETS VALUES (1, " + key + ", 1)");
        execute("COMMIT");
    }
    void replace(const std::string& name, const QByteArray& bytes) override {
        folder.write("Made.photoslibrary/originals/0/" + name, bytes);
    }
    void takeBytes(const std::string& name) override {
        std::filesystem::remove(bundle / "originals/0" / name);
    }
    bool canDelete() const override { return false; }
    void answerDeletion(bool) override {}

  private:
    void TestBody() override {}

    int last = 0;
    PhotosBundleLibrary watched{bundle, work, log, soon};
};

template <typename World>
std::shared_ptr<LibraryWorld> make() {
    return std::make_shared<World>();
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Folder, PhotoLibraryContract, testing::Values(&make<FolderContractWorld>));
INSTANTIATE_TEST_SUITE_P(Bundle, PhotoLibraryContract, testing::Values(&make<BundleContractWorld>));

} // namespace quorvane::test

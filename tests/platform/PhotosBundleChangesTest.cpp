#include "ChangeRecorder.h"
#include "MadeBundle.h"

#include <thread>

namespace quorvane::test {

namespace {

using namespace std::chrono_literals;

/// A library that Photos, or whoever, goes on writing.
class BundleChanges : public MadeBundle {
  protected:
    void SetUp() override {
        MadeBundle::SetUp();
        make();
        addAsset(1);
        addAsset(2);
    }

    static QStringList identifiers(const std::vector<int>& keys) {
        QStringList result;
        for (const int key : keys)
            result.append(QString::fromStdString(uuid(key) + "/L0/001"));
        return result;
    }

    PhotosBundleLibrary watched{bundle, work, log, {20ms, 200ms, 100ms, 60'000ms}};
};

} // namespace

TEST_F(BundleChanges, AreToldAgainstWhatTheObserverHolds) {
    execute("INSERT INTO ZGENERICALBUM (Z_PK, ZUUID, ZKIND, ZTITLE) VALUES (1, 'U1', 2, 'album')");
    execute("INSERT INTO Z_30ASSETS VALUES (1, 1, 1)");
    const auto album = watched.fetchAssetCollection(QStringLiteral("U1/L0/040")).value();
    for (const bool wholeLibrary : {true, false}) {
        ChangeRecorder observer(wholeLibrary ? watched.fetchAssets() : watched.fetchAssets(album));
        watched.registerChangeObserver(observer);
        EXPECT_TRUE(observer.waitFor([&] { return observer.calls() > 0; }));
        const int added = wholeLibrary ? 3 : 4;
        addAsset(added);
        execute("UPDATE ZASSET SET ZDATECREATED = " + std::to_string(added) + " WHERE Z_PK = 1");
        execute("UPDATE ZASSET SET ZTRASHEDSTATE = 1 WHERE Z_PK = 2");
        execute("INSERT INTO Z_30ASSETS VALUES (1, " + std::to_string(added) + ", 2)");
        EXPECT_TRUE(observer.waitFor([&] {
            return observer.inserted() == identifiers({added}) && !observer.changed().isEmpty();
        }));
        EXPECT_EQ(observer.changed(), identifiers({1}));
        EXPECT_EQ(observer.removed(), wholeLibrary ? identifiers({2}) : QStringList());
        watched.unregisterChangeObserver(observer);
    }
}

TEST_F(BundleChanges, NeverShowHalfATransaction) {
    database->execute("PRAGMA wal_autocheckpoint = 20");
    std::jthread writer([&](const std::stop_token& stop) {
        for (int key = 3; !stop.stop_requested(); key += 2) {
            execute("BEGIN");
            addAsset(key);
            addAsset(key + 1);
            execute("COMMIT");
        }
    });
    std::size_t seen = 0;
    const auto end = std::chrono::steady_clock::now() + 1s;
    while (std::chrono::steady_clock::now() < end) {
        try {
            const auto assets = watched.fetchAssets();
            EXPECT_EQ(assets->size() % 2, 0u);
            EXPECT_GE(assets->size(), seen);
            seen = assets->size();
        } catch (const PhotoLibraryError& error) { // it did not stand still
            EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("sürekli değişiyor")))
                << error.what();
        }
    }
    writer = {};
    EXPECT_GE(watched.fetchAssets()->size(), std::max<std::size_t>(seen, 4));
}

} // namespace quorvane::test

#include "platform/PhotoLibraryContract.h"

#include "foundation/Crypto.h"
#include "foundation/File.h"
#include "platform/ChangeRecorder.h"

#include <gmock/gmock.h>

namespace quorvane::test {

using testing::ElementsAre;

std::vector<std::string> PhotoLibraryContract::namesOf(const AssetFetchResult& assets) {
    std::vector<std::string> names;
    for (const PhotoAsset& each : *assets)
        names.push_back(library.assetResources(each).at(0).originalFilename.toStdString());
    return names;
}

PhotoAsset PhotoLibraryContract::asset(const std::string& name) {
    const AssetFetchResult assets = library.fetchAssets();
    for (const PhotoAsset& each : *assets)
        if (library.assetResources(each).at(0).originalFilename.toStdString() == name)
            return each;
    ADD_FAILURE() << "no " << name;
    return {};
}

PhotoAssetResource PhotoLibraryContract::resource(const std::string& name) {
    return library.assetResources(asset(name)).at(0);
}

DeletionCandidate PhotoLibraryContract::candidate(const std::string& name) {
    return {asset(name), library.readContent(resource(name), {})};
}

TEST_P(PhotoLibraryContract, ListsOldestFirstAndFindsInTheOrderAskedFor) {
    EXPECT_TRUE(library.fetchAssets()->empty());
    world->add("new.jpg", "n", 3000, {});
    world->add("old.jpg", "o", 1000, {});
    world->add("film.mov", "f", 2000, {});
    const AssetFetchResult assets = library.fetchAssets();
    EXPECT_THAT(namesOf(assets), ElementsAre("old.jpg", "film.mov", "new.jpg"));
    EXPECT_EQ(assets->at(1).mediaType, AssetMediaType::video);
    const QStringList asked{assets->at(2).localIdentifier, QStringLiteral("gone/L0/001"),
                            assets->at(0).localIdentifier};
    EXPECT_THAT(namesOf(library.fetchAssets(asked)), ElementsAre("new.jpg", "old.jpg"));
    EXPECT_TRUE(library.factsOf(asked[0]));
    EXPECT_FALSE(library.factsOf(asked[1]));
    EXPECT_TRUE(library.assetResources({}).empty());
}

TEST_P(PhotoLibraryContract, ShowsAlbumsAndWhatIsInThem) {
    world->add("a.jpg", "a", 1000, "Yaz ☀");
    world->add("b.jpg", "b", 2000, {});
    const auto albums =
        library.fetchAssetCollections(CollectionType::album, collectionSubtype::albumRegular);
    ASSERT_EQ(albums.size(), 1u);
    EXPECT_EQ(albums[0].title, QStringLiteral("Yaz ☀"));
    EXPECT_EQ(albums[0].estimatedAssetCount.value_or(1), 1);
    EXPECT_THAT(namesOf(library.fetchAssets(albums[0])), ElementsAre("a.jpg"));
    EXPECT_EQ(library.fetchAssetCollection(albums[0].localIdentifier)->title, albums[0].title);
    EXPECT_EQ(library.fetchTopLevelUserCollections().size(), 1u);
    AssetCollection gone;
    gone.localIdentifier = QStringLiteral("gone/L0/040");
    EXPECT_FALSE(library.fetchAssetCollection(gone.localIdentifier));
    EXPECT_TRUE(library.fetchAssets(gone)->empty());
    EXPECT_TRUE(library.fetchCollections({QStringLiteral("gone/L0/020"), {}}).empty());
}

TEST_P(PhotoLibraryContract, ExportsWholeFilesOrNothing) {
    for (const int size : {0, 1, 4095, 4097, 5'000'001}) {
        QByteArray bytes(size, 'y');
        for (int i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i * 31 + (i >> 11)); // no piece is like another
        const std::string name = std::to_string(size) + ".jpg";
        world->add(name, bytes, 1'500'000'000, {});
        const auto original = resource(name);
        const SourceContent content = library.writeData(original, out / name, {});
        EXPECT_EQ(readFile(out / name), bytes);
        EXPECT_EQ(content.sha256.toLatin1(), Sha256::digest(bytes).toHex());
        EXPECT_EQ(content, library.readContent(original, {}));
        EXPECT_EQ(content.version, library.versionOf(original));
        EXPECT_EQ(content.sample, library.sampleOf(original).value_or(content.sample));
        struct stat status {};
        ::stat((out / name).c_str(), &status);
        EXPECT_EQ(status.st_mtime, 1'500'000'000);
        EXPECT_EQ(status.st_mode & 0777, 0600u);
        EXPECT_THROW(library.writeData(original, out / name, {}), FileError);
        std::filesystem::remove(out / name);
    }
    std::stop_source stopped;
    stopped.request_stop();
    const auto original = resource("1.jpg");
    EXPECT_THROW(library.writeData(original, out / "x", stopped.get_token()), Cancelled);
    EXPECT_THROW(library.readContent(original, stopped.get_token()), Cancelled);
    world->takeBytes("1.jpg");
    EXPECT_THROW(library.writeData(original, out / "x", {}), Error);
    EXPECT_THROW(library.readContent(original, {}), Error);
    EXPECT_TRUE(std::filesystem::is_empty(out.path()));
}

TEST_P(PhotoLibraryContract, TellsOfChangesUntilNobodyListens) {
    world->add("a.jpg", "a", 1000, {});
    ChangeRecorder first(library.fetchAssets()), observer(library.fetchAssets());
    library.registerChangeObserver(first);
    library.registerChangeObserver(observer);
    world->add("b.jpg", "b", 2000, {});
    EXPECT_TRUE(observer.waitFor([&] { return !observer.inserted().isEmpty(); }));
    EXPECT_EQ(observer.inserted(), QStringList{asset("b.jpg").localIdentifier});
    library.unregisterChangeObserver(observer);
    const int calls = observer.calls();
    world->add("c.jpg", "c", 3000, {});
    library.unregisterChangeObserver(observer);
    EXPECT_EQ(observer.calls(), calls);
    EXPECT_TRUE(first.inserted().isEmpty());
}

TEST_P(PhotoLibraryContract, RemovesOnlyWhatIsAgreedAndProven) {
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"})
        world->add(name, name, 1000, {});
    const std::vector<DeletionCandidate> all = {candidate("a.jpg"), candidate("b.jpg"),
                                                candidate("a.jpg")};
    world->answerDeletion(false);
    EXPECT_THROW(library.deleteAssets(all, {}, guard, {}), PhotoLibraryError);
    EXPECT_EQ(guard.deleted, 0);
    EXPECT_EQ(library.fetchAssets()->size(), 3u);
    if (!world->canDelete())
        return;
    guard = {};
    world->answerDeletion(true);
    world->replace("b.jpg", "edited");
    library.deleteAssets(all, {}, guard, {});
    EXPECT_EQ(guard.deleted, 1);
    ASSERT_EQ(guard.reasons.size(), 1);
    EXPECT_TRUE(guard.reasons[0].contains(QStringLiteral("aynı değil")));
    EXPECT_THAT(namesOf(library.fetchAssets()), testing::UnorderedElementsAre("b.jpg", "c.jpg"));

    std::stop_source stopped;
    stopped.request_stop();
    library.deleteAssets({candidate("c.jpg")}, {}, guard, stopped.get_token());
    EXPECT_EQ(guard.deleted, 1);
    EXPECT_EQ(library.fetchAssets()->size(), 2u);
}

} // namespace quorvane::test

#include "library/LiveFetches.h"

#include <gtest/gtest.h>

namespace quorvane {

namespace {

AssetFetchResult resultOf(const char* letters) {
    auto assets = std::make_shared<std::vector<PhotoAsset>>();
    for (const char* letter = letters; *letter != '\0'; ++letter) {
        PhotoAsset asset;
        asset.localIdentifier = QChar::fromLatin1(*letter).toLower();
        asset.mediaSubtypes = QChar::fromLatin1(*letter).isUpper() ? 1 : 0;
        assets->push_back(asset);
    }
    return assets;
}

std::string lettersOf(const std::vector<PhotoAsset>& assets) {
    std::string letters;
    for (const PhotoAsset& asset : assets)
        letters += asset.localIdentifier.toStdString();
    return letters;
}

} // namespace

TEST(LiveFetches, TellsWhatCameWentAndChanged) {
    const struct {
        const char *before, *after, *inserted, *removed, *changed;
    } rows[] = {
        {"abc", "abc", "", "", ""}, {"abc", "cab", "", "", ""},     {"", "ab", "ab", "", ""},
        {"ab", "", "", "ab", ""},   {"abc", "dbe", "de", "ac", ""}, {"abc", "aBc", "", "", "b"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.before) + " -> " + row.after);
        LiveFetches fetches;
        AssetFetchResult now = resultOf(row.after);
        const auto before = fetches.remember(resultOf(row.before), [&] { return now; });
        const auto details = fetches.changeDetails(before);
        ASSERT_EQ(details.has_value(), std::string(row.inserted) + row.removed + row.changed != "");
        EXPECT_FALSE(fetches.changeDetails(resultOf(row.before))) << "was never handed out";
        EXPECT_FALSE(fetches.changeDetails(nullptr));
        if (!details)
            continue;
        EXPECT_EQ(lettersOf(details->insertedObjects), row.inserted);
        EXPECT_EQ(lettersOf(details->removedObjects), row.removed);
        EXPECT_EQ(lettersOf(details->changedObjects), row.changed);
        EXPECT_EQ(details->fetchResultAfterChanges, now);
        EXPECT_FALSE(fetches.changeDetails(now));
        now = nullptr; // known to be unchanged
        EXPECT_FALSE(fetches.changeDetails(details->fetchResultAfterChanges));
        now = resultOf("z"); // the new result lives on
        EXPECT_EQ(
            lettersOf(fetches.changeDetails(details->fetchResultAfterChanges)->insertedObjects),
            "z");
    }
}

} // namespace quorvane

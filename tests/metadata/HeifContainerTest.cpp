#include "metadata/heif/HeifContainer.h"

#include "HeifTestFile.h"

#include <gtest/gtest.h>

#include <functional>

using namespace quorvane;
using namespace quorvane::test;

namespace {

const QByteArray countedMarker("\0\0\0\6Exif\0\0", 10);
const QByteArray noMarker("\0\0\0\0", 4);
const QByteArray uncountedMarker("\0\0\0\0Exif\0\0", 10);

const QByteArray oldBlock = tiffBlock(60);

/// A picture of one primary image, a second image and the primary's Exif.
HeifTestFile picture() {
    HeifTestFile file;
    file.items = {{1, "hvc1", "the coded primary image"},
                  {2, "hvc1", "the coded thumbnail"},
                  {3, "Exif", countedMarker + oldBlock}};
    file.references = {{"thmb", 2, {1}}, {"cdsc", 3, {1}}};
    return file;
}

HeifTestFile pictureWithoutExif() {
    HeifTestFile file = picture();
    file.items.pop_back();
    file.references.pop_back();
    return file;
}

QByteArray replacedHeif(const QByteArray& file, const QByteArray& block) {
    return heif::replaceExif(viewOf(file), viewOf(block)).apply(viewOf(file));
}

/// The Exif item of the primary image in a file that the product wrote.
std::uint32_t exifItem(const HeifContent& content) {
    for (const HeifTestReference& reference : content.references)
        if (reference.type == "cdsc" && content.types.at(reference.from) == "Exif" &&
            std::ranges::count(reference.to, content.primary) > 0)
            return reference.from;
    for (const auto& [id, type] : content.types)
        if (type == "Exif")
            return id;
    return 0;
}

/// Everything but the Exif of the primary image is as before, and that is `block`.
void expectOnlyExifChanged(const QByteArray& before, const QByteArray& after,
                           const QByteArray& block) {
    const HeifContent was(before);
    const HeifContent is(after);
    const std::uint32_t exif = exifItem(is);
    EXPECT_EQ(is.types.at(exif), "Exif");
    EXPECT_TRUE(is.items.at(exif).endsWith(block));
    EXPECT_EQ(heif::readExif(viewOf(after)), block);
    for (const auto& [id, bytes] : was.items) {
        EXPECT_TRUE(id == exif || is.items.at(id) == bytes) << "item " << id;
    }
    EXPECT_LE(is.items.size(), was.items.size() + 1);
    for (const auto& [id, type] : was.types)
        EXPECT_EQ(is.types.at(id), type);
    EXPECT_EQ(is.primary, was.primary);
    EXPECT_EQ(is.others, was.others);
    EXPECT_EQ(is.metaBoxes, was.metaBoxes);
    EXPECT_EQ(is.chunks, was.chunks);
}

struct LayoutCase {
    const char* name;
    std::function<void(HeifTestFile&)> shape;
};

std::vector<LayoutCase> layouts() {
    return {
        {"asCamerasWriteIt", [](auto&) {}},
        {"locationsOfVersion0", [](auto& file) { file.ilocVersion = 0; }},
        {"locationsOfVersion2",
         [](auto& file) {
             file.ilocVersion = 2;
             file.sizes = 0x4404;
         }},
        {"wideFields", [](auto& file) { file.sizes = 0x8888; }},
        {"offsetsInBase", [](auto& file) { file.sizes = 0x4440; }},
        {"offsetsInBaseOnly", [](auto& file) { file.sizes = 0x0480; }},
        {"extentsFromABase",
         [](auto& file) {
             file.sizes = 0x4440;
             file.items[0].extents = 3;
             file.items[2].extents = 4;
         }},
        {"longNumbers",
         [](auto& file) {
             file.longIds = true;
             file.ilocVersion = 2;
             file.primary = file.items[0].id = 70'000;
             file.references = {{"thmb", 2, {70'000}}, {"cdsc", 3, {70'000}}};
         }},
        {"mediaBeforeMeta", [](auto& file) { file.order = "ftyp mdat meta sefd"; }},
        {"twoMediaBoxes", [](auto& file) { file.order = "ftyp mdat free meta mdat"; }},
        {"privateBoxAtTheEnd", [](auto& file) { file.order = "ftyp meta mdat mpvd"; }},
        {"openMediaBox", [](auto& file) { file.order = "ftyp meta mdat mdat0"; }},
        {"longSizes", [](auto& file) { file.longMediaSizes = file.longMetaSize = true; }},
        {"itemDataInMeta", [](auto& file) { file.items[1].method = 1; }},
        {"exifInMeta", [](auto& file) { file.items.back().method = 1; }},
        {"movieOfShortOffsets", [](auto& file) { file.chunkTable = "stco"; }},
        {"movieOfLongOffsets", [](auto& file) { file.chunkTable = "co64"; }},
        {"itemOfItems",
         [](auto& file) {
             file.items.insert(file.items.begin() + 1, {9, "grid", "", 2});
         }},
        {"exifOfAnotherImage",
         [](auto& file) {
             file.items.insert(file.items.begin(), {7, "Exif", noMarker + tiffBlock(33)});
             file.references.insert(file.references.begin(), {"cdsc", 7, {2}});
         }},
        {"exifOfSeveralImages",
         [](auto& file) {
             file.references.back().to = {2, 1};
         }},
        {"sixtyTwoItems",
         [](auto& file) {
             for (std::uint32_t id = 10; file.items.size() < 62; ++id)
                 file.items.insert(file.items.begin(), {id, "hvc1", "tile" + bigEndian(id, 4)});
         }},
    };
}

TEST(HeifContainer, ReplacesOrAddsTheExifOfAnyLayoutAndKeepsEverythingElse) {
    for (const LayoutCase& layout : layouts()) {
        SCOPED_TRACE(layout.name);
        HeifTestFile shape = picture();
        layout.shape(shape);
        const QByteArray file = shape.build();
        ASSERT_EQ(heif::readExif(viewOf(file)), oldBlock);

        const QByteArray same = replacedHeif(file, tiffBlock(60, 'n'));
        ASSERT_EQ(same.size(), file.size());
        EXPECT_EQ(differences(file, same), 60 - 14) << "all but the block's header";
        EXPECT_TRUE(heif::replaceExif(viewOf(file), viewOf(oldBlock)).isIdentity(viewOf(file)));
        expectOnlyExifChanged(file, same, tiffBlock(60, 'n'));

        const QByteArray longer = replacedHeif(file, tiffBlock(5'060));
        const QByteArray shorter = replacedHeif(file, tiffBlock(20));
        expectOnlyExifChanged(file, longer, tiffBlock(5'060));
        expectOnlyExifChanged(file, shorter, tiffBlock(20));
        EXPECT_EQ(replacedHeif(longer, tiffBlock(5'060)), longer);
        EXPECT_EQ(replacedHeif(longer, tiffBlock(20)), shorter) << "an earlier block left a trace";
        EXPECT_EQ(replacedHeif(shorter, tiffBlock(5'060)), longer)
            << "an earlier block left a trace";

        std::erase_if(shape.items, [](const auto& item) { return item.id == 3; });
        std::erase_if(shape.references, [](const auto& reference) { return reference.from == 3; });
        const QByteArray without = shape.build();
        ASSERT_FALSE(heif::readExif(viewOf(without)));
        const QByteArray added = replacedHeif(without, tiffBlock(100));
        expectOnlyExifChanged(without, added, tiffBlock(100));
        const HeifContent content(added);
        EXPECT_EQ(content.items.at(exifItem(content)), countedMarker + tiffBlock(100));
        EXPECT_EQ(content.flags.at(exifItem(content)), 1) << "hidden";
        EXPECT_EQ(replacedHeif(added, tiffBlock(100)), added);
        EXPECT_EQ(replacedHeif(replacedHeif(added, tiffBlock(99)), tiffBlock(100)), added);
    }
}

TEST(HeifContainer, KeepsTheHeaderThatAPayloadHas) {
    for (const QByteArray& header :
         {countedMarker, noMarker, uncountedMarker, QByteArray("\0\0\0\2ab", 6)}) {
        HeifTestFile shape = picture();
        shape.items[2].bytes = header + oldBlock;
        for (const qsizetype length : {60, 61}) {
            const HeifContent content(replacedHeif(shape.build(), tiffBlock(length)));
            EXPECT_EQ(content.items.at(3), header + tiffBlock(length));
        }
    }
}

TEST(HeifContainer, TakesALoneExifThatDescribesNothingForThePrimaryImages) {
    HeifTestFile shape = picture();
    shape.references = {{"thmb", 2, {1}}};
    EXPECT_EQ(heif::readExif(viewOf(shape.build())), oldBlock);
    expectOnlyExifChanged(shape.build(), replacedHeif(shape.build(), tiffBlock(61)), tiffBlock(61));

    shape.references = {{"cdsc", 3, {2}}};
    EXPECT_FALSE(heif::readExif(viewOf(shape.build())));
    shape.references = {};
    shape.items.push_back({4, "Exif", noMarker + oldBlock});
    EXPECT_FALSE(heif::readExif(viewOf(shape.build())));
}

TEST(HeifContainer, DoesNotWriteOverBytesThatAnotherItemUses) {
    HeifTestFile shape = picture();
    QByteArray file = shape.build();
    // The thumbnail's extent, in the second entry of `iloc`, is made to lie within the Exif's.
    const qsizetype entries = file.indexOf("iloc") + 4 + 4 + 2 + 2;
    const qsizetype second = entries + 16;
    const qsizetype third = second + 16;
    file.replace(second + 8, 4, file.sliced(third + 8, 4));
    const QByteArray shared = HeifContent(file).items.at(2);
    ASSERT_TRUE(HeifContent(file).items.at(3).startsWith(shared));
    expectOnlyExifChanged(file, replacedHeif(file, tiffBlock(60, 'n')), tiffBlock(60, 'n'));
}

TEST(HeifContainer, NumbersANewItemPastEntityGroups) {
    HeifTestFile shape = pictureWithoutExif();
    shape.groups = box("altr", bigEndian(0, 4) + bigEndian(90, 4) + bigEndian(0, 4));
    EXPECT_EQ(exifItem(HeifContent(replacedHeif(shape.build(), oldBlock))), 91U);
}

TEST(HeifContainer, WidensOffsetsThatNoLongerFit) {
    // Two items say where they are by a base alone; the new one cannot.
    HeifTestFile shape = pictureWithoutExif();
    shape.sizes = 0x0440;
    const QByteArray after = replacedHeif(shape.build(), oldBlock);
    expectOnlyExifChanged(shape.build(), after, oldBlock);
    EXPECT_EQ(after[after.indexOf("iloc") + 8], 0x44);
}

TEST(HeifContainer, AnUnreadableBlockGivesWay) {
    const QByteArray garbage = noMarker + "garbage";
    for (const QByteArray& bytes : {garbage, bigEndian(999, 4) + oldBlock, QByteArray("ab")}) {
        HeifTestFile shape = picture();
        shape.items[2].bytes = bytes;
        const QByteArray file = shape.build();
        EXPECT_EQ(heif::readExif(viewOf(file)), std::nullopt);
        EXPECT_EQ(heif::readExif(viewOf(replacedHeif(file, tiffBlock(61)))), tiffBlock(61));
    }
}

TEST(HeifContainer, ExtentsThatCoverOneAnotherMakeNothingBigger) {
    HeifTestFile shape = picture();
    constexpr int extents = 60'000;
    shape.items[2].bytes = noMarker + oldBlock + QByteArray(extents, 'x');
    shape.items[2].extents = extents;
    QByteArray file = shape.build();
    // Every extent becomes one of the whole item.
    const qsizetype list = file.indexOf(bigEndian(extents, 2), file.indexOf("iloc")) + 2;
    const QByteArray whole =
        file.sliced(list, 4) + bigEndian(static_cast<quint64>(shape.items[2].bytes.size()), 4);
    file.replace(list, extents * qsizetype{8}, whole.repeated(extents));
    EXPECT_EQ(heif::readExif(viewOf(file)), std::nullopt);
    const QByteArray result = replacedHeif(file, tiffBlock(61));
    EXPECT_EQ(heif::readExif(viewOf(result)), tiffBlock(61));
    EXPECT_LT(result.size(), file.size());
}

TEST(HeifContainer, RefusesWhatItCannotRewriteWithCertainty) {
    const std::vector<LayoutCase> refused{
        {"exif in another file", [](auto& file) { file.items[2].dataReference = 1; }},
        {"another item in another file", [](auto& file) { file.items[0].dataReference = 1; }},
        {"exif made of other items", [](auto& file) { file.items[2].method = 2; }},
        {"an item made of the exif",
         [](auto& file) {
             file.references.push_back({"iloc", 2, {3}});
         }},
        {"unknown construction", [](auto& file) { file.items[0].method = 3; }},
        {"protected exif", [](auto& file) { file.items[2].protection = 1; }},
        {"protected image", [](auto& file) { file.items[0].protection = 1; }},
        {"open length", [](auto& file) { file.sizes = 0x4000; }},
        {"an item without bytes", [](auto& file) { file.items[1].bytes.clear(); }},
        {"two for the primary image",
         [](auto& file) {
             file.items.push_back({4, "Exif", noMarker + oldBlock});
             file.references.push_back({"cdsc", 4, {1}});
         }},
        {"no location twice", [](auto& file) { file.items.push_back(file.items[2]); }},
        {"fragments", [](auto& file) { file.order += " moof"; }},
        {"fragment index", [](auto& file) { file.order += " sidx"; }},
        {"random access index", [](auto& file) { file.order += " mfra"; }},
        {"two metas", [](auto& file) { file.order += " meta"; }},
        {"no meta", [](auto& file) { file.order = "ftyp mdat"; }},
        {"sample auxiliary offsets",
         [](auto& file) {
             file.chunkTable = "stco";
             file.inTable = box("saio", "");
         }},
    };
    for (const LayoutCase& layout : refused) {
        HeifTestFile shape = picture();
        layout.shape(shape);
        EXPECT_THROW(replacedHeif(shape.build(), tiffBlock(61)), Error) << layout.name;
    }
    EXPECT_THROW(replacedHeif(picture().build(), "not a TIFF block"), ContainerError);
}

TEST(HeifContainer, RefusesMoreThanItsLimits) {
    const QByteArray file = picture().build();
    for (const auto limit : {&heif::Limits::boxes, &heif::Limits::items, &heif::Limits::extents,
                             &heif::Limits::references}) {
        heif::Limits limits;
        limits.*limit = 1;
        EXPECT_THROW(heif::readExif(viewOf(file), limits), ParseError);
    }
    heif::Limits limits;
    limits.metadataBytes = 50;
    EXPECT_EQ(heif::readExif(viewOf(file), limits), std::nullopt);
}

} // namespace

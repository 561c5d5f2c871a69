#include "metadata/MotionPhoto.h"
#include "HeifTestFile.h"
#include "ImageFixtures.h"
#include "MovieBuilder.h"
#include "OtherPrograms.h"
#include "metadata/MotionXmp.h"
#include "metadata/heif/HeifContainer.h"
#include "metadata/jpeg/JpegContainer.h"
#include "support/TemporaryFolder.h"

using namespace quorvane;
using namespace quorvane::test;

namespace {

const QByteArray signature("http://ns.adobe.com/xap/1.0/\0", 29);

const QByteArray usualRoom(2000, ' ');

QByteArray packetOf(const QByteArray& inRdf, const QByteArray& room = usualRoom) {
    return "<?xpacket begin=\"\" id=\"W5\"?><x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
           "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">" +
           inRdf + "</rdf:RDF></x:xmpmeta>" + room + "<?xpacket end=\"w\"?>";
}

QByteArray jpegWith(const QByteArray& inRdf, const QByteArray& room = usualRoom) {
    return jpegOf(jpegSegment(0xe1, signature + packetOf(inRdf, room)));
}

const char* const cameraSpace = " xmlns:GCamera=\"http://ns.google.com/photos/1.0/camera/\" ";

} // namespace

TEST(MotionPhoto, APacketKeepsWhatItSaysBesideTheMovie) {
    const char* gainMap =
        "<rdf:Description rdf:about=\"\" xmlns:C=\"http://ns.google.com/photos/1.0/container/\" "
        "xmlns:Item=\"http://ns.google.com/photos/1.0/container/item/\"><C:Directory><rdf:Seq>"
        "<rdf:li rdf:parseType=\"Resource\"><C:Item Item:Semantic=\"GainMap\" Item:Length=\"7\"/>"
        "</rdf:li></rdf:Seq></C:Directory></rdf:Description>";
    const QByteArray cases[] = {
        "<rdf:Description rdf:about=\"\" xmlns:a=\"urn:a\" a:b=\"&lt;ğ&gt;\"/>",
        "<rdf:Description rdf:about=\"\"><a:b xmlns:a=\"urn:a\">1 &amp; 2</a:b></rdf:Description >",
        "<rdf:Description rdf:about=\"\"/><rdf:Description xmlns:a=\"urn:a\" a:b='/>'/>",
        QByteArray("<rdf:Description") + cameraSpace + "GCamera:Other=\"1\"/>",
        gainMap,
    };
    for (const QByteArray& inRdf : cases) {
        SCOPED_TRACE(inRdf.toStdString());
        const QByteArray packet =
            motion::withMovie(packetOf(inRdf), {"image/jpeg", "video/mp4", 99});
        EXPECT_EQ(motion::announcedMovieLength(packet), 99U);
        qsizetype at = 0; // all that stood there, in its order
        for (const QByteArray& word : inRdf.simplified().split(' ')) {
            at = packet.indexOf(word.left(word.indexOf("/>")), at);
            ASSERT_GE(at, 0) << word.toStdString();
        }
        EXPECT_LT(packet.size(), packetOf(inRdf).size()) << "the room at its end serves";
    }
}

TEST(MotionPhoto, WhatCannotBeJoinedWithCertaintyIsRefusedAndLeavesNothing) {
    const QByteArray film = movie(0, 1);
    const QByteArray still = jpegOf({});
    HeifTestFile heif;
    heif.items = {{1, "hvc1", "picture"}};
    const QByteArray picture = heif.build();
    heif.order = "ftyp meta mdat0";
    const std::tuple<const char*, QByteArray, QByteArray> cases[] = {
        {"a movie is announced",
         jpegWith(QByteArray("<rdf:Description") + cameraSpace + "GCamera:MotionPhoto=\"1\"/>"),
         film},
        {"in the earlier way",
         jpegWith(QByteArray("<rdf:Description") + cameraSpace +
                  "><GCamera:MicroVideo>1</GCamera:MicroVideo></rdf:Description>"),
         film},
        {"an mpvd box", picture + box("mpvd", film), film},
        {"a trailer that stays last", still + "SEFT", film},
        {"an open last box", heif.build(), film},
        {"a broken packet", jpegWith("<rdf:Description>"), film},
        {"a prefix of another meaning",
         jpegWith("<rdf:Description xmlns:Item=\"urn:a\" Item:b=\"1\"/>"), film},
        {"a packet that fills its segment",
         jpegWith("<rdf:Description a=\"" + QByteArray(65'000, 'x') + "\"/>", {}), film},
        {"no picture", "text", film},
        {"PNG", pngOf({}), film},
        {"a movie that is cut off", still, film.chopped(1)},
        {"a movie without tracks", still,
         ftyp() + box("mdat", "x") + box("moov", timeBox("mvhd", 0, 1, 1))},
        {"no movie", still, "text"},
    };
    const TemporaryFolder folder;
    for (const auto& [name, first, second] : cases) {
        SCOPED_TRACE(name);
        EXPECT_THROW(motion::join(folder.write("still", first), folder.write("movie", second),
                                  folder / "joined"),
                     Error);
        EXPECT_FALSE(std::filesystem::exists(folder / "joined"));
    }
    motion::join(folder.write("still", picture), folder.write("movie", film), folder / "joined");
    EXPECT_TRUE(motion::movieIn(viewOf(readFile(folder / "joined"))));
}

TEST(MotionPhoto, RealStillsAndMoviesAreWhatTheyWere) {
    QUORVANE_REQUIRE_REAL_DATA();
    REQUIRE_PROGRAM("exiftool");
    const auto media = realDataFolder() / "media";
    const auto live = realDataFolder() / "Test-Media-Types-15.7.2.photoslibrary/originals/B";
    const TemporaryFolder folder;
    const auto film = live / "B60C31AC-BE86-42C5-A383-A0A5710B18AE_3.mov";
    for (const auto& still :
         {live / "B60C31AC-BE86-42C5-A383-A0A5710B18AE.heic", media / "iphone11pro_grid_xmp.heic",
          media / "samsung_s10_mdat_before_meta.heic", media / "nikon_d1x_le_makernote.jpg",
          media / "date_priority.jpg", media / "no_exif_jfif_only.jpg"}) {
        SCOPED_TRACE(still.filename().string());
        const bool isHeif = still.extension() == ".heic";
        const auto joined = folder / ("joined" + still.extension().string());
        std::filesystem::remove(joined);
        motion::join(still, film, joined);
        const QByteArray before = readFile(still);
        const QByteArray after = readFile(joined);
        const QByteArray bytes = readFile(film);
        EXPECT_EQ(after.last(bytes.size()), bytes);
        EXPECT_EQ(
            outputOf("exiftool -a -s3 -MotionPhoto -MotionPhotoVersion -DirectoryItemSemantic "
                     "-DirectoryItemLength %",
                     {joined}),
            "1\n1\nPrimary\nMotionPhoto\n0\n" + QByteArray::number(bytes.size()) + '\n');
        if (isHeif) {
            EXPECT_EQ(outputOf("exiftool -b -MotionPhotoVideo %", {joined}), bytes);
            const HeifContent was(before);
            HeifContent is(after);
            for (const auto& [id, item] : was.items)
                EXPECT_TRUE(was.types.at(id) == "mime" || is.items.at(id) == item);
        } else {
            EXPECT_EQ(scanOf(after), scanOf(before) + bytes);
        }
        const auto tags = "exiftool -a -G1 -s -all --File:all --System:all --Composite:all "
                          "--ExifTool:all --XMP-x:all --XMP-GCamera:all --XMP-GContainer:all "
                          "--Quicktime:all --MPF:all %";
        EXPECT_EQ(outputOf(tags, {joined}), outputOf(tags, {still}));
        EXPECT_THROW(motion::join(joined, film, folder / "twice"), Error);
    }
}

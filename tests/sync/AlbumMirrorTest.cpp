#include "support/TestProgram.h"

#include "sync/AlbumMirror.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quorvane::test {

namespace {

/// A library of two albums, backed up; the second is in the first's folder.
struct MirrorWorld {
    MirrorWorld() {
        for (const char* name : {"a/1.jpg", "a/2.jpg", "a/3.jpg", "a/b/4.jpg", "a/b/5.jpg"})
            world.addPicture(QString::fromLatin1(name));
        program.discover();
        program.run();
    }

    MirrorOutcome mirror() {
        AlbumMirror mirror({program.library, state, contents, program.attempts, program.log});
        mirror.remakesGone = remakesGone;
        return mirror.run({});
    }
    /// "title (items)", sorted.
    QStringList albums() const {
        QStringList found;
        for (const emulator::StoredAlbum& album : world.google.albums())
            found += u"%1 (%2)"_s.arg(album.title).arg(album.itemCount);
        found.sort();
        return found;
    }
    int requests(emulator::RequestKind kind) const { return world.google.requestCount(kind); }

    SyncWorld world;
    TestProgram program{world, world.folder / "home"};
    MirrorState state{program.database};
    GoogleAlbumContents contents{program.google.api};
    bool remakesGone = false;
};

const QStringList both{u"a (3)"_s, u"b (2)"_s};

} // namespace

TEST(AlbumMirror, GivesEachAlbumOneAndAsksForNothingTwice) {
    using enum emulator::RequestKind;
    MirrorWorld world;
    const MirrorOutcome first = world.mirror();
    EXPECT_FALSE(first.failure) << first.failure.value_or(QString()).toStdString();
    EXPECT_EQ(first.added, 5);
    EXPECT_EQ(first.made, 2);
    EXPECT_EQ(world.albums(), both);
    EXPECT_EQ(world.requests(albumsList), 0) << "there was nothing to ask about";
    EXPECT_EQ(world.mirror().added, 0);
    EXPECT_EQ(world.requests(albumsAdd), 2);
    EXPECT_EQ(world.requests(albumsCreate), 2);
    EXPECT_EQ(world.requests(albumsList), 1);
    EXPECT_FALSE(world.program.google.albums.targetAlbumID());
}

TEST(AlbumMirror, ARunThatDiesAnywhereIsContinued) {
    for (const bool isAnswerLost : {false, true})
        for (int dying = 1; dying <= 4; ++dying) {
            SCOPED_TRACE(std::to_string(dying) + (isAnswerLost ? " after" : " before"));
            MirrorWorld world;
            int seen = 0;
            (isAnswerLost ? world.program.http.after : world.program.http.before) = [&](int) {
                if (++seen == dying)
                    throw Cancelled();
            };
            EXPECT_THROW(world.mirror(), Cancelled);
            EXPECT_FALSE(world.mirror().failure);
            EXPECT_EQ(world.albums(), both);
        }
}

TEST(AlbumMirror, WaitsForALineThatBreaksAnywhere) {
    for (int breaking = 1; breaking <= 4; ++breaking) {
        MirrorWorld world;
        world.program.clock.skipSleeps(true);
        int seen = 0;
        world.program.http.after = [&](int) {
            if (++seen >= breaking && seen < breaking + 4)
                throw TransportError(u"koptu"_s);
        };
        EXPECT_EQ(world.mirror().failure, std::nullopt);
        EXPECT_EQ(world.albums(), both);
    }
}

TEST(AlbumMirror, GoesOnInANextPartAndLeavesDeletedAlbumsToThePerson) {
    MirrorWorld world;
    world.world.google.change([](emulator::Behaviour& behaviour) { behaviour.albumCapacity = 2; });
    EXPECT_EQ(world.mirror().added, 5);
    EXPECT_EQ(world.albums(), (QStringList{u"a (2)"_s, u"a - Parça 2 (1)"_s, u"b (2)"_s}));
    world.world.google.deleteAlbum(world.state.albums().front().remoteID);
    const MirrorOutcome told = world.mirror();
    EXPECT_EQ(told.gone.size(), 1);
    EXPECT_EQ(told.made, 0);
    world.remakesGone = true;
    EXPECT_GT(world.mirror().made, 0);
    EXPECT_TRUE(world.mirror().gone.isEmpty());
}

TEST(AlbumMirror, NamesTheItemThatNoAlbumTakes) {
    MirrorWorld world;
    const QString deleted = world.state.mediaItems().begin()->second;
    world.world.google.deleteMediaItem(deleted);
    const MirrorOutcome outcome = world.mirror();
    EXPECT_EQ(outcome.refused, QStringList{deleted});
    EXPECT_EQ(outcome.added, 4);
    EXPECT_TRUE(world.mirror().refused.isEmpty()) << "it is not tried again";
}

} // namespace quorvane::test

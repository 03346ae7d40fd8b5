// SPDX-License-Identifier: Apache-2.0
// Master mobs and reels of OMF 1.x, told as those of OMF 2.x are.
#include "mapped_older.h"

#include <trellant/mapper/mapper.h>
#include <trellant/mapper/master_mobs.h>
#include <trellant/mapper/reels.h>
#include <trellant/omf1/open.h>

#include <gmock/gmock.h>

#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;

const MobID tape{7, 0, 7};
const MobID voice{1, 0, 1};
const MobID master{2, 0, 1};

/// A clip without a name of a master clip, whose file lies 90 seconds into a tape that begins at
/// 10:00:00:00 of 25 frames.
Bytes recorded() {
    Omf1Builder omf;
    const ObjectID labels = omf.track(1, omf.timecode(25, 900'000));
    const ObjectID sound = omf.track(1, omf.clip({.length = 48'000 * 3'600, .track = 0}));
    omf.mob(
        {.id = tape, .name = "TAPE 7", .tracks = {sound, labels}, .media = omf.descriptor("MDES")});
    omf.media("AIFC", voice, aifcOf(960));
    const ObjectID ofFile =
        omf.track(1, omf.clip({.length = 960, .source = tape, .position = 90 * 48'000}));
    omf.mob({.id = voice, .name = "Voice", .tracks = {ofFile}, .media = omf.descriptor("AIFD")});
    omf.mob({.id = master,
             .name = "Anna, take 1",
             .tracks = {omf.track(1, omf.clip({.length = 960, .source = voice}))},
             .usage = Omf1Builder::masterUsage});
    const ObjectBuilder clip = omf.clip({.length = 480, .source = master});
    omf.mob({.name = "Song", .tracks = {omf.track(1, omf.sequence({clip}))}});
    return omf.build();
}

class OlderNames : public ::testing::Test {
  protected:
    OlderNames()
        : document_(openAnyOMF(writeFile(folder_.file("1.omf"), recorded()))),
          timeline_(
              Mapper(document_, {.sourcePath = folder_.file("1.omf")}).makeTimeline([](double) {
              })) {}

    TemporaryDirectory folder_;
    OMFDocument document_;
    AAFTimeline timeline_;
};

TEST_F(OlderNames, AClipHasTheNameOfItsMasterMob) {
    ASSERT_EQ(timeline_.events.size(), 1U);
    EXPECT_EQ(timeline_.events[0].clipName, std::nullopt);
    const MasterMobs mobs = masterMobs(document_, timeline_);
    ASSERT_EQ(mobs.mobs.size(), 1U);
    EXPECT_EQ(mobs.mobs[0].name, "Anna, take 1");
    EXPECT_THAT(mobs.ofEvents, ElementsAre(std::optional<std::size_t>(0)));
}

TEST_F(OlderNames, ASourceLiesOnItsTape) {
    const std::vector<Reel> told = reels(document_, timeline_);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].name, "TAPE 7");
    EXPECT_EQ(told[0].start, AAFRational(90));
    ASSERT_TRUE(told[0].timecode);
    EXPECT_EQ(told[0].timecode->start, 900'000);
    EXPECT_EQ(told[0].timecode->framesPerSecond, 25);
    EXPECT_FALSE(told[0].timecode->drop);
}

}  // namespace
}  // namespace trellant::testing

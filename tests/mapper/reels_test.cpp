// SPDX-License-Identifier: Apache-2.0
// The tapes behind audio files.
#include <trellant/mapper/mapper.h>
#include <trellant/mapper/reels.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

const MobID fileID{1, 0, 1};
const MobID tapeID{2, 0, 7};

class Reels : public ::testing::Test {
  protected:
    /// A Source Mob of a file whose only track plays the tape from `start` on, in samples at 48
    /// kHz.
    ObjectID addFile(const MobID& id, std::int64_t start, const MobID& tape = tapeID) {
        const ObjectID clip = omf_.clip({.length = 48'000, .source = tape, .start = start});
        const ObjectID slot =
            omf_.slot({.editRate = Ratio{48'000}, .segment = clip, .track = omf_.track({.id = 1})});
        return omf_.sourceMob({.id = id,
                               .name = "Kick",
                               .slots = {slot},
                               .descriptor = omf_.descriptor({.sampleRate = Ratio{48'000}})});
    }
    ObjectID addTape(const std::vector<ObjectID>& slots) {
        return omf_.sourceMob({.id = tapeID,
                               .name = "TAPE 7",
                               .slots = slots,
                               .descriptor = omf_.descriptor({.classID = "MDTP"})});
    }
    [[nodiscard]] std::vector<Reel> found(const std::vector<std::string>& mobIDs = {
                                              "00000001-00000000-00000001"}) {
        omf_.composition({});
        const OMFDocument document(writeFile(folder_.file("mix.omf"), omf_.build()));
        AAFTimeline timeline;
        for (const std::string& mobID : mobIDs) {
            AAFSourceEssence essence;
            essence.id = "essence of " + mobID;
            essence.mobID = mobID;
            timeline.essences.push_back(essence);
        }
        return reels(document, timeline);
    }

    TemporaryDirectory folder_;
    OmfBuilder omf_;
};

TEST_F(Reels, AFileKnowsItsTapeItsPlaceThereAndTheLabels) {
    addFile(fileID, 72'000);
    addTape({omf_.slot({.editRate = Ratio{25}, .segment = omf_.timecode(25, false, 90'000)})});
    const auto reels = found();
    ASSERT_THAT(reels, SizeIs(1));
    EXPECT_EQ(reels[0].essenceID, "essence of 00000001-00000000-00000001");
    EXPECT_EQ(reels[0].mobID, "00000002-00000000-00000007");
    EXPECT_EQ(reels[0].name, "TAPE 7");
    EXPECT_EQ(reels[0].start, AAFRational(3, 2));
    EXPECT_EQ(reels[0].timecode, (ReelTimecode{90'000, 25, false, AAFRational(25)}));
}

TEST_F(Reels, AnOriginMovesTheFirstSample) {
    // The slot's zero is the file's sample 24,000: the first sample lies half a second before it.
    const ObjectID clip = omf_.clip({.length = 48'000, .source = tapeID, .start = 72'000});
    ObjectBuilder track = omf_.track({.id = 1});
    track.int64("OMFI:TRKD:Origin", 24'000);
    const ObjectID slot =
        omf_.slot({.editRate = Ratio{48'000}, .segment = clip, .track = ObjectID(track)});
    omf_.sourceMob({.id = fileID, .slots = {slot}});
    addTape({});
    const auto reels = found();
    ASSERT_THAT(reels, SizeIs(1));
    EXPECT_EQ(reels[0].start, AAFRational(1));
    EXPECT_FALSE(reels[0].timecode.has_value());
}

TEST_F(Reels, DropFrameLabelsAreTold) {
    addFile(fileID, 0);
    addTape({omf_.slot({.segment = omf_.filler(10)}),
             omf_.slot(
                 {.editRate = Ratio{30'000, 1001}, .segment = omf_.timecode(30, true, 107'892)})});
    EXPECT_EQ(found().at(0).timecode, (ReelTimecode{107'892, 30, true, AAFRational(30'000, 1001)}));
}

TEST_F(Reels, LabelsWithoutARateAreNone) {
    addFile(fileID, 0);
    addTape({omf_.slot({.segment = omf_.timecode(0, false, 5)})});
    EXPECT_FALSE(found().at(0).timecode.has_value());
}

TEST_F(Reels, AFileThatNamesNoneOrOneThatIsNotThereHasNone) {
    addFile(fileID, 0, MobID{9, 9, 9});
    omf_.audioFile({.id = MobID{1, 0, 2}, .name = "Snare"});
    EXPECT_THAT(found({"00000001-00000000-00000001", "00000001-00000000-00000002",
                       "00000001-00000000-00000003"}),
                IsEmpty());
}

// The file begins at 72,000 samples (1.5 s) of a transfer, whose track begins 50 frames of 25 (2 s)
// into the tape; the transfer's own origin of 24,000 samples is half a second.
TEST_F(Reels, AChainLeadsToTheFirstLabels) {
    const MobID transferID{3, 0, 3};
    addFile(fileID, 72'000, transferID);
    ObjectBuilder track = omf_.track({.id = 1});
    track.int64("OMFI:TRKD:Origin", 24'000);
    const ObjectID behind =
        omf_.slot({.editRate = Ratio{48'000},
                   .segment = omf_.clip({.length = 10, .source = tapeID, .start = 96'000}),
                   .track = ObjectID(track)});
    const ObjectID other =
        omf_.slot({.segment = omf_.clip({.length = 10, .source = MobID{8, 8, 8}}),
                   .track = omf_.track({.id = 2})});
    omf_.sourceMob({.id = transferID, .name = "Transfer", .slots = {other, behind}});
    addTape({omf_.slot({.segment = omf_.timecode(25, false, 90'000)})});
    const auto reels = found();
    ASSERT_THAT(reels, SizeIs(1));
    EXPECT_EQ(reels[0].name, "TAPE 7");
    EXPECT_EQ(reels[0].start, AAFRational(4));
}

TEST_F(Reels, AChainWithoutLabelsEndsAtItsLastMob) {
    const MobID transferID{3, 0, 3};
    addFile(fileID, 48'000, transferID);
    omf_.sourceMob({.id = transferID, .name = "Transfer"});
    EXPECT_EQ(found().at(0).name, "Transfer");
    EXPECT_EQ(found().at(0).start, AAFRational(1));
}

TEST_F(Reels, AChainThatRunsInACircleEnds) {
    const MobID transferID{3, 0, 3};
    addFile(fileID, 0, transferID);
    omf_.sourceMob({.id = transferID,
                    .name = "Transfer",
                    .slots = {omf_.slot({.editRate = Ratio{48'000},
                                         .segment = omf_.clip(
                                             {.length = 10, .source = transferID, .start = 48'000}),
                                         .track = omf_.track({.id = 1})})}});
    const auto reels = found();
    ASSERT_THAT(reels, SizeIs(1));
    // Sixteen mobs, each a second further but the first.
    EXPECT_EQ(reels[0].start, AAFRational(15));
}

TEST_F(Reels, FilesOfOneTapeEachHaveTheirPlace) {
    addFile(fileID, 0);
    addFile(MobID{1, 0, 2}, 48'000);
    addTape({});
    const auto reels = found({"00000001-00000000-00000002", "00000001-00000000-00000001"});
    ASSERT_THAT(reels, SizeIs(2));
    EXPECT_EQ(reels[0].start, AAFRational(1));
    EXPECT_EQ(reels[1].start, AAFRational(0));
}

}  // namespace
}  // namespace trellant::testing

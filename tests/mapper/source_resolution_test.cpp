// SPDX-License-Identifier: Apache-2.0
// From a clip to its media: one step, the channel, and what can be missing.
#include "resolved.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr MobID file{.a = 0x2A, .b = 1, .c = 0xFFFFFFFF};
const std::string fileID = "0000002A-00000001-FFFFFFFF";

class SourceOfClip : public ::testing::Test {
  protected:
    ObjectBuilder audioFile(const TrackSpec& track = {.id = 1, .physicalTrack = 1}) {
        return omf_.audioFile({.id = file, .length = 480'000, .track = track});
    }
    ObjectBuilder clip(std::int64_t start = 0, std::uint32_t track = 1) {
        return omf_.clip({.length = 100, .source = file, .track = track, .start = start});
    }
    /// The one slot of the mob.
    ObjectBuilder slotWith(const SlotSpec& given) { return omf_.slot(given); }
    static void expectLost(const Resolution& resolution, const std::string& reason,
                           const std::string& diagnostic) {
        EXPECT_FALSE(resolution.source);
        EXPECT_EQ(resolution.lossReason, reason);
        EXPECT_THAT(resolution.diagnostics, ElementsAre(diagnostic));
        EXPECT_THAT(resolution.records, IsEmpty());
    }
    static std::pair<std::int64_t, bool> channelOf(const Resolution& resolution) {
        return {resolution.source.value().channel, resolution.source.value().channelDefaulted};
    }
    void expectNoTrack(const Resolution& resolution, const std::string& track) {
        expectLost(resolution, "Source Mob " + fileID + " has no track " + track,
                   "Source Mob " + fileID + " has no TrackID " + track);
    }

    OmfBuilder omf_;
};

TEST_F(SourceOfClip, FileMobIsTheSource) {
    const ObjectBuilder mob = audioFile();
    const Resolution resolution = resolved(omf_, clip());
    ASSERT_TRUE(resolution.source);
    EXPECT_EQ(resolution.source->mob, object(mob));
    EXPECT_EQ(resolution.source->mobID, (OMFUID{0x2A, 1, 0xFFFFFFFF}));
    EXPECT_EQ(resolution.source->start, AAFRational::zero());
    EXPECT_EQ(resolution.lossReason, std::nullopt);
    EXPECT_THAT(resolution.diagnostics, IsEmpty());
    EXPECT_THAT(resolution.records, IsEmpty());
}

TEST_F(SourceOfClip, StartCountsInTheClipsRate) {
    audioFile();
    EXPECT_EQ(resolved(omf_, clip(48'000)).source.value().start, AAFRational(1));
    EXPECT_EQ(resolved(omf_, clip(50), 25).source.value().start, AAFRational(2));
}

TEST_F(SourceOfClip, MissingStartIsZero) {
    audioFile();
    EXPECT_EQ(resolved(omf_, clip(48'000).without("OMFI:SCLP:StartTime")).source.value().start,
              AAFRational::zero());
}

TEST_F(SourceOfClip, NegativeStartIsKept) {
    audioFile();
    EXPECT_EQ(resolved(omf_, clip(-24'000)).source.value().start, AAFRational(-1, 2));
}

TEST_F(SourceOfClip, TrimAndOriginAddUp) {
    // 1/4 s trimmed, 48000 in 48000 a second, 24000 of the file's 48000.
    audioFile({.id = 1, .origin = 24'000});
    EXPECT_EQ(resolved(omf_, clip(48'000), 48'000, AAFRational(1, 4)).source.value().start,
              AAFRational(7, 4));
}

TEST_F(SourceOfClip, OriginCountsInTheFoundSlotsRate) {
    const ObjectBuilder mob = audioFile();
    omf_.at(mob).refs("OMFI:MOBJ:Slots",
                      {slotWith({.editRate = Ratio{30'000, 1'001},
                                 .segment = omf_.clip({.length = 1}),
                                 .track = omf_.track({.id = 1, .origin = 30})})});
    EXPECT_EQ(resolved(omf_, clip()).source.value().start, AAFRational(1'001, 1'000));
}

TEST_F(SourceOfClip, PhysicalTrackIsTheChannelFromOne) {
    const std::vector<std::pair<std::optional<std::int32_t>, std::pair<std::int64_t, bool>>>
        channels{{2, {1, false}}, {1, {0, false}},           {0, {0, true}},
                 {-3, {0, true}}, {std::nullopt, {0, true}}, {INT32_MAX, {2'147'483'646, false}}};
    for (const auto& [physical, expected] : channels) {
        OmfBuilder omf;
        omf.audioFile({.id = file, .length = 1, .track = {.id = 1, .physicalTrack = physical}});
        const ObjectID one = omf.clip({.length = 100, .source = file});
        EXPECT_EQ(channelOf(resolved(omf, one)), expected);
    }
}

TEST_F(SourceOfClip, WithoutASourceIdentifierIsLost) {
    audioFile();
    for (const ObjectID lost :
         {clip().without("OMFI:SCLP:SourceID").id(), omf_.clip({.length = 100}).id()}) {
        const Resolution resolution = resolved(omf_, lost);
        EXPECT_FALSE(resolution.source);
        EXPECT_EQ(resolution.lossReason, "the Source Clip carries no Source ID");
        EXPECT_THAT(resolution.diagnostics, IsEmpty());
        EXPECT_THAT(resolution.records, IsEmpty());
    }
}

TEST_F(SourceOfClip, MobThatTheFileDoesNotHoldIsLost) {
    const ObjectBuilder lost = clip();
    expectLost(resolved(omf_, lost),
               "the referenced Source Mob " + fileID + " is not contained in the file",
               "Unresolved Source Mob " + fileID + " for SCLP " + std::to_string(lost.id()));
}

TEST_F(SourceOfClip, TrackThatTheMobDoesNotHaveIsLost) {
    audioFile();
    expectNoTrack(resolved(omf_, clip(0, 7)), "7");
}

TEST_F(SourceOfClip, MissingTrackNumberIsZero) {
    audioFile();
    expectNoTrack(resolved(omf_, clip().without("OMFI:SCLP:SourceTrackID")), "0");
    OmfBuilder omf;
    omf.audioFile({.id = file, .length = 1, .track = {.id = 0}});
    const ObjectID one = omf.clip({.length = 1, .source = file}).without("OMFI:SCLP:SourceTrackID");
    EXPECT_TRUE(resolved(omf, one).source);
}

TEST_F(SourceOfClip, SlotWithoutAUsableEditRateCountsAsNone) {
    for (const std::optional<Ratio>& rate : std::initializer_list<std::optional<Ratio>>{
             std::nullopt, Ratio{48'000, 0}, Ratio{0, 1}, Ratio{0, -5}}) {
        const ObjectBuilder mob = audioFile();
        omf_.at(mob).refs("OMFI:MOBJ:Slots",
                          {slotWith({.editRate = rate, .track = omf_.track({.id = 1})})});
        expectNoTrack(resolved(omf_, clip()), "1");
    }
}

TEST_F(SourceOfClip, SlotWithoutADescriptorIsSkipped) {
    const ObjectBuilder mob = audioFile();
    omf_.at(mob).refs("OMFI:MOBJ:Slots",
                      {slotWith({.editRate = Ratio{24}}),
                       slotWith({.editRate = Ratio{48'000},
                                 .track = omf_.track({.id = 1, .physicalTrack = 2})})});
    EXPECT_EQ(channelOf(resolved(omf_, clip())), std::pair(std::int64_t{1}, false));
}

TEST_F(SourceOfClip, FirstSlotOfATrackWins) {
    const ObjectBuilder mob = audioFile();
    const auto slot = [&](std::uint32_t track, std::int32_t physical) {
        return slotWith({.editRate = Ratio{48'000},
                         .track = omf_.track({.id = track, .physicalTrack = physical})})
            .id();
    };
    omf_.at(mob).refs("OMFI:MOBJ:Slots", {slot(2, 9), slot(1, 5), slot(1, 6)});
    EXPECT_EQ(channelOf(resolved(omf_, clip())), std::pair(std::int64_t{4}, false));
}

TEST_F(SourceOfClip, FirstSlotOfATrackWinsEvenWithoutARate) {
    const ObjectBuilder mob = audioFile();
    omf_.at(mob).refs("OMFI:MOBJ:Slots",
                      {slotWith({.track = omf_.track({.id = 1})}),
                       slotWith({.editRate = Ratio{48'000}, .track = omf_.track({.id = 1})})});
    expectNoTrack(resolved(omf_, clip()), "1");
}

TEST_F(SourceOfClip, UnnumberedTrackIsFoundByTheLargestNumberOnly) {
    const ObjectBuilder mob = audioFile();
    omf_.at(mob).refs(
        "OMFI:MOBJ:Slots",
        {slotWith({.editRate = Ratio{48'000},
                   .track = omf_.object("TRKD").int32("OMFI:TRKD:PhysicalTrack", 3)})});
    EXPECT_EQ(channelOf(resolved(omf_, clip(0, 4'294'967'295U))),
              std::pair(std::int64_t{2}, false));
    expectNoTrack(resolved(omf_, clip(0, 0)), "0");
    expectNoTrack(resolved(omf_, clip(0, 1)), "1");
}

TEST_F(SourceOfClip, LargestTrackNumberPrintsUnsigned) {
    audioFile();
    expectNoTrack(resolved(omf_, clip(0, 4'294'967'295U)), "4294967295");
}

TEST_F(SourceOfClip, HighestOfSeveralMobsWithOneIdentifierIsTheSource) {
    audioFile();
    const ObjectBuilder later = audioFile();
    EXPECT_EQ(resolved(omf_, clip()).source.value().mob, object(later));
}

}  // namespace
}  // namespace trellant::testing

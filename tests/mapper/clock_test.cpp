// SPDX-License-Identifier: Apache-2.0
// The program clock, from the composition's timecode slot.
#include "song.h"

#include <gtest/gtest.h>

namespace trellant::testing {
namespace {

constexpr std::string_view fps = "OMFI:TCCP:FPS";
constexpr std::string_view drop = "OMFI:TCCP:Drop";
constexpr std::string_view start = "OMFI:TCCP:Start";

/// A song of one clip whose first slot holds the timecode.
class ProgramClock : public ::testing::Test {
  protected:
    AAFTimeline mapped(ObjectID timecode, std::optional<Ratio> editRate = std::nullopt) {
        song_.addSlot({.editRate = editRate, .segment = timecode});
        song_.addSlot(song_.clip(100));
        return song_.map().timeline;
    }
    static void expectDefault(const AAFTimeline& timeline) {
        const AAFTimecodeRate rate{AAFRational(25, 1), 25, false};
        const AAFProgramClock expected{AAFRational(25, 1), rate,
                                       AAFTimecodeAddress(0, 0, 0, 0, rate)};
        EXPECT_EQ(timeline.clock, expected);
        EXPECT_EQ(timeline.explicitProgramStart, std::nullopt);
        EXPECT_EQ(timeline.hasNativeTimecode, false);
    }
    static void expectStart(const AAFTimeline& timeline, const std::string& label) {
        EXPECT_EQ(timeline.clock.timelineZero.description(), label);
        EXPECT_EQ(timeline.explicitProgramStart, timeline.clock.timelineZero);
        EXPECT_EQ(timeline.clock.timelineZero.rate, timeline.clock.timecodeRate);
        EXPECT_EQ(timeline.hasNativeTimecode, true);
    }

    Song song_;
};

TEST_F(ProgramClock, WithoutATimecodeSlotIsTwentyFiveFramesFromZero) {
    song_.addSlot(song_.clip(100));
    expectDefault(song_.map().timeline);
}

TEST_F(ProgramClock, TimecodeInsideASequenceGivesNone) {
    expectDefault(mapped(song_.omf.sequence({song_.omf.timecode(24, false, 86'400)}), Ratio{24}));
}

TEST_F(ProgramClock, TimecodeSlotGivesRateAndStart) {
    const AAFTimeline timeline = mapped(song_.omf.timecode(24, false, 86'400), Ratio{24});
    EXPECT_EQ(timeline.clock.editRate, AAFRational(24, 1));
    EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(24, 1), 24, false}));
    expectStart(timeline, "01:00:00:00");
}

TEST_F(ProgramClock, FirstTimecodeSlotWins) {
    song_.addSlot({.segment = song_.omf.filler(1)});
    song_.addSlot({.segment = song_.omf.timecode(30, false, 30)});
    song_.addSlot({.segment = song_.omf.timecode(24, false, 48)});
    song_.addSlot(song_.clip(100));
    const AAFTimeline timeline = song_.map().timeline;
    EXPECT_EQ(timeline.clock.timecodeRate.nominalFramesPerSecond, 30);
    expectStart(timeline, "00:00:01:00");
}

TEST_F(ProgramClock, MissingFramesPerSecondAreTwentyFive) {
    const AAFTimeline timeline = mapped(song_.omf.timecode(0, false, 26).without(fps));
    EXPECT_EQ(timeline.clock.editRate, AAFRational(25, 1));
    EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(25, 1), 25, false}));
    expectStart(timeline, "00:00:01:01");
}

TEST_F(ProgramClock, FramesPerSecondBelowTwoAreOne) {
    for (const int frames : {0, 1, -1, -32'768}) {
        Song song;
        song.addSlot(
            {.segment = song.omf.timecode(static_cast<std::int16_t>(frames), false, 3'661)});
        song.addSlot(song.clip(100));
        const AAFTimeline timeline = song.map().timeline;
        EXPECT_EQ(timeline.clock.editRate, AAFRational(1, 1)) << frames;
        EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(1, 1), 1, false}));
        expectStart(timeline, "01:01:01:00");
    }
}

TEST_F(ProgramClock, TwoFramesPerSecondAreTwo) {
    const AAFTimeline timeline = mapped(song_.omf.timecode(2, false, 5));
    EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(2, 1), 2, false}));
    expectStart(timeline, "00:00:02:01");
}

TEST_F(ProgramClock, DropFrameStartOf107892FramesIsOneHour) {
    const AAFTimeline timeline =
        mapped(song_.omf.timecode(30, true, 107'892), Ratio{30'000, 1'001});
    EXPECT_EQ(timeline.clock.editRate, AAFRational(30'000, 1'001));
    EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(30'000, 1'001), 30, true}));
    expectStart(timeline, "01:00:00;00");
}

TEST_F(ProgramClock, DropFrameSkipsLabelsButNotEveryTenthMinute) {
    const std::vector<std::pair<std::int64_t, std::string>> labels{
        {1'799, "00:00:59;29"},     {1'800, "00:01:00;02"},    {3'597, "00:01:59;29"},
        {3'598, "00:02:00;02"},     {17'981, "00:09:59;29"},   {17'982, "00:10:00;00"},
        {2'589'407, "23:59:59;29"}, {2'589'408, "00:00:00;00"}};
    for (const auto& [frame, label] : labels) {
        Song song;
        song.addSlot({.segment = song.omf.timecode(30, true, frame)});
        song.addSlot(song.clip(100));
        expectStart(song.map().timeline, label);
    }
}

TEST_F(ProgramClock, DropFrameAtSixtySkipsFourLabels) {
    const std::vector<std::pair<std::int64_t, std::string>> labels{{3'599, "00:00:59;59"},
                                                                   {3'600, "00:01:00;04"},
                                                                   {35'964, "00:10:00;00"},
                                                                   {215'784, "01:00:00;00"}};
    for (const auto& [frame, label] : labels) {
        Song song;
        song.addSlot({.segment = song.omf.timecode(60, true, frame)});
        song.addSlot(song.clip(100));
        const AAFTimeline timeline = song.map().timeline;
        EXPECT_EQ(timeline.clock.timecodeRate,
                  (AAFTimecodeRate{AAFRational(60'000, 1'001), 60, true}));
        expectStart(timeline, label);
    }
}

TEST_F(ProgramClock, DropFlagAtAnotherRateMakesNoAddress) {
    for (const int frames : {25, 24, 29, 59, 120, 0}) {
        Song song;
        song.addSlot(
            {.editRate = Ratio{24},
             .segment = song.omf.timecode(static_cast<std::int16_t>(frames), true, 90'000)});
        song.addSlot(song.clip(100));
        expectDefault(song.map().timeline);
    }
}

TEST_F(ProgramClock, DropFlagIsAnyNumberButZero) {
    const AAFTimeline timeline = mapped(song_.omf.timecode(30, false, 1'800).int16(drop, -1));
    expectStart(timeline, "00:01:00;02");
}

TEST_F(ProgramClock, MissingDropFlagIsNone) {
    const AAFTimeline timeline = mapped(song_.omf.timecode(30, true, 1'800).without(drop));
    EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(30, 1), 30, false}));
    expectStart(timeline, "00:01:00:00");
}

TEST_F(ProgramClock, NegativeOrMissingStartIsZero) {
    expectStart(mapped(song_.omf.timecode(25, false, -1)), "00:00:00:00");
    Song other;
    other.addSlot({.segment = other.omf.timecode(25, false, 50).without(start)});
    other.addSlot(other.clip(100));
    expectStart(other.map().timeline, "00:00:00:00");
}

TEST_F(ProgramClock, StartsWrapAfterADay) {
    // 25 hours.
    expectStart(mapped(song_.omf.timecode(25, false, 2'250'000)), "01:00:00:00");
}

TEST_F(ProgramClock, HugeStartHasALabel) {
    // 2^40 frames = 43980465111 s and a frame; 12216795 h 51 min 51 s, that is 3 h past midnight.
    expectStart(mapped(song_.omf.timecode(25, false, std::int64_t{1} << 40U)), "03:51:51:01");
}

TEST_F(ProgramClock, LargestDropFrameStartHasALabel) {
    // 2^63 - 1 is 3561961667243 days of 2589408 frames and 2413663 frames more: 134 blocks of ten
    // minutes (17982 each) and 4075, in which two minutes dropped two labels each. 2413663 +
    // 134 * 18 + 4 = 2416079 = 80535 s and 29 frames.
    expectStart(mapped(song_.omf.timecode(30, true, INT64_MAX)), "22:22:15;29");
}

TEST_F(ProgramClock, SlotRateThatTruncatesToTheFramesIsTheTimecodeRate) {
    const AAFTimeline timeline = mapped(song_.omf.timecode(29, false, 29), Ratio{59, 2});
    EXPECT_EQ(timeline.clock.editRate, AAFRational(59, 2));
    EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(59, 2), 29, false}));
    expectStart(timeline, "00:00:01:00");
}

TEST_F(ProgramClock, WholeSlotRateOverridesTheDropFrameRate) {
    const AAFTimeline timeline = mapped(song_.omf.timecode(30, true, 1'800), Ratio{60, 2});
    EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(30, 1), 30, true}));
    expectStart(timeline, "00:01:00;02");
}

TEST_F(ProgramClock, SlotRateOfAnotherSizeIsTheEditRateOnly) {
    const AAFTimeline timeline = mapped(song_.omf.timecode(24, false, 24), Ratio{24'000, 1'001});
    EXPECT_EQ(timeline.clock.editRate, AAFRational(24'000, 1'001));
    EXPECT_EQ(timeline.clock.timecodeRate, (AAFTimecodeRate{AAFRational(24, 1), 24, false}));
}

}  // namespace
}  // namespace trellant::testing

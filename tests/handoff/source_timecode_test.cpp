// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/source_timecode.h>

#include <gtest/gtest.h>

#include <limits>

namespace trellant {
namespace {

using Reel = AAFWorkerExtensions::Reel;
using ReelTimecode = AAFWorkerExtensions::ReelTimecode;

Reel reelOf(const ReelTimecode& timecode, const AAFRational& start = AAFRational()) {
    return {.essenceID = "e", .mobID = "m", .name = "TAPE 7", .start = start, .timecode = timecode};
}

TEST(SourceTimecode, CountsFromTheTapesZeroToTheFirstSample) {
    // 10:00:00:00 at 25 frames is frame 900,000; 90 s and 12 frames later the source begins.
    const auto timecode = sourceTimecode(
        reelOf({900'000, 25, false, AAFRational(25)}, AAFRational(90) + AAFRational(12, 25)));
    ASSERT_TRUE(timecode.has_value());
    EXPECT_EQ(timecode->reel, "TAPE 7");
    EXPECT_EQ(timecode->rate, AAFTimecodeRate::fps25());
    EXPECT_EQ(timecode->sinceMidnight, AAFRational(900'000 + 90 * 25 + 12, 25));
    EXPECT_EQ(labelAt(*timecode, AAFRational()), "10:01:30:12");
    EXPECT_EQ(labelAt(*timecode, AAFRational(1)), "10:01:31:12");
    // 36,090.48 s of 48,000 samples.
    EXPECT_EQ(samplesSinceMidnight(*timecode, AAFRational(48'000)), 1'732'343'040U);
}

TEST(SourceTimecode, DropFrameLabelsLastAThousandthLonger) {
    // 01:00:00;00 is frame 107,892, and 107,892 * 1001 / 30000 = 3599.9964 s; times 48,000 samples
    // 172,799,827.2.
    const auto timecode = sourceTimecode(reelOf({107'892, 30, true, std::nullopt}));
    ASSERT_TRUE(timecode.has_value());
    EXPECT_EQ(timecode->rate, AAFTimecodeRate::fps2997DF());
    EXPECT_EQ(labelAt(*timecode, AAFRational()), "01:00:00;00");
    EXPECT_EQ(samplesSinceMidnight(*timecode, AAFRational(48'000)), 172'799'827U);
}

TEST(SourceTimecode, TheTrackOfTheLabelsSaysHowLongAFrameLasts) {
    // An hour of labels is 108,000 frames: 3603.6 s at 30000/1001, 3600 s at 30.
    const auto pulled = sourceTimecode(reelOf({108'000, 30, false, AAFRational(30'000, 1001)}));
    EXPECT_EQ(pulled->sinceMidnight, AAFRational(36'036, 10));
    EXPECT_EQ(labelAt(*pulled, AAFRational()), "01:00:00:00");
    const auto plain = sourceTimecode(reelOf({108'000, 30, false, AAFRational(30)}));
    EXPECT_EQ(plain->sinceMidnight, AAFRational(3'600));
    // A rate of something else says nothing of frames.
    const auto samples = sourceTimecode(reelOf({108'000, 30, false, AAFRational(48'000)}));
    EXPECT_EQ(samples->sinceMidnight, AAFRational(3'600));
}

TEST(SourceTimecode, StaysWithinADay) {
    // A day of 25 frames a second has 2,160,000.
    EXPECT_EQ(sourceTimecode(reelOf({2'160'025, 25, false, AAFRational(25)}))->sinceMidnight,
              AAFRational(1));
    EXPECT_EQ(
        sourceTimecode(reelOf({0, 25, false, AAFRational(25)}, AAFRational(-1)))->sinceMidnight,
        AAFRational(86'399));
    EXPECT_EQ(
        sourceTimecode(reelOf({0, 25, false, AAFRational(25)}, AAFRational(86'400)))->sinceMidnight,
        AAFRational(0));
    const auto last = sourceTimecode(reelOf({2'159'999, 25, false, AAFRational(25)}));
    EXPECT_EQ(labelAt(*last, AAFRational()), "23:59:59:24");
    EXPECT_EQ(labelAt(*last, AAFRational(1, 25)), "00:00:00:00");
}

TEST(SourceTimecode, IsNoneWhereNobodyCountsSo) {
    EXPECT_FALSE(sourceTimecode(Reel{.essenceID = "e"}).has_value());
    EXPECT_FALSE(sourceTimecode(reelOf({0, 0, false, std::nullopt})).has_value());
    EXPECT_FALSE(sourceTimecode(reelOf({0, 1'001, false, std::nullopt})).has_value());
    EXPECT_FALSE(sourceTimecode(reelOf({0, 25, true, std::nullopt})).has_value());
}

TEST(SourceTimecode, NumbersBeyondAllSenseStayWithinADayToo) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    for (const AAFRational& start : {AAFRational(most), AAFRational(-most), AAFRational(1, most),
                                     AAFRational(most, 3), AAFRational(-most, 7)}) {
        const auto timecode = sourceTimecode(reelOf({most, 30, true, std::nullopt}, start));
        ASSERT_TRUE(timecode.has_value());
        EXPECT_GE(timecode->sinceMidnight, AAFRational(0));
        EXPECT_LT(timecode->sinceMidnight, AAFRational(86'401));
        EXPECT_LT(samplesSinceMidnight(*timecode, AAFRational(48'000)), 86'401U * 48'000U);
        EXPECT_EQ(labelAt(*timecode, start).size(), 11U);
    }
    const auto timecode = sourceTimecode(reelOf({0, 25, false, std::nullopt}, AAFRational(1)));
    EXPECT_EQ(samplesSinceMidnight(*timecode, AAFRational(0)), 0U);
}

TEST(SourceTimecodes, AreFoundByTheirSource) {
    HandOff handOff;
    handOff.reels = {reelOf({900'000, 25, false, std::nullopt}),
                     Reel{.essenceID = "other", .mobID = "n"}};
    const SourceTimecodes timecodes(handOff);
    ASSERT_NE(timecodes.of("e"), nullptr);
    EXPECT_EQ(timecodes.of("e")->reel, "TAPE 7");
    EXPECT_EQ(timecodes.of("other"), nullptr);
    EXPECT_EQ(timecodes.of("nobody"), nullptr);
}

}  // namespace
}  // namespace trellant

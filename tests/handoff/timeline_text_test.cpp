// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/timeline_text.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace trellant {
namespace {

using testing::Eq;
using testing::Optional;

AAFTimeline timelineAt(const AAFTimecodeRate& rate) {
    AAFTimeline timeline;
    timeline.clock = {rate.exactRate, rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
    return timeline;
}

TEST(TimelineText, TimecodesRunFromTheClocksZero) {
    // 2.5 seconds at 25 frames: two seconds and 12.5 frames, rounded away from zero.
    EXPECT_EQ(timecodeText(timelineAt(AAFTimecodeRate::fps25()), AAFRational(5, 2)), "01:00:02:13");
    EXPECT_EQ(timecodeText(timelineAt(AAFTimecodeRate::fps2997DF()), AAFRational()), "01:00:00;00");
}

/// A clock as the worker makes it of labels that count so many frames in a second, of a composition
/// that counts a thousandth fewer.
AAFTimeline timelineOfRoundedLabels(std::int64_t frames) {
    AAFTimeline timeline = timelineAt(AAFTimecodeRate(AAFRational(frames), frames, false));
    timeline.clock.editRate = AAFRational(frames * 1000, 1001);
    return timeline;
}

TEST(TimelineText, AnHourOfFramesEndsAtTheFullHourOfLabels) {
    for (const std::int64_t frames : {24, 30, 60}) {
        const AAFTimeline timeline = timelineOfRoundedLabels(frames);
        // 3600 * frames edit units of 1001 / (1000 * frames) s.
        const AAFRational hour(3'603'600, 1'000);
        EXPECT_EQ(timecodeText(timeline, hour), "02:00:00:00");
        EXPECT_EQ(lengthText(timeline, hour), "01:00:00:00");
        EXPECT_FALSE(rateDrift(timeline.clock).has_value());
    }
}

TEST(FrameClock, NamesTheRateOfTheFrames) {
    const AAFTimeline timeline = timelineOfRoundedLabels(30);
    const AAFProgramClock clock = frameClock(timeline.clock);
    EXPECT_EQ(rateText(clock.timecodeRate), "29.97 fps");
    EXPECT_EQ(clock.editRate, AAFRational(30000, 1001));
    EXPECT_EQ(clock.timelineZero,
              AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate(AAFRational(30000, 1001), 30, false)));
    EXPECT_EQ(rateText(frameClock(timelineOfRoundedLabels(24).clock).timecodeRate), "23.976 fps");
}

TEST(FrameClock, LeavesOtherClocksAsTheyAre) {
    AAFProgramClock drop = timelineAt(AAFTimecodeRate::fps2997DF()).clock;
    EXPECT_EQ(frameClock(drop), drop);
    drop.timecodeRate.exactRate = AAFRational(30);
    EXPECT_EQ(frameClock(drop), drop);
    AAFProgramClock other = timelineAt(AAFTimecodeRate::fps25()).clock;
    other.editRate = AAFRational(30000, 1001);
    EXPECT_EQ(frameClock(other), other);
    // What no validation has seen.
    other.timecodeRate.nominalFramesPerSecond = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(frameClock(other), other);
    other.timecodeRate.nominalFramesPerSecond = 0;
    EXPECT_EQ(frameClock(other), other);
}

TEST(TimelineText, LengthsCountFromNothing) {
    EXPECT_EQ(lengthText(timelineAt(AAFTimecodeRate::fps25()), AAFRational(61)), "00:01:01:00");
    EXPECT_EQ(lengthText(timelineAt(AAFTimecodeRate::fps25()), AAFRational(-1)), "00:00:00:00");
}

TEST(TimelineText, BroadcastRatesGoByTheirName) {
    EXPECT_EQ(plainRate(AAFRational(24000, 1001)), "23.976");
    EXPECT_EQ(plainRate(AAFRational(30000, 1001)), "29.97");
    EXPECT_EQ(plainRate(AAFRational(25)), "25");
    EXPECT_EQ(plainRate(AAFRational(25, 2)), "12.5");
    EXPECT_EQ(rateText(AAFTimecodeRate::fps2997DF()), "29.97 fps drop-frame");
    EXPECT_EQ(rateText(AAFTimecodeRate::fps25()), "25 fps");
}

TEST(TimelineText, SecondsAreExactFractionsAndRoundedDecimals) {
    EXPECT_EQ(fractionText(AAFRational(38, 25)), "38/25");
    EXPECT_EQ(fractionText(AAFRational(-3)), "-3");
    EXPECT_EQ(decimalText(AAFRational(38, 25)), "1.520000");
    EXPECT_EQ(decimalText(AAFRational(1, 3)), "0.333333");
}

TEST(TimelineText, GainsAreDecibels) {
    EXPECT_EQ(decibelText(1), "0.00");
    // 20 * log10(0.5) = -6.0206
    EXPECT_EQ(decibelText(0.5), "-6.02");
    EXPECT_EQ(decibelText(2), "6.02");
    EXPECT_EQ(decibelText(0), "-inf");
    EXPECT_EQ(decibelText(-0.5), "-6.02 inverted");
    // A hair below unity is no "-0.00".
    EXPECT_EQ(decibelText(0.99999), "0.00");
}

TEST(TimelineText, PansAreSidesInPercent) {
    EXPECT_EQ(panText(0), "L100");
    EXPECT_EQ(panText(1), "R100");
    EXPECT_EQ(panText(0.5), "C");
    EXPECT_EQ(panText(0.625), "R25");
}

TEST(TimelineText, CurvesThatAreNotKnownKeepTheFilesOwnName) {
    EXPECT_EQ(curveText(AAFAutomationInterpolation::linear()), "linear");
    EXPECT_EQ(curveText(AAFAutomationInterpolation::constant()), "constant");
    EXPECT_EQ(curveText(AAFAutomationInterpolation::power()), "power");
    EXPECT_EQ(curveText(AAFAutomationInterpolation::logarithmic()), "logarithmic");
    EXPECT_EQ(curveText(AAFAutomationInterpolation::unsupported("S-curve")), "S-curve");
}

TEST(TimelineText, TracksWithoutNameGoByTheirNumber) {
    EXPECT_EQ(trackText("Dialog", 2), "Dialog");
    EXPECT_EQ(trackText(std::nullopt, 2), "track 2");
    EXPECT_EQ(trackText("", 2), "track 2");
    EXPECT_EQ(trackText(std::nullopt, std::nullopt), "");
}

TEST(TimelineText, PlainCodecsAreKnownByTheirFiles) {
    EXPECT_EQ(formatText("PCM"), "WAVE");
    EXPECT_EQ(formatText("WAVD"), "WAVE");
    EXPECT_EQ(formatText("NONE"), "AIFF");
    EXPECT_EQ(formatText("AIFD"), "AIFF");
    EXPECT_EQ(formatText("ima4"), "ima4");
}

TEST(TimelineText, FewChannelsHaveNames) {
    EXPECT_EQ(channelsText(1), "mono");
    EXPECT_EQ(channelsText(2), "stereo");
    EXPECT_EQ(channelsText(6), "6 channels");
}

TEST(RateDisagreement, IsToldWithItsDriftPerHour) {
    AAFProgramClock clock = timelineAt(AAFTimecodeRate::fps25()).clock;
    clock.editRate = AAFRational(24000, 1001);
    // 3600 s * (1 - 24000/25025) = 147.45 s
    EXPECT_THAT(rateDisagreement(clock),
                Optional(Eq("The composition counts 23.976 frames per second, but its timecode is "
                            "labelled with 25: timecodes shown here run ahead of those of a "
                            "workstation that counts frames by 147.45 seconds per hour.")));
}

TEST(RateDisagreement, TellsWhichClockIsAhead) {
    AAFProgramClock clock = timelineAt(AAFTimecodeRate::fps24()).clock;
    // 3600 s * (1 - 25/24) = -150 s; rates of frames are told however far they are apart.
    clock.editRate = AAFRational(25);
    EXPECT_THAT(rateDisagreement(clock),
                Optional(Eq("The composition counts 25 frames per second, but its timecode is "
                            "labelled with 24: timecodes shown here run behind those of a "
                            "workstation that counts frames by 150 seconds per hour.")));
    const auto drift = rateDrift(clock);
    ASSERT_TRUE(drift.has_value());
    EXPECT_EQ(drift->editRate, AAFRational(25));
    EXPECT_EQ(drift->timecodeRate, AAFRational(24));
    EXPECT_NEAR(drift->secondsPerHour, -150, 1e-9);
}

TEST(RateDisagreement, IsAbsentWhereTheRatesAgreeOrAreOfAnotherKind) {
    AAFProgramClock clock = timelineAt(AAFTimecodeRate::fps25()).clock;
    EXPECT_THAT(rateDisagreement(clock), Eq(std::nullopt));
    // Audio tracks may be counted in samples.
    clock.editRate = AAFRational(48000);
    EXPECT_THAT(rateDisagreement(clock), Eq(std::nullopt));
    clock.editRate = AAFRational(0);
    EXPECT_THAT(rateDisagreement(clock), Eq(std::nullopt));
}

}  // namespace
}  // namespace trellant

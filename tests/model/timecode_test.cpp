// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/timecode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>

namespace trellant {
namespace {

using testing::Eq;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

AAFTimecodeAddress at2997(std::int64_t hours, std::int64_t minutes, std::int64_t seconds,
                          std::int64_t frames) {
    return {hours, minutes, seconds, frames, AAFTimecodeRate::fps2997DF()};
}

TEST(AAFTimecodeRate, PredefinedRatesHaveTheirTrueAndNominalRates) {
    EXPECT_EQ(AAFTimecodeRate::fps24(), AAFTimecodeRate(AAFRational(24), 24, false));
    EXPECT_EQ(AAFTimecodeRate::fps25(), AAFTimecodeRate(AAFRational(25), 25, false));
    EXPECT_EQ(AAFTimecodeRate::fps23976(), AAFTimecodeRate(AAFRational(24000, 1001), 24, false));
    EXPECT_EQ(AAFTimecodeRate::fps2997DF(), AAFTimecodeRate(AAFRational(30000, 1001), 30, true));
    EXPECT_EQ(AAFTimecodeRate::fps5994DF(), AAFTimecodeRate(AAFRational(60000, 1001), 60, true));
}

TEST(AAFTimecodeRate, DroppedFramesDependOnTheNominalRate) {
    EXPECT_EQ(AAFTimecodeRate::fps25().droppedFramesPerMinute(), 0);
    EXPECT_EQ(AAFTimecodeRate::fps2997DF().droppedFramesPerMinute(), 2);
    EXPECT_EQ(AAFTimecodeRate::fps5994DF().droppedFramesPerMinute(), 4);
    AAFTimecodeRate unchecked;
    unchecked.dropFrame = true;
    EXPECT_EQ(unchecked.droppedFramesPerMinute(), 2);
}

TEST(AAFTimecodeAddress, DescriptionSeparatesDropFramesWithASemicolon) {
    EXPECT_EQ(at2997(1, 0, 0, 0).description(), "01:00:00;00");
    EXPECT_EQ(AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25()).description(),
              "01:00:00:00");
    EXPECT_EQ(AAFTimecodeAddress(23, 59, 58, 24, AAFTimecodeRate::fps25()).description(),
              "23:59:58:24");
}

TEST(AAFTimecodeAddress, DescriptionShowsUncheckedNumbersInFull) {
    AAFTimecodeAddress address;
    address.hours = std::numeric_limits<std::int64_t>::min();
    address.minutes = -1;
    address.seconds = 100;
    address.frames = largest;
    EXPECT_EQ(address.description(), "-9223372036854775808:-1:100:9223372036854775807");
}

TEST(AAFTimecodeAddress, NonDropFramesAreCountedPlainly) {
    // (3600 + 2 * 60 + 3) * 25 + 4
    EXPECT_EQ(AAFTimecodeAddress(1, 2, 3, 4, AAFTimecodeRate::fps25()).absoluteFrameNumber(),
              93079);
}

TEST(AAFTimecodeAddress, DropFrameNumbersAt2997) {
    EXPECT_EQ(at2997(0, 0, 59, 29).absoluteFrameNumber(), 1799);
    EXPECT_EQ(at2997(0, 1, 0, 2).absoluteFrameNumber(), 1800);
    EXPECT_EQ(at2997(0, 10, 0, 0).absoluteFrameNumber(), 17982);
    EXPECT_EQ(at2997(1, 0, 0, 0).absoluteFrameNumber(), 107892);
    const AAFTimecodeRate rate = AAFTimecodeRate::fps2997DF();
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(1800, rate), at2997(0, 1, 0, 2));
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(17982, rate), at2997(0, 10, 0, 0));
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(17981, rate), at2997(0, 9, 59, 29));
}

TEST(AAFTimecodeAddress, NonTenthMinutesAt5994BeginAtFrameFour) {
    const AAFTimecodeRate rate = AAFTimecodeRate::fps5994DF();
    // Minute 1 begins after 3600 frames, each later minute of the ten after 3596 more.
    for (std::int64_t minute = 1; minute < 10; ++minute) {
        const std::int64_t first = 3600 + (minute - 1) * 3596;
        EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(first, rate),
                  AAFTimecodeAddress(0, minute, 0, 4, rate));
        EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(first - 1, rate),
                  AAFTimecodeAddress(0, minute - 1, 59, 59, rate));
    }
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(35964, rate).description(),
              "00:10:00;00");
}

TEST(AAFTimecodeAddress, NonDropCountWrapsAtADay) {
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(25 * 86400, rate).description(),
              "00:00:00:00");
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(25 * 86400 - 1, rate).description(),
              "23:59:59:24");
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(25 * 86400 * 3 + 26, rate).description(),
              "00:00:01:01");
}

TEST(AAFTimecodeAddress, DropCountWrapsAtADay) {
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(2589408, AAFTimecodeRate::fps2997DF()),
              at2997(0, 0, 0, 0));
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(5178816, AAFTimecodeRate::fps5994DF())
                  .description(),
              "00:00:00;00");
    // An hour has 107892 frames at 29.97 and 215784 at 59.94: one hour into the second day, and the
    // last frame of the first hour of the third.
    EXPECT_EQ(
        AAFTimecodeAddress::fromAbsoluteFrameNumber(25 * 107892, AAFTimecodeRate::fps2997DF()),
        at2997(1, 0, 0, 0));
    EXPECT_EQ(
        AAFTimecodeAddress::fromAbsoluteFrameNumber(49 * 215784 - 1, AAFTimecodeRate::fps5994DF())
            .description(),
        "00:59:59;59");
}

TEST(AAFTimecodeAddress, TheLargestFrameNumberHasALabel) {
    // (2^63 - 1) mod 2160000 is 55807: 2232 seconds and 7 frames.
    EXPECT_EQ(AAFTimecodeAddress::fromAbsoluteFrameNumber(largest, AAFTimecodeRate::fps25())
                  .description(),
              "00:37:12:07");
}

TEST(AAFTimecodeAddress, DropFrameSkipsTheFirstLabelsOfNonTenthMinutes) {
    const auto isSkipped = [](const AAFTimecodeRate& rate, std::int64_t minutes,
                              std::int64_t seconds, std::int64_t frames) {
        AAFTimecodeAddress label;
        label.minutes = minutes;
        label.seconds = seconds;
        label.frames = frames;
        label.rate = rate;
        return label.isSkipped();
    };
    const AAFTimecodeRate at30 = AAFTimecodeRate::fps2997DF();
    const AAFTimecodeRate at60 = AAFTimecodeRate::fps5994DF();
    EXPECT_TRUE(isSkipped(at30, 1, 0, 0));
    EXPECT_TRUE(isSkipped(at30, 59, 0, 1));
    EXPECT_FALSE(isSkipped(at30, 1, 0, 2));
    EXPECT_FALSE(isSkipped(at30, 1, 1, 0));
    EXPECT_FALSE(isSkipped(at30, 10, 0, 0));
    EXPECT_FALSE(isSkipped(at30, 0, 0, 1));
    EXPECT_TRUE(isSkipped(at60, 1, 0, 3));
    EXPECT_FALSE(isSkipped(at60, 1, 0, 4));
    EXPECT_FALSE(isSkipped(AAFTimecodeRate::fps25(), 1, 0, 0));
}

/// Counts through all labels of a day in order; each frame number must give its label and back.
void expectRoundTripOverADay(const AAFTimecodeRate& rate, std::int64_t framesPerDay) {
    std::int64_t number = 0;
    AAFTimecodeAddress label;
    label.rate = rate;
    for (label.hours = 0; label.hours < 24; ++label.hours) {
        for (label.minutes = 0; label.minutes < 60; ++label.minutes) {
            for (label.seconds = 0; label.seconds < 60; ++label.seconds) {
                const bool skips = label.seconds == 0 && label.minutes % 10 != 0;
                label.frames = skips ? rate.nominalFramesPerSecond / 15 : 0;
                for (; label.frames < rate.nominalFramesPerSecond; ++label.frames) {
                    if (label.absoluteFrameNumber() != number ||
                        AAFTimecodeAddress::fromAbsoluteFrameNumber(number, rate) != label) {
                        FAIL() << label.description() << " is not frame " << number;
                    }
                    ++number;
                }
            }
        }
    }
    EXPECT_EQ(number, framesPerDay);
}

TEST(AAFTimecodeAddress, EveryLabelOfADayAt2997RoundTrips) {
    expectRoundTripOverADay(AAFTimecodeRate::fps2997DF(), 2589408);
}

TEST(AAFTimecodeAddress, EveryLabelOfADayAt5994RoundTrips) {
    expectRoundTripOverADay(AAFTimecodeRate::fps5994DF(), 5178816);
}

TEST(AAFTimecodeAddress, StartOfMinuteIsItsFirstExistingLabel) {
    EXPECT_EQ(at2997(0, 59, 58, 10).startOfCurrentTimecodeMinute(), at2997(0, 59, 0, 2));
    EXPECT_EQ(at2997(0, 50, 58, 10).startOfCurrentTimecodeMinute(), at2997(0, 50, 0, 0));
    EXPECT_EQ(AAFTimecodeAddress(1, 59, 58, 10, AAFTimecodeRate::fps24())
                  .startOfCurrentTimecodeMinute()
                  .description(),
              "01:59:00:00");
}

TEST(AAFTimecodeAddress, KnowsWhetherItStartsAMinute) {
    EXPECT_TRUE(at2997(0, 59, 0, 2).isAtStartOfTimecodeMinute());
    EXPECT_FALSE(at2997(0, 59, 0, 3).isAtStartOfTimecodeMinute());
    EXPECT_TRUE(at2997(0, 50, 0, 0).isAtStartOfTimecodeMinute());
    EXPECT_FALSE(at2997(0, 50, 1, 0).isAtStartOfTimecodeMinute());
}

AAFProgramClock clockFrom(const AAFTimecodeAddress& zero) {
    AAFProgramClock clock;
    clock.editRate = zero.rate.exactRate;
    clock.timecodeRate = zero.rate;
    clock.timelineZero = zero;
    return clock;
}

const AAFTimecodeAddress oneHourAt25(1, 0, 0, 0, AAFTimecodeRate::fps25());

TEST(AAFProgramClock, AddressIsTheNearestFrame) {
    const AAFProgramClock clock = clockFrom(oneHourAt25);
    EXPECT_EQ(clock.address(AAFRational(0)).description(), "01:00:00:00");
    EXPECT_EQ(clock.address(AAFRational(3, 2)).description(), "01:00:01:13");
    EXPECT_EQ(clock.address(AAFRational(-1, 25)).description(), "00:59:59:24");
}

TEST(AAFProgramClock, AddressNeverLiesBeforeMidnight) {
    EXPECT_EQ(clockFrom(oneHourAt25).address(AAFRational(-3601)).description(), "00:00:00:00");
}

TEST(AAFProgramClock, AddressSaturatesOnOverflow) {
    const AAFProgramClock clock = clockFrom(oneHourAt25);
    EXPECT_EQ(clock.address(AAFRational(largest)).description(), "00:37:12:07");
    EXPECT_EQ(clock.address(AAFRational(-largest)).description(), "00:00:00:00");
}

/// Seconds from midnight of frame 107842 at 29.97, which is 00:59:58;10.
const AAFRational at5958(107842 * std::int64_t{1001}, 30000);

TEST(AAFProgramClock, BounceStartsAtTheMinuteWithoutExplicitStart) {
    const AAFProgramClock clock = clockFrom(at2997(0, 0, 0, 0));
    EXPECT_EQ(clock.address(at5958), at2997(0, 59, 58, 10));
    EXPECT_EQ(clock.bounceStart(at5958, std::nullopt), at2997(0, 59, 0, 2));
}

TEST(AAFProgramClock, BounceStartsAtTheExplicitStartWhenTheEventIsNotBefore) {
    const AAFProgramClock clock = clockFrom(at2997(0, 0, 0, 0));
    EXPECT_EQ(clock.bounceStart(at5958, at2997(0, 30, 0, 0)), at2997(0, 30, 0, 0));
    EXPECT_EQ(clock.bounceStart(at5958, at2997(0, 59, 58, 10)), at2997(0, 59, 58, 10));
}

TEST(AAFProgramClock, BounceStartsAtTheMinuteWhenTheEventLiesBeforeTheExplicitStart) {
    const AAFProgramClock clock = clockFrom(at2997(0, 0, 0, 0));
    EXPECT_EQ(clock.bounceStart(at5958, at2997(0, 59, 58, 11)), at2997(0, 59, 0, 2));
}

TEST(AAFTimecodeDeathTest, RateOutOfRangeStopsTheProcess) {
    EXPECT_DEATH(AAFTimecodeRate(AAFRational(1), 0, false),
                 Eq("precondition failed: AAFTimecodeRate needs at least one frame per second\n"));
    EXPECT_DEATH(AAFTimecodeRate(AAFRational(25), 25, true),
                 Eq("precondition failed: AAFTimecodeRate drops frames at 30 or 60 only\n"));
}

TEST(AAFTimecodeDeathTest, LabelOutOfRangeStopsTheProcess) {
    EXPECT_DEATH(at2997(24, 0, 0, 0),
                 Eq("precondition failed: AAFTimecodeAddress hours out of range\n"));
    EXPECT_DEATH(at2997(0, -1, 0, 0),
                 Eq("precondition failed: AAFTimecodeAddress minutes out of range\n"));
    EXPECT_DEATH(at2997(0, 0, 60, 0),
                 Eq("precondition failed: AAFTimecodeAddress seconds out of range\n"));
    EXPECT_DEATH(at2997(0, 0, 0, 30),
                 Eq("precondition failed: AAFTimecodeAddress frames out of range\n"));
}

TEST(AAFTimecodeDeathTest, SkippedLabelStopsTheProcess) {
    EXPECT_DEATH(
        at2997(0, 1, 0, 1),
        Eq("precondition failed: AAFTimecodeAddress label is skipped by drop-frame counting\n"));
}

TEST(AAFTimecodeDeathTest, NegativeFrameNumberStopsTheProcess) {
    EXPECT_DEATH((void)AAFTimecodeAddress::fromAbsoluteFrameNumber(-1, AAFTimecodeRate::fps25()),
                 Eq("precondition failed: AAFTimecodeAddress frame number must not be negative\n"));
}

TEST(AAFTimecodeDeathTest, FrameNumberOverflowStopsTheProcess) {
    AAFTimecodeAddress address;
    address.hours = largest;
    EXPECT_DEATH((void)address.absoluteFrameNumber(),
                 Eq("precondition failed: AAFTimecodeAddress frame number overflow\n"));
    AAFTimecodeRate rate;
    rate.nominalFramesPerSecond = 106751991167301;
    EXPECT_DEATH((void)AAFTimecodeAddress::fromAbsoluteFrameNumber(0, rate),
                 Eq("precondition failed: AAFTimecodeAddress frame number overflow\n"));
    rate.nominalFramesPerSecond = 0;
    EXPECT_DEATH((void)AAFTimecodeAddress::fromAbsoluteFrameNumber(0, rate),
                 Eq("precondition failed: AAFTimecodeRate needs at least one frame per second\n"));
}

}  // namespace
}  // namespace trellant

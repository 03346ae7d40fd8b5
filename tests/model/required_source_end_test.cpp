// SPDX-License-Identifier: Apache-2.0
#include "sample_timeline.h"

#include <trellant/model/validation.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace trellant {
namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

AAFClipEvent eventWith(std::int64_t start, const AAFRational& duration) {
    AAFClipEvent event = test::plainEvent();
    event.sourceStartSample = start;
    event.duration = duration;
    return event;
}

std::string sourceEndVerdict(const AAFClipEvent& event, const AAFRational& rate) {
    try {
        return std::to_string(AAFRawTimelineValidation::requiredSourceEnd(event, rate));
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        return failure.what();
    }
}

TEST(RequiredSourceEnd, RoundsUpToWholeSamples) {
    // 1001/30000 s at 48000 is 1601.6 samples.
    EXPECT_EQ(sourceEndVerdict(eventWith(100, AAFRational(1001, 30000)), AAFRational(48000)),
              "1702");
    EXPECT_EQ(sourceEndVerdict(eventWith(100, AAFRational(1, 25)), AAFRational(48000)), "2020");
    EXPECT_EQ(sourceEndVerdict(eventWith(7, AAFRational(0)), AAFRational(48000)), "7");
}

TEST(RequiredSourceEnd, IsExactBeyond64BitProducts) {
    EXPECT_EQ(sourceEndVerdict(eventWith(0, AAFRational(largest, 3)), AAFRational(3)),
              "9223372036854775807");
    EXPECT_EQ(sourceEndVerdict(eventWith(0, AAFRational(largest)), AAFRational(1, largest)), "1");
    EXPECT_EQ(
        sourceEndVerdict(eventWith(0, AAFRational(largest)), AAFRational(largest - 1, largest)),
        "9223372036854775806");
    EXPECT_EQ(sourceEndVerdict(eventWith(0, AAFRational(1, largest)), AAFRational(1, largest)),
              "1");
}

TEST(RequiredSourceEnd, OverflowIsReported) {
    EXPECT_EQ(sourceEndVerdict(eventWith(largest, AAFRational(1, 1000000)), AAFRational(48000)),
              "AAF raw model: source-range-overflow (event)");
    EXPECT_EQ(sourceEndVerdict(eventWith(largest, AAFRational(0)), AAFRational(48000)),
              "9223372036854775807");
    EXPECT_EQ(sourceEndVerdict(eventWith(1, AAFRational(largest)), AAFRational(1)),
              "AAF raw model: source-range-overflow (event)");
    EXPECT_EQ(sourceEndVerdict(eventWith(0, AAFRational(largest)), AAFRational(largest)),
              "AAF raw model: source-range-overflow (event)");
}

TEST(RequiredSourceEnd, RangesThatCannotBeAreReported) {
    constexpr const char* invalid = "AAF raw model: invalid-source-range (event)";
    EXPECT_EQ(sourceEndVerdict(eventWith(0, AAFRational(1)), AAFRational(0)), invalid);
    EXPECT_EQ(sourceEndVerdict(eventWith(0, AAFRational(-1)), AAFRational(1)), invalid);
    EXPECT_EQ(sourceEndVerdict(eventWith(-1, AAFRational(1)), AAFRational(1)), invalid);
}

TEST(RequiredSourceEnd, NamesThePlaceThatItWasGiven) {
    try {
        (void)AAFRawTimelineValidation::requiredSourceEnd(
            eventWith(-1, AAFRational(1)), AAFRational(1), AAFTimelinePlace::event(9));
        FAIL();
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        EXPECT_EQ(failure.problem(), AAFTimelineProblem::invalidSourceRange);
        EXPECT_EQ(failure.place(), AAFTimelinePlace::event(9));
        EXPECT_EQ(failure.code(), "invalid-source-range");
        EXPECT_EQ(failure.object(), "event[9]");
        EXPECT_EQ(failure.description(), "AAF raw model: invalid-source-range (event[9])");
        EXPECT_EQ(failure.errorDescription(), failure.description());
        EXPECT_STREQ(failure.what(), failure.description().c_str());
    }
}

}  // namespace
}  // namespace trellant

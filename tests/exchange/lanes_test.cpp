// SPDX-License-Identifier: Apache-2.0
#include "lanes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace trellant::exchange {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Curve = AAFAutomationInterpolation;

PlannedClip clip(Samples start, Samples length) {
    PlannedClip result;
    result.start = start;
    result.length = length;
    return result;
}

PlannedClip faded(PlannedClip clip, Samples in, Samples out, const Curve& curve = Curve::linear()) {
    if (in != 0) {
        clip.fadeIn = PlannedFade{in, curve, {}};
    }
    if (out != 0) {
        clip.fadeOut = PlannedFade{out, curve, {}};
    }
    return clip;
}

std::vector<Samples> starts(const Lane& lane) {
    std::vector<Samples> result;
    for (const PlannedClip& clip : lane.clips) {
        result.push_back(clip.start);
    }
    return result;
}

TEST(Lanes, ClipsThatTouchShareALane) {
    const auto lanes = lanesOf({clip(0, 100), clip(100, 50), clip(200, 1)}, "A1");
    ASSERT_THAT(lanes, SizeIs(1));
    EXPECT_EQ(lanes[0].name, "A1");
    EXPECT_THAT(starts(lanes[0]), ElementsAre(0, 100, 200));
    EXPECT_FALSE(lanes[0].clips[1].crossfadesIn);
}

TEST(Lanes, NoClipsAreOneEmptyLane) {
    const auto lanes = lanesOf({}, "A1");
    ASSERT_THAT(lanes, SizeIs(1));
    EXPECT_THAT(lanes[0].clips, IsEmpty());
}

TEST(Lanes, AnOverlapGoesToAFurtherLaneAndTheThirdToAThird) {
    const auto lanes = lanesOf({clip(0, 100), clip(50, 100), clip(60, 100), clip(155, 10)}, "A1");
    ASSERT_THAT(lanes, SizeIs(3));
    EXPECT_THAT(starts(lanes[0]), ElementsAre(0, 155));
    EXPECT_THAT(starts(lanes[1]), ElementsAre(50));
    EXPECT_THAT(starts(lanes[2]), ElementsAre(60));
    EXPECT_EQ(lanes[1].name, "A1 (2)");
    EXPECT_EQ(lanes[2].name, "A1 (3)");
}

TEST(Lanes, FadesOfTheSamePlaceLengthAndCurveAreACrossfade) {
    const auto lanes = lanesOf(
        {faded(clip(0, 100), 0, 20), faded(clip(80, 100), 20, 10), faded(clip(170, 30), 10, 0)},
        "A1");
    ASSERT_THAT(lanes, SizeIs(1));
    EXPECT_FALSE(lanes[0].clips[0].crossfadesIn);
    EXPECT_TRUE(lanes[0].clips[1].crossfadesIn);
    EXPECT_TRUE(lanes[0].clips[2].crossfadesIn);
}

TEST(Lanes, FadesOfUnequalCurvesAreNoCrossfade) {
    const auto lanes =
        lanesOf({faded(clip(0, 100), 0, 20), faded(clip(80, 100), 20, 0, Curve::power())}, "A1");
    ASSERT_THAT(lanes, SizeIs(2));
    EXPECT_FALSE(lanes[1].clips[0].crossfadesIn);
    EXPECT_THAT(lanesOf({faded(clip(0, 100), 0, 20, Curve::unsupported("a")),
                         faded(clip(80, 100), 20, 0, Curve::unsupported("b"))},
                        "A1"),
                SizeIs(2));
}

TEST(Lanes, FadesOfUnequalLengthAreNoCrossfade) {
    EXPECT_THAT(lanesOf({faded(clip(0, 100), 0, 20), faded(clip(80, 100), 19, 0)}, "A1"),
                SizeIs(2));
    EXPECT_THAT(lanesOf({faded(clip(0, 100), 0, 19), faded(clip(80, 100), 20, 0)}, "A1"),
                SizeIs(2));
}

TEST(Lanes, DrawnFadesAreNoCrossfade) {
    PlannedClip drawn = faded(clip(80, 100), 20, 0);
    drawn.fadeIn->shape = {{AAFRational::zero(), 0}};
    EXPECT_THAT(lanesOf({faded(clip(0, 100), 0, 20), drawn}, "A1"), SizeIs(2));
}

TEST(Lanes, FadesThatReachIntoOneAnotherAreNoCrossfade) {
    // The second clip fades in for 20 and out for 11 of its 30 samples.
    EXPECT_THAT(lanesOf({faded(clip(0, 100), 0, 20), faded(clip(80, 30), 20, 11)}, "A1"),
                SizeIs(2));
    EXPECT_THAT(lanesOf({faded(clip(0, 100), 0, 20), faded(clip(80, 30), 20, 10)}, "A1"),
                SizeIs(1));
}

TEST(Lanes, ACrossfadeIsFoundOnAFurtherLane) {
    const auto lanes =
        lanesOf({clip(0, 300), faded(clip(10, 100), 0, 20), faded(clip(90, 100), 20, 0)}, "A1");
    ASSERT_THAT(lanes, SizeIs(2));
    EXPECT_THAT(starts(lanes[1]), ElementsAre(10, 90));
    EXPECT_TRUE(lanes[1].clips[1].crossfadesIn);
}

TEST(Lanes, OneFadeOutCrossfadesOnce) {
    const auto lanes = lanesOf(
        {faded(clip(0, 100), 0, 20), faded(clip(80, 100), 20, 0), faded(clip(80, 100), 20, 0)},
        "A1");
    ASSERT_THAT(lanes, SizeIs(2));
    EXPECT_THAT(starts(lanes[0]), ElementsAre(0, 80));
    EXPECT_FALSE(lanes[1].clips[0].crossfadesIn);
}

TEST(Lanes, AClipThatIsNothingButItsCrossfadeEndsWithTheOneBefore) {
    const auto lanes =
        lanesOf({faded(clip(0, 100), 0, 20), faded(clip(80, 20), 20, 0), clip(100, 5)}, "A1");
    ASSERT_THAT(lanes, SizeIs(1));
    EXPECT_THAT(starts(lanes[0]), ElementsAre(0, 80, 100));
}

// All at once, and then as many that crossfade with none of them: nothing here may be quadratic.
TEST(Lanes, TwentyThousandClipsAtOnceAreTwentyThousandLanes) {
    std::vector<PlannedClip> clips;
    for (int i = 0; i < 20'000; ++i) {
        clips.push_back(faded(clip(0, 100), 0, 20));
    }
    for (int i = 0; i < 20'000; ++i) {
        clips.push_back(faded(clip(80, 100), 20, 0, Curve::power()));
    }
    EXPECT_THAT(lanesOf(std::move(clips), "A1"), SizeIs(40'000));
}

}  // namespace
}  // namespace trellant::exchange

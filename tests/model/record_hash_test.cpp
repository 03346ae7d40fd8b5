// SPDX-License-Identifier: Apache-2.0
#include "sample_timeline.h"

#include <trellant/json/record_hash.h>
#include <trellant/model/record_fields.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace trellant {
namespace {

using test::sampleTimeline;

TEST(RecordHash, EqualRecordsHashAlike) {
    EXPECT_EQ(recordHash(sampleTimeline()), recordHash(sampleTimeline()));
    EXPECT_EQ(recordHash(AAFRational(2, 4)), recordHash(AAFRational(1, 2)));
}

TEST(RecordHash, TheTwoZerosHashAlike) {
    const AAFAutomationPoint plus{AAFRational(0), 0.0};
    const AAFAutomationPoint minus{AAFRational(0), -0.0};
    ASSERT_EQ(plus, minus);
    EXPECT_EQ(recordHash(plus), recordHash(minus));
}

TEST(RecordHash, EveryPlaceTakesPart) {
    const std::vector<std::function<void(AAFTimeline&)>> changes{
        [](AAFTimeline& timeline) { timeline.sourceAAF.text += "x"; },
        [](AAFTimeline& timeline) { timeline.clock.timelineZero.frames = 1; },
        [](AAFTimeline& timeline) { timeline.clock.timecodeRate.dropFrame = true; },
        [](AAFTimeline& timeline) { timeline.explicitProgramStart.reset(); },
        [](AAFTimeline& timeline) { timeline.essences[0].bitDepth = 16; },
        [](AAFTimeline& timeline) { timeline.tracks[0].solo = false; },
        [](AAFTimeline& timeline) {
            timeline.tracks[0].gainAutomation->interpolation = AAFAutomationInterpolation::linear();
        },
        [](AAFTimeline& timeline) {
            timeline.events[1].clipGainAutomation.mutableValue().interpolation =
                AAFAutomationInterpolation::unsupported("other");
        },
        [](AAFTimeline& timeline) {
            timeline.events[1].fadeIn.mutableValue().points[1].value = 0.9;
        },
        [](AAFTimeline& timeline) {
            timeline.events[1].exportSourceEventIDs.mutableValue().push_back("c");
        },
        [](AAFTimeline& timeline) { timeline.events[0].channelRole = AAFChannelRole::right; },
        [](AAFTimeline& timeline) { std::swap(timeline.events[0], timeline.events[1]); },
        [](AAFTimeline& timeline) { timeline.unsupportedFeatures.pop_back(); },
        [](AAFTimeline& timeline) { timeline.compositionLength = AAFRational(1); },
        [](AAFTimeline& timeline) { timeline.hasNativeTimecode = false; }};
    const std::size_t original = recordHash(sampleTimeline());
    for (std::size_t index = 0; index < changes.size(); ++index) {
        AAFTimeline changed = sampleTimeline();
        changes[index](changed);
        ASSERT_NE(changed, sampleTimeline()) << index;
        EXPECT_NE(recordHash(changed), original) << index;
    }
}

TEST(RecordHash, AbsentAndDefaultDiffer) {
    AAFTrackState absent{.id = "t"};
    AAFTrackState zero = absent;
    zero.fixedPan = 0.0;
    EXPECT_NE(recordHash(absent), recordHash(zero));
}

TEST(RecordHash, MapsTakeKeysAndValues) {
    using Map = std::map<std::string, std::string>;
    EXPECT_EQ(recordHash(Map{{"a", "1"}}), recordHash(Map{{"a", "1"}}));
    EXPECT_NE(recordHash(Map{{"a", "1"}}), recordHash(Map{{"1", "a"}}));
}

}  // namespace
}  // namespace trellant

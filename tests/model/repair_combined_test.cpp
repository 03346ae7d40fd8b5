// SPDX-License-Identifier: Apache-2.0
// What becomes of a timeline with several things wrong, and where one repair leads to another.
#include "repair_lines.h"
#include "sample_timeline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace trellant {
namespace {

using test::emptyTimeline;
using test::label;
using test::linesOf;
using test::problemOf;
using test::sampleTimeline;
using ::testing::ElementsAre;

constexpr double infinite = std::numeric_limits<double>::infinity();
const double notANumber = std::nan("");

TEST(CombinedRepair, ProblemsOfAllObjectsAreRepairedTogether) {
    AAFTimeline damaged = sampleTimeline();
    damaged.tracks.push_back({.id = "t1"});
    damaged.essences[0].channelCount = 0;
    damaged.clock.editRate = AAFRational(0);
    damaged.events[0].sourceChannel = 0;
    const AAFRepair repair = repairedTimeline(damaged);
    EXPECT_THAT(
        linesOf(repair),
        ElementsAre("duplicate-identity track[1] (t1): left out",
                    "invalid-channel-count essence[0] (e1): channelCount clamped",
                    "invalid-edit-rate clock: editRate replaced",
                    // The sample's second event plays the second channel.
                    "invalid-source-channel event[1] (ev/2 of t1): sourceChannel left out"));
    EXPECT_EQ(repair.timeline.events[0].sourceChannel, 0);
    EXPECT_EQ(problemOf(repair.timeline), "");
}

TEST(CombinedRepair, SeveralProblemsOfOneEventAreListedInTheOrderOfTheChecks) {
    AAFTimeline damaged = sampleTimeline();
    AAFClipEvent& event = damaged.events[1];
    event.fadeOut.mutableValue().duration = AAFRational(-1);
    event.fadeIn.mutableValue().duration = AAFRational(-1);
    event.fixedClipGain = notANumber;
    event.duration = AAFRational(-1);
    event.sourceStartSample = -1;
    const AAFRepair repair = repairedTimeline(damaged);
    EXPECT_THAT(
        linesOf(repair),
        ElementsAre("negative-source-range event[1] (ev/2 of t1): duration clamped",
                    "negative-source-range event[1] (ev/2 of t1): sourceStartSample clamped",
                    "nonfinite-clip-gain event[1] (ev/2 of t1): fixedClipGain replaced",
                    "negative-fade-duration event[1] (ev/2 of t1): fadeIn left out",
                    "negative-fade-duration event[1] (ev/2 of t1): fadeOut left out"));
}

TEST(CombinedRepair, SlotListedTwiceKeepsItsFirstTrackAndAllEvents) {
    AAFTimeline damaged = sampleTimeline();
    damaged.tracks.push_back(damaged.tracks[0]);
    damaged.tracks[1].index = 4;
    AAFTimeline expected = sampleTimeline();
    for (const char* id : {"ev3", "ev4"}) {
        damaged.events.push_back(test::plainEvent());
        damaged.events.back().id = id;
    }
    expected.events = damaged.events;
    const AAFRepair repair = repairedTimeline(damaged);
    EXPECT_EQ(repair.timeline, expected);
    EXPECT_THAT(linesOf(repair), ElementsAre("duplicate-identity track[1] (t1): left out"));
}

TEST(CombinedRepair, EventsFollowTheFirstTrackAndEssenceWithoutAnID) {
    AAFTimeline damaged = sampleTimeline();
    damaged.tracks = {{.id = ""}, {.id = ""}};
    damaged.essences[0].id = "";
    damaged.events = {test::plainEvent()};
    damaged.events[0].trackID = "";
    damaged.events[0].essenceID = "";
    const AAFRepair repair = repairedTimeline(damaged);
    EXPECT_THAT(linesOf(repair), ElementsAre("empty-identity track[0]: id replaced",
                                             "empty-identity track[1]: id replaced",
                                             "empty-identity essence[0]: id replaced",
                                             "empty-identity event[0] (ev1): trackID replaced",
                                             "empty-identity event[0] (ev1): essenceID replaced"));
    EXPECT_EQ(repair.timeline.events.at(0).trackID, "repaired-track-0");
    EXPECT_EQ(repair.timeline.tracks.at(1).id, "repaired-track-1");
    EXPECT_EQ(repair.timeline.events.at(0).essenceID, "repaired-essence-0");
    EXPECT_EQ(problemOf(repair.timeline), "");
}

TEST(CombinedRepair, EmptyReferenceToNoTrackLeavesTheEventOut) {
    AAFTimeline damaged = sampleTimeline();
    damaged.events[0].trackID = "";
    EXPECT_THAT(linesOf(repairedTimeline(damaged)),
                ElementsAre("missing-track-reference event[0] (ev1): left out"));
}

TEST(CombinedRepair, NewIDsAvoidThoseThatAreThere) {
    AAFTimeline damaged = sampleTimeline();
    damaged.events = std::vector<AAFClipEvent>(4, test::plainEvent());
    damaged.events[0].id = "";
    damaged.events[1].id = "repaired-event-0";
    damaged.events[2].id = "repaired-event-0-2";
    damaged.events[3].id = "repaired-event-0-2";
    const AAFRepair repair = repairedTimeline(damaged);
    std::vector<std::string> ids;
    for (const AAFClipEvent& event : repair.timeline.events) {
        ids.push_back(event.id);
    }
    EXPECT_THAT(ids, ElementsAre("repaired-event-0-3", "repaired-event-0", "repaired-event-0-2",
                                 "repaired-event-3"));
}

TEST(CombinedRepair, IDOfAnEventThatIsLeftOutIsFree) {
    AAFTimeline damaged = sampleTimeline();
    damaged.events[1].id = "ev1";
    damaged.events[0].trackID = "nowhere";
    EXPECT_THAT(linesOf(repairedTimeline(damaged)),
                ElementsAre("missing-track-reference event[0] (ev1 of nowhere): left out"));
}

TEST(CombinedRepair, PointsOutsideAreMovedBeforeAllAreOrdered) {
    AAFTimeline damaged = sampleTimeline();
    const auto point = [](std::int64_t tenths, double value) {
        return AAFAutomationPoint{AAFRational(tenths, 10), value};
    };
    damaged.tracks[0].gainAutomation->points = {point(0, 1),  point(50, 2),         point(7, 3),
                                                point(-1, 4), point(8, notANumber), point(10, 5),
                                                point(7, 6)};
    const AAFRepair repair = repairedTimeline(damaged);
    // Moved: 0, 10, 7, 0, 10, 7. Three of them lie before the one ahead; those with one time keep
    // their order.
    EXPECT_EQ(repair.timeline.tracks[0].gainAutomation->points,
              (std::vector<AAFAutomationPoint>{point(0, 1), point(0, 4), point(7, 3), point(7, 6),
                                               point(10, 2), point(10, 5)}));
    EXPECT_THAT(
        linesOf(repair),
        ElementsAre("nonfinite-automation track[0] (t1): gainAutomation.points left out",
                    "automation-time-outside-owner track[0] (t1): gainAutomation.points clamped x2",
                    "unordered-automation track[0] (t1): gainAutomation.points reordered x3"));
}

TEST(CombinedRepair, AutomationThatWasEmptyStays) {
    AAFTimeline damaged = sampleTimeline();
    damaged.tracks[0].gainAutomation->points.clear();
    damaged.tracks[0].panAutomation->points[0].value = infinite;
    const AAFRepair repair = repairedTimeline(damaged);
    EXPECT_TRUE(repair.timeline.tracks[0].gainAutomation.has_value());
    EXPECT_FALSE(repair.timeline.tracks[0].panAutomation.has_value());
}

TEST(CombinedRepair, RateThatFailsTwiceBecomes25) {
    AAFTimeline damaged = emptyTimeline();
    damaged.clock.timecodeRate.exactRate = AAFRational(0);
    damaged.clock.timelineZero.rate.nominalFramesPerSecond = -1;
    damaged.clock.editRate = AAFRational(0);
    const AAFRepair repair = repairedTimeline(damaged);
    EXPECT_EQ(repair.timeline, emptyTimeline());
    EXPECT_THAT(linesOf(repair), ElementsAre("invalid-edit-rate clock: editRate replaced",
                                             "invalid-timecode-rate clock: timecodeRate replaced",
                                             "invalid-timecode-rate clock: timelineZero.rate "
                                             "replaced"));
}

TEST(CombinedRepair, RateTakesThatOfTheLabelWhenThatIsValid) {
    AAFTimeline damaged = emptyTimeline();
    damaged.clock.timelineZero = label(0, 0, 0, 0, AAFTimecodeRate::fps24());
    damaged.clock.timecodeRate.nominalFramesPerSecond = 0;
    EXPECT_EQ(repairedTimeline(damaged).timeline.clock.timecodeRate, AAFTimecodeRate::fps24());
}

TEST(CombinedRepair, EventOfARepairedRateIsMeasuredByIt) {
    // 2^62 seconds of a rate of 0 are 48000 times too many samples.
    AAFTimeline damaged = sampleTimeline();
    damaged.essences[0].sampleRate = AAFRational(0);
    damaged.events[0].duration = AAFRational(std::int64_t{1} << 62);
    EXPECT_THAT(linesOf(repairedTimeline(damaged)),
                ElementsAre("invalid-sample-rate essence[0] (e1): sampleRate replaced",
                            "source-range-overflow event[0] (ev1 of t1): left out"));
}

TEST(CombinedRepair, OtherCopiesOfASharedEnvelopeStay) {
    AAFTimeline damaged = sampleTimeline();
    Boxed<AAFAutomationEnvelope> shared(
        AAFAutomationEnvelope{{}, {{AAFRational(0), 1}, {AAFRational(2), 0}}});
    damaged.events[0].clipGainAutomation = shared;
    const AAFRepair repair = repairedTimeline(damaged);
    EXPECT_EQ(repair.timeline.events[0].clipGainAutomation->points[1].timelineOffset,
              AAFRational(1));
    EXPECT_EQ(shared->points[1].timelineOffset, AAFRational(2));
}

}  // namespace
}  // namespace trellant

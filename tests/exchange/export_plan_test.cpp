// SPDX-License-Identifier: Apache-2.0
#include "timelines.h"

#include <trellant/exchange/export_plan.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace trellant::exchange {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using enum AAFFade::Direction;

AAFRational seconds(std::int64_t numerator, std::int64_t denominator = 1) {
    return AAFRational(numerator, denominator);
}

const PlannedClip& onlyClip(const PlannedSession& session) {
    return session.plan.tracks.at(0).lanes.at(0).clips.at(0);
}

AAFTimeline oneClip(const AAFRational& start, const AAFRational& duration,
                    const AAFRational& rate = AAFRational(48'000)) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "Anna", rate);
    addClip(timeline, "A1", "Anna", start, duration);
    return timeline;
}

TEST(ExportPlan, ATimelineWithoutClipsIsASessionOfEmptyTracks) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    timeline.compositionLength = seconds(10);
    timeline.compositionName = "Reel 1";
    const PlannedSession session = planSession(timeline, {});
    EXPECT_EQ(session.plan.rate, 48'000);
    EXPECT_EQ(session.plan.length, 480'000);
    EXPECT_EQ(session.plan.name, "Reel 1");
    EXPECT_EQ(session.plan.start, timeline.clock.timelineZero);
    ASSERT_THAT(session.plan.tracks, SizeIs(1));
    ASSERT_THAT(session.plan.tracks[0].lanes, SizeIs(1));
    EXPECT_EQ(session.plan.tracks[0].lanes[0].name, "A1");
    EXPECT_THAT(session.plan.tracks[0].lanes[0].clips, IsEmpty());
    EXPECT_THAT(session.plan.media, IsEmpty());
    EXPECT_THAT(session.losses, IsEmpty());
}

TEST(ExportPlan, StartsAtALabelThatCountsFrames) {
    AAFTimeline timeline = emptyTimeline();
    const AAFTimecodeRate rounded(AAFRational(24), 24, false);
    timeline.clock = {AAFRational(24'000, 1001), rounded, AAFTimecodeAddress(1, 0, 0, 0, rounded)};
    EXPECT_EQ(planSession(timeline, {}).plan.start,
              AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps23976()));
}

TEST(ExportPlan, TheRateIsTheCommonestOfTheSourcesThatClipsPlay) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "a", seconds(44'100));
    addSource(timeline, "b", seconds(44'100));
    addSource(timeline, "c", seconds(96'000));
    for (const char* unused : {"d", "e", "f"}) {
        addSource(timeline, unused, seconds(32'000));
    }
    addClip(timeline, "A1", "a", seconds(0), seconds(1));
    addClip(timeline, "A1", "b", seconds(1), seconds(1));
    // Clips do not count, or this one source would win.
    for (int i = 2; i < 7; ++i) {
        addClip(timeline, "A1", "c", seconds(i), seconds(1));
    }
    EXPECT_EQ(planSession(timeline, {}).plan.rate, 44'100);
    EXPECT_EQ(planSession(timeline, {.rate = 48'000}).plan.rate, 48'000);
}

TEST(ExportPlan, OfTwoRatesThatAreAsCommonTheHigherOneIsTaken) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "a", seconds(96'000));
    addSource(timeline, "b", seconds(44'100));
    addClip(timeline, "A1", "a", seconds(0), seconds(1));
    addClip(timeline, "A1", "b", seconds(1), seconds(1));
    EXPECT_EQ(planSession(timeline, {}).plan.rate, 96'000);
}

TEST(ExportPlan, ARateOutOfRangeIsRefused) {
    const AAFTimeline timeline = emptyTimeline();
    EXPECT_THROW(static_cast<void>(planSession(timeline, {.rate = 0})), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(planSession(timeline, {.rate = 384'001})),
                 std::invalid_argument);
    EXPECT_EQ(planSession(timeline, {.rate = 384'000}).plan.rate, 384'000);
}

TEST(ExportPlan, EdgesBetweenSamplesAreRoundedEachOnItsOwn) {
    // 1/3 s is 16,000 samples; 1/96000 s is half a sample and goes away from zero; 100001/96000 s
    // is 50,000.5.
    const AAFTimeline timeline = oneClip(seconds(1, 96'000), seconds(100'000, 96'000));
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_EQ(onlyClip(session).start, 1);
    EXPECT_EQ(onlyClip(session).length, 50'000);
    EXPECT_EQ(session.plan.edges, (Rounding{2, seconds(1, 2)}));
}

TEST(ExportPlan, AClipAtAnotherRateKeepsItsOwnFirstSample) {
    AAFTimeline timeline = oneClip(seconds(2), seconds(1), seconds(11'025));
    timeline.events[0].sourceStartSample = 5'513;
    PlanRequest request = withFiles(timeline);
    request.rate = 48'000;
    const PlannedSession session = planSession(timeline, request);
    // 5513 * 48000 / 11025 = 24,002.176...; 8/45 of a sample in lowest terms is 26/147.
    EXPECT_EQ(onlyClip(session).sourceStart, 5'513);
    EXPECT_EQ(onlyClip(session).sourceStartAtSessionRate, 24'002);
    EXPECT_EQ(session.plan.sourceStarts, (Rounding{1, seconds(26, 147)}));
    EXPECT_EQ(session.plan.edges.count, 0U);
    EXPECT_EQ(session.plan.media.at(0).sampleRate, seconds(11'025));
}

TEST(ExportPlan, AClipOfLessThanHalfASampleIsLeftOut) {
    const AAFTimeline timeline = oneClip(seconds(1), seconds(1, 200'000));
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_THAT(session.plan.tracks[0].lanes[0].clips, IsEmpty());
    EXPECT_THAT(session.losses, ElementsAre(PlanLoss{PlanLoss::Kind::shorterThanASample, 0}));
}

TEST(ExportPlan, AClipBeforeTheStartOfTheTimelineIsLeftOut) {
    const AAFTimeline timeline = oneClip(seconds(-2), seconds(2));
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_THAT(session.plan.tracks[0].lanes[0].clips, IsEmpty());
    EXPECT_THAT(session.losses, ElementsAre(PlanLoss{PlanLoss::Kind::beforeTheStart, 0}));
}

TEST(ExportPlan, WhatLiesBeforeTheStartOfTheTimelineIsCutOff) {
    AAFTimeline timeline = oneClip(seconds(-1), seconds(4));
    AAFClipEvent& event = timeline.events[0];
    event.sourceStartSample = 100;
    event.fadeIn = fadeOf(fadeIn, seconds(3, 2));
    event.clipGainAutomation =
        AAFAutomationEnvelope{AAFAutomationInterpolation::linear(),
                              {{seconds(0), 0}, {seconds(1, 2), 1}, {seconds(1), 0.5}}};
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    const PlannedClip& clip = onlyClip(session);
    EXPECT_EQ(clip.start, 0);
    EXPECT_EQ(clip.length, 144'000);
    EXPECT_EQ(clip.sourceStart, 48'100);
    ASSERT_TRUE(clip.fadeIn.has_value());
    EXPECT_EQ(clip.fadeIn->length, 24'000);
    // A quarter goes: half way to the second point, which lies at 1/2 of 4 s, 1 s of 3 s.
    EXPECT_EQ(clip.gainAutomation->points,
              (std::vector<AAFAutomationPoint>{
                  {seconds(0), 0.5}, {seconds(1, 3), 1}, {seconds(1), 0.5}}));
    EXPECT_THAT(session.losses, ElementsAre(PlanLoss{PlanLoss::Kind::headBeforeTheStart, 0}));
}

TEST(ExportPlan, AFadeInThatEndsBeforeTheStartOfTheTimelineIsGone) {
    AAFTimeline timeline = oneClip(seconds(-1), seconds(4));
    timeline.events[0].fadeIn = fadeOf(fadeIn, seconds(1));
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_FALSE(onlyClip(session).fadeIn.has_value());
}

TEST(ExportPlan, ClipsBeyondAllCountingAreLeftOut) {
    // 2^53 samples at 48 kHz are 187,649,984,473.77 s.
    AAFTimeline timeline = oneClip(seconds(187'649'984'473), seconds(1, 2));
    addClip(timeline, "A1", "Anna", seconds(187'649'984'474), seconds(1));
    addClip(timeline, "A1", "Anna", seconds(std::numeric_limits<std::int64_t>::max() - 1),
            seconds(1));
    addClip(timeline, "A1", "Anna", seconds(0), seconds(1)).sourceStartSample = mostSamples + 1;
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_THAT(session.plan.tracks[0].lanes[0].clips, SizeIs(1));
    EXPECT_EQ(onlyClip(session).start, 9'007'199'254'704'000);
    EXPECT_THAT(session.losses, ElementsAre(PlanLoss{PlanLoss::Kind::beyondTheRange, 1},
                                            PlanLoss{PlanLoss::Kind::beyondTheRange, 2},
                                            PlanLoss{PlanLoss::Kind::beyondTheRange, 3}));
}

TEST(ExportPlan, FadesLongerThanTheirClipAreCutToIt) {
    AAFTimeline timeline = oneClip(seconds(1), seconds(1));
    timeline.events[0].fadeIn = fadeOf(fadeIn, seconds(2));
    timeline.events[0].fadeOut = fadeOf(fadeOut, seconds(1));
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_EQ(onlyClip(session).fadeIn->length, 48'000);
    EXPECT_EQ(onlyClip(session).fadeOut->length, 48'000);
    EXPECT_THAT(session.losses, ElementsAre(PlanLoss{PlanLoss::Kind::fadeLongerThanClip, 0}));
}

/// Points that count from the fade's end: 0.2 at its start is written as 1, and so on.
TEST(ExportPlan, AShapeThatCountsFromItsEndIsTurnedRound) {
    AAFTimeline timeline = oneClip(seconds(0), seconds(2));
    AAFFade fade = fadeOf(fadeIn, seconds(1));
    fade.points = {{AAFRational(0), 1}, {AAFRational(1, 4), 0.5}, {AAFRational(1), 0.2}};
    fade.reversesPointTime = true;
    timeline.events[0].fadeIn = fade;
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_EQ(onlyClip(session).fadeIn->shape,
              (std::vector<AAFAutomationPoint>{
                  {AAFRational(0), 0.2}, {AAFRational(3, 4), 0.5}, {AAFRational(1), 1}}));
}

TEST(ExportPlan, AFadeWithoutLengthIsNone) {
    AAFTimeline timeline = oneClip(seconds(1), seconds(1));
    timeline.events[0].fadeIn = fadeOf(fadeIn, seconds(0));
    timeline.events[0].fadeOut = fadeOf(fadeOut, seconds(1, 200'000));
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_FALSE(onlyClip(session).fadeIn.has_value());
    EXPECT_FALSE(onlyClip(session).fadeOut.has_value());
    EXPECT_THAT(session.losses, IsEmpty());
}

TEST(ExportPlan, GainPanAndMuteAreTakenOver) {
    AAFTimeline timeline = oneClip(seconds(1), seconds(1));
    timeline.events[0].fixedClipGain = 0.5;
    timeline.events[0].clipMuted = true;
    AAFTrackState& track = timeline.tracks[0];
    track.fixedGain = 0.25;
    track.fixedPan = 0.75;
    track.muted = true;
    track.solo = true;
    track.panAutomation = AAFAutomationEnvelope{{}, {{seconds(0), 1}}};
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_EQ(onlyClip(session).gain, 0.5);
    EXPECT_TRUE(onlyClip(session).muted);
    const PlannedTrack& planned = session.plan.tracks[0];
    EXPECT_EQ(planned.gain, 0.25);
    EXPECT_EQ(planned.pan, 0.75);
    EXPECT_TRUE(planned.muted);
    EXPECT_TRUE(planned.solo);
    EXPECT_EQ(planned.panAutomation, track.panAutomation);
}

TEST(ExportPlan, TracksAndClipsWithoutANameGetOne) {
    AAFTimeline timeline = oneClip(seconds(0), seconds(1));
    timeline.tracks[0].name.reset();
    // Slots without sound stand before it, and lists count them.
    timeline.tracks[0].index = 3;
    timeline.events[0].clipName.reset();
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    EXPECT_EQ(session.plan.tracks[0].name, "Track 4");
    EXPECT_EQ(onlyClip(session).name, "Anna");
}

TEST(ExportPlan, ClipsWithoutANameGetTheOneThatIsGiven) {
    for (const std::optional<std::string>& own : {std::optional<std::string>(), {""}}) {
        AAFTimeline timeline = oneClip(seconds(0), seconds(1));
        timeline.events[0].clipName = own;
        PlanRequest request = withFiles(timeline);
        request.clipNames.emplace(0, "Anna, take 1");
        EXPECT_EQ(onlyClip(planSession(timeline, request)).name, "Anna, take 1");
    }
}

TEST(ExportPlan, ANameOfItsOwnIsNotReplaced) {
    AAFTimeline timeline = oneClip(seconds(0), seconds(1));
    timeline.events[0].clipName = "Door";
    PlanRequest request = withFiles(timeline);
    request.clipNames.emplace(0, "Anna, take 1");
    EXPECT_EQ(onlyClip(planSession(timeline, request)).name, "Door");
}

TEST(ExportPlan, ExactTimesStandBesideTheRoundedOnes) {
    AAFTimeline timeline = oneClip(seconds(1, 7), seconds(2));
    timeline.events[0].fadeIn = fadeOf(AAFFade::Direction::fadeIn, seconds(1, 9));
    timeline.events[0].fadeOut = fadeOf(AAFFade::Direction::fadeOut, seconds(3));
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    const PlannedClip& clip = onlyClip(session);
    EXPECT_EQ(clip.exactStart, seconds(1, 7));
    EXPECT_EQ(clip.exactLength, seconds(2));
    EXPECT_EQ(clip.fadeIn->exactLength, seconds(1, 9));
    EXPECT_EQ(clip.fadeOut->exactLength, std::nullopt) << "it is cut to its clip";
}

}  // namespace
}  // namespace trellant::exchange

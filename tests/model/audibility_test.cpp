// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/audibility.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace trellant {
namespace {

using testing::Eq;
using testing::IsNull;
using testing::Optional;

AAFTrackState track(const std::string& id) {
    return {.id = id};
}

AAFClipEvent eventOn(const std::string& trackID, AAFRational start = {}) {
    return {.trackID = trackID, .timelineStart = start, .duration = AAFRational(1)};
}

/// Two tracks "t1" and "t2" at 25 frames from 01:00:00:00, and no events.
AAFTimeline twoTracks() {
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    return {.clock = {AAFRational(25), rate, AAFTimecodeAddress(1, 0, 0, 0, rate)},
            .tracks = {track("t1"), track("t2")}};
}

/// The rules for one event, asked in both ways: they must never differ.
bool audible(const AAFTimeline& timeline, const AAFClipEvent& event) {
    const bool answer = timeline.isEventAudible(event);
    EXPECT_EQ(AAFAudibility(timeline).isEventAudible(event), answer);
    return answer;
}

TEST(Audibility, EventOnAPlainTrackIsAudible) {
    EXPECT_TRUE(audible(twoTracks(), eventOn("t1")));
}

TEST(Audibility, EventOnAMutedTrackIsNotAudibleEvenWhenTheTrackIsSoloed) {
    AAFTimeline timeline = twoTracks();
    timeline.tracks[0].muted = true;
    EXPECT_FALSE(audible(timeline, eventOn("t1")));
    timeline.tracks[0].solo = true;
    EXPECT_FALSE(audible(timeline, eventOn("t1")));
}

TEST(Audibility, MutedClipIsNotAudibleEvenWhenItsTrackIsSoloed) {
    AAFTimeline timeline = twoTracks();
    AAFClipEvent event = eventOn("t1");
    event.clipMuted = true;
    EXPECT_FALSE(audible(timeline, event));
    timeline.tracks[0].solo = true;
    EXPECT_FALSE(audible(timeline, event));
}

TEST(Audibility, BesideASoloedTrackOtherUnmutedTracksAreNotAudible) {
    AAFTimeline timeline = twoTracks();
    timeline.tracks[1].solo = true;
    EXPECT_FALSE(audible(timeline, eventOn("t1")));
    EXPECT_TRUE(audible(timeline, eventOn("t2")));
}

TEST(Audibility, AMutedSoloedTrackStillSilencesTheOthers) {
    AAFTimeline timeline = twoTracks();
    timeline.tracks[1].solo = true;
    timeline.tracks[1].muted = true;
    EXPECT_FALSE(audible(timeline, eventOn("t1")));
    EXPECT_FALSE(audible(timeline, eventOn("t2")));
}

TEST(Audibility, EventWithoutATrackIsNotAudible) {
    EXPECT_FALSE(audible(twoTracks(), eventOn("t3")));
    EXPECT_FALSE(audible(AAFTimeline{}, eventOn("t1")));
}

TEST(Audibility, SilencedByGainAnEventIsStillAudible) {
    AAFClipEvent event = eventOn("t1");
    event.fixedClipGain = 0;
    EXPECT_TRUE(audible(twoTracks(), event));
}

TEST(Audibility, OfTracksWithOneIdTheFirstDecidesAboutAnEvent) {
    AAFTimeline timeline = twoTracks();
    timeline.tracks[1].id = "t1";
    timeline.tracks[1].muted = true;
    EXPECT_TRUE(timeline.isEventAudible(eventOn("t1")));
}

TEST(Audibility, TheTrackOfAnEventIsFoundByItsId) {
    const AAFTimeline timeline = twoTracks();
    const AAFAudibility audibility(timeline);
    EXPECT_THAT(audibility.track(eventOn("t2")), Eq(&timeline.tracks[1]));
    EXPECT_THAT(audibility.track(eventOn("t3")), IsNull());
}

TEST(AudibilityDeathTest, TwoTracksWithOneIdStopTheProcess) {
    AAFTimeline timeline = twoTracks();
    timeline.tracks[1].id = "t1";
    EXPECT_DEATH((void)timeline.firstAudibleEventStart(),
                 "precondition failed: two tracks of a timeline have the same id");
}

TEST(FirstAudibleEventStart, IsTheEarliestStartInAnyOrderOfEvents) {
    AAFTimeline timeline = twoTracks();
    timeline.events = {eventOn("t1", AAFRational(3)), eventOn("t2", AAFRational(-1, 2)),
                       eventOn("t1", AAFRational(2))};
    EXPECT_THAT(timeline.firstAudibleEventStart(), Optional(AAFRational(-1, 2)));
}

TEST(FirstAudibleEventStart, EqualStartsWrittenDifferentlyGiveTheOneReducedStart) {
    AAFTimeline timeline = twoTracks();
    timeline.events = {eventOn("t1", AAFRational(1, 2)), eventOn("t2", AAFRational(2, 4))};
    EXPECT_THAT(timeline.firstAudibleEventStart(), Optional(AAFRational(1, 2)));
}

TEST(FirstAudibleEventStart, LeavesOutWhatMuteAndSoloSilence) {
    AAFTimeline timeline = twoTracks();
    timeline.tracks.push_back(track("t3"));
    timeline.tracks[0].muted = true;
    AAFClipEvent mutedClip = eventOn("t2", AAFRational(2));
    mutedClip.clipMuted = true;
    timeline.events = {eventOn("t1", AAFRational(1)), mutedClip, eventOn("t2", AAFRational(4)),
                       eventOn("t3", AAFRational(3))};
    EXPECT_THAT(timeline.firstAudibleEventStart(), Optional(AAFRational(3)));
    timeline.tracks[1].solo = true;
    EXPECT_THAT(timeline.firstAudibleEventStart(), Optional(AAFRational(4)));
}

TEST(FirstAudibleEventStart, IgnoresEventsWithoutATrack) {
    AAFTimeline timeline = twoTracks();
    timeline.events = {eventOn("gone", AAFRational(1)), eventOn("t1", AAFRational(2))};
    EXPECT_THAT(timeline.firstAudibleEventStart(), Optional(AAFRational(2)));
}

TEST(FirstAudibleEventStart, IsAbsentWhenNothingIsAudible) {
    AAFTimeline timeline = twoTracks();
    EXPECT_THAT(timeline.firstAudibleEventStart(), Eq(std::nullopt));
    timeline.tracks[0].muted = true;
    timeline.events = {eventOn("t1", AAFRational(1))};
    EXPECT_THAT(timeline.firstAudibleEventStart(), Eq(std::nullopt));
}

TEST(BounceStart, IsTheProgramStartWhenTheFirstAudibleEventDoesNotLieBeforeIt) {
    AAFTimeline timeline = twoTracks();
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    timeline.explicitProgramStart = AAFTimecodeAddress(1, 0, 30, 0, rate);
    timeline.events = {eventOn("t1", AAFRational(30))};
    EXPECT_THAT(timeline.bounceStart(), Optional(AAFTimecodeAddress(1, 0, 30, 0, rate)));
}

TEST(BounceStart, IsTheMinuteOfAnEarlierAudibleEvent) {
    AAFTimeline timeline = twoTracks();
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    timeline.explicitProgramStart = AAFTimecodeAddress(1, 2, 0, 0, rate);
    // 95 seconds after 01:00:00:00 is 01:01:35:00.
    timeline.events = {eventOn("t1", AAFRational(95))};
    EXPECT_THAT(timeline.bounceStart(), Optional(AAFTimecodeAddress(1, 1, 0, 0, rate)));
}

TEST(BounceStart, IsTheMinuteOfTheFirstAudibleEventWithoutAProgramStart) {
    AAFTimeline timeline = twoTracks();
    timeline.events = {eventOn("t1", AAFRational(65))};
    EXPECT_THAT(timeline.bounceStart(),
                Optional(AAFTimecodeAddress(1, 1, 0, 0, AAFTimecodeRate::fps25())));
}

TEST(BounceStart, IsTheProgramStartAsItIsWhenAllEventsAreMuted) {
    AAFTimeline timeline = twoTracks();
    AAFClipEvent event = eventOn("t1", AAFRational(65));
    event.clipMuted = true;
    timeline.events = {event};
    EXPECT_THAT(timeline.bounceStart(), Eq(std::nullopt));
    timeline.explicitProgramStart = AAFTimecodeAddress(2, 3, 4, 5, AAFTimecodeRate::fps25());
    EXPECT_THAT(timeline.bounceStart(), Eq(timeline.explicitProgramStart));
}

}  // namespace
}  // namespace trellant

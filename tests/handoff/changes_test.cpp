// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/changes.h>

#include <gtest/gtest.h>

namespace trellant {
namespace {

AAFTimeline oneClip() {
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    AAFTimeline timeline;
    timeline.clock = {AAFRational(25), rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
    timeline.tracks = {{.id = "t", .name = "Dialog"}};
    timeline.essences = {{.id = "e", .sourceName = "Voice.wav"}};
    timeline.events = {{.id = "v",
                        .trackID = "t",
                        .essenceID = "e",
                        .clipName = "Anna",
                        .timelineStart = AAFRational(2)}};
    return timeline;
}

TEST(Changes, ClipsAreToldByTrackNameAndTime) {
    const auto described =
        describedChanges(oneClip(), {{.problem = AAFTimelineProblem::invalidSourceChannel,
                                      .place = AAFTimelinePlace::event(0),
                                      .field = "sourceChannel"}});
    ASSERT_EQ(described.size(), 1U);
    EXPECT_EQ(described[0].what, "the channel number is left out");
    EXPECT_EQ(placeText(described[0], oneClip()), "track Dialog, clip Anna, at 01:00:02:00");
}

TEST(Changes, AClipWithoutANameHasNoneButForPeople) {
    AAFTimeline timeline = oneClip();
    timeline.events[0].clipName.reset();
    const DescribedChange described = placeOfFailure(
        timeline, {AAFTimelineProblem::nonfiniteClipGain, AAFTimelinePlace::event(0)});
    EXPECT_EQ(described.clip, std::nullopt);
    EXPECT_EQ(placeText(described, timeline), "track Dialog, clip (no name), at 01:00:02:00");
}

TEST(Changes, PointsAreCounted) {
    const auto described =
        describedChanges(oneClip(), {{.problem = AAFTimelineProblem::automationTimeOutsideOwner,
                                      .place = AAFTimelinePlace::event(0),
                                      .action = AAFRepairChange::Action::clamped,
                                      .field = "fadeIn.points",
                                      .count = 3}});
    EXPECT_EQ(described.at(0).what,
              "3 points of the fade in are moved to the nearest possible value");
}

TEST(Changes, AudioFilesAndWholeClipsAreToldByWhatTheyAre) {
    const auto described =
        describedChanges(oneClip(), {{.problem = AAFTimelineProblem::invalidSampleRate,
                                      .place = AAFTimelinePlace::essence(0),
                                      .action = AAFRepairChange::Action::replaced,
                                      .field = "sampleRate"},
                                     {.problem = AAFTimelineProblem::missingTrackReference,
                                      .place = AAFTimelinePlace::event(0)},
                                     {.problem = AAFTimelineProblem::invalidEditRate,
                                      .place = {AAFTimelinePlace::Kind::clock},
                                      .action = AAFRepairChange::Action::replaced,
                                      .field = "editRate"}});
    EXPECT_EQ(described.at(0).what,
              "the sample rate is taken as 48000 Hz; clips whose place in the audio file hangs on "
              "it start at the head of the file");
    EXPECT_EQ(placeText(described.at(0), oneClip()),
              "track Dialog, clip Anna, audio file Voice.wav, at 01:00:02:00");
    EXPECT_EQ(described.at(1).what, "the clip is left out");
    EXPECT_EQ(described.at(2).what, "the edit rate is replaced by a usable one");
    EXPECT_EQ(placeText(described.at(2), oneClip()), "");
}

TEST(Changes, OnePointIsOne) {
    const auto described =
        describedChanges(oneClip(), {{.problem = AAFTimelineProblem::automationTimeOutsideOwner,
                                      .place = AAFTimelinePlace::event(0),
                                      .action = AAFRepairChange::Action::clamped,
                                      .field = "clipGainAutomation.points",
                                      .count = 1}});
    EXPECT_EQ(described.at(0).what,
              "1 point of the gain automation is set to the nearest possible value");
}

TEST(Changes, ATrackThatIsListedTwiceIsToldWithWhatIsHeard) {
    const auto described = describedChanges(
        oneClip(),
        {{.problem = AAFTimelineProblem::duplicateIdentity, .place = AAFTimelinePlace::track(0)}});
    EXPECT_EQ(described.at(0).what,
              "the track is listed twice and the second listing is left out; its clips stand twice "
              "on the first, one upon the other, and sound twice as loud");
    EXPECT_EQ(placeText(described.at(0), oneClip()), "track Dialog");
}

TEST(Changes, PlacesBeyondTheTimelineAreToldByTheirPositionAlone) {
    for (const auto& place :
         {AAFTimelinePlace::event(1), AAFTimelinePlace::essence(1), AAFTimelinePlace::track(1)}) {
        const auto described = describedChanges(
            oneClip(), {{.problem = AAFTimelineProblem::emptyIdentity, .place = place}});
        EXPECT_EQ(placeText(described.at(0), oneClip()), "") << place.text();
        EXPECT_EQ(described.at(0).object, place.text());
    }
}

TEST(Changes, AFailureIsPlacedAsAChangeIs) {
    const DescribedChange described = placeOfFailure(
        oneClip(), {AAFTimelineProblem::nonfiniteClipGain, AAFTimelinePlace::event(0)});
    EXPECT_EQ(described.code, "nonfinite-clip-gain");
    EXPECT_EQ(described.object, "event[0]");
    EXPECT_EQ(placeText(described, oneClip()), "track Dialog, clip Anna, at 01:00:02:00");
}

TEST(Changes, WholeObjectsAreToldByWhatTheyAre) {
    using Kind = AAFTimelinePlace::Kind;
    const auto what = [](Kind kind) {
        return describedChanges(oneClip(),
                                {{.problem = AAFTimelineProblem::emptyIdentity, .place = {kind}}})
            .at(0)
            .what;
    };
    EXPECT_EQ(what(Kind::clock), "the clock is left out");
    EXPECT_EQ(what(Kind::programStart), "the program start is left out");
    EXPECT_EQ(what(Kind::composition), "the composition is left out");
    EXPECT_EQ(what(Kind::track), "the second track of that id is left out");
    EXPECT_EQ(what(Kind::essence), "the audio file is left out");
    EXPECT_EQ(what(Kind::event), "the clip is left out");
}

}  // namespace
}  // namespace trellant

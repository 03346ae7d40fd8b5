// SPDX-License-Identifier: Apache-2.0
// From drafts to events: identities, where they start in their source, what they carry.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;

TEST(Events, EventOfAPlainClipIsWhole) {
    Song song;
    const ObjectID clip =
        song.omf.clip({.length = 150, .source = Song::kick, .start = 25, .name = "Hit"});
    const ObjectID slot = song.addSlot(song.omf.sequence({song.omf.filler(50), clip}));
    const AAFClipEvent expected{.id = "omf-event-" + std::to_string(clip) + "-0",
                                .trackID = "omf-track-" + std::to_string(slot),
                                .essenceID = "omf-essence-" + std::string(Song::kickID),
                                .clipName = "Hit",
                                .timelineStart = AAFRational(1, 2),
                                .duration = AAFRational(3, 2),
                                .sourceStartSample = 12'000,
                                .sourceChannel = 0,
                                .channelRole = AAFChannelRole::mono,
                                .fixedClipGain = 1,
                                .clipMuted = false};
    EXPECT_THAT(song.map().timeline.events, ElementsAre(expected));
}

TEST(Events, CountRunsOverAllTracksAndSkipsLostClips) {
    Song song;
    const ObjectID first = song.clip(100);
    const ObjectID lost = song.omf.clip({.length = 100});
    const ObjectID second = song.clip(100);
    song.addSlot(song.omf.sequence({first, lost, second}));
    song.addSlot(first);
    const Mapped mapped = song.map();
    std::vector<std::string> ids;
    for (const AAFClipEvent& event : mapped.timeline.events) {
        ids.push_back(event.id);
    }
    EXPECT_THAT(ids, ElementsAre("omf-event-" + std::to_string(first) + "-0",
                                 "omf-event-" + std::to_string(second) + "-1",
                                 "omf-event-" + std::to_string(first) + "-2"));
}

TEST(Events, SourceStartRoundsToTheNearestSample) {
    // A frame at 30000/1001 is 1601.6 samples; three are 4804.8.
    Song song;
    song.addSlot({.editRate = Ratio{30'000, 1'001},
                  .segment = song.omf.sequence({song.clip(10, 1), song.clip(10, 3)})});
    const Mapped mapped = song.map();
    ASSERT_EQ(mapped.timeline.events.size(), 2U);
    EXPECT_EQ(mapped.timeline.events[0].sourceStartSample, 1'602);
    EXPECT_EQ(mapped.timeline.events[1].sourceStartSample, 4'805);
    EXPECT_EQ(mapped.timeline.events[1].timelineStart, AAFRational(1'001, 3'000));
    EXPECT_EQ(mapped.timeline.events[1].duration, AAFRational(1'001, 3'000));
}

TEST(Events, SourceStartCountsInTheRateOfTheFoundMedia) {
    Song song;
    const MobID slow{7, 0, 0};
    song.omf.audioFile(
        {.id = slow, .media = shortWave(44'100), .sampleRate = {48'000}, .length = 48});
    song.addSlot(song.omf.clip({.length = 100, .source = slow, .start = 100}));
    EXPECT_EQ(song.map().timeline.events.at(0).sourceStartSample, 44'100);
}

TEST(Events, NegativeSourceStartIsClampedToZero) {
    Song song;
    song.addSlot(song.clip(100, -1));
    EXPECT_EQ(song.map().timeline.events.at(0).sourceStartSample, 0);
}

TEST(Events, MonoRoleOnStereoMediaIsUnknown) {
    Song song;
    const MobID stereo{7, 0, 0};
    song.omf.audioFile({.id = stereo,
                        .media = shortWave(48'000, 2),
                        .length = 48,
                        .track = {.id = 1, .physicalTrack = 2}});
    song.addSlot(song.omf.clip({.length = 100, .source = stereo}), "Music");
    song.addSlot(song.omf.clip({.length = 100, .source = stereo}), "Music_L");
    const Mapped mapped = song.map();
    ASSERT_EQ(mapped.timeline.events.size(), 2U);
    EXPECT_EQ(mapped.timeline.events[0].channelRole, AAFChannelRole::unknown);
    EXPECT_EQ(mapped.timeline.events[0].sourceChannel, 1);
    EXPECT_EQ(mapped.timeline.events[1].channelRole, AAFChannelRole::left);
}

TEST(Events, SourceChannelIsGivenEvenWhenItIsADefault) {
    Song song;
    const MobID plain{7, 0, 0};
    song.omf.audioFile({.id = plain, .media = shortWave(), .length = 48, .track = {.id = 1}});
    song.addSlot(song.omf.clip({.length = 100, .source = plain}));
    EXPECT_EQ(song.map().timeline.events.at(0).sourceChannel, 0);
}

TEST(Events, FadesGainAndAutomationComeFromTheDraft) {
    Song song;
    const ObjectID clip = song.clip(100, FadeSpec{10, 2}, FadeSpec{20, 3});
    const ObjectID automated =
        song.omf.gain(clip, song.omf.varyingValue({{{0}, {1, 2}}, {{1}, {1}}}));
    song.addSlot(song.omf.gain(automated, song.omf.constantValue({1, 4})));
    const AAFClipEvent event = song.map().timeline.events.at(0);
    EXPECT_EQ(described(event.fadeIn), "fadeIn 10 power");
    EXPECT_EQ(described(event.fadeOut), "fadeOut 20 logarithmic");
    EXPECT_EQ(described(event.clipGainAutomation), "linear: 0/1=0.5 1/1=1");
    EXPECT_EQ(event.fixedClipGain, 0.25);
}

TEST(Events, LossReasonIsNeverThatOfAnEarlierClip) {
    Song song;
    const MobID loop{7, 0, 0};
    const ObjectBuilder loopClip = song.omf.clip({.length = 100, .source = loop});
    song.omf.masterMob(
        {.id = loop,
         .slots = {song.omf.slot(
             {.editRate = Ratio{100}, .segment = loopClip, .track = song.omf.track({.id = 1})})}});
    const ObjectID nameless = song.omf.clip({.length = 100});
    const ObjectID looping = song.omf.clip({.length = 100, .source = loop});
    song.addSlot(song.omf.sequence({nameless, looping, song.clip(100)}));
    EXPECT_THAT(recordsOf(song.map()),
                ElementsAre(lossLine(0, "audio clip dropped: the Source Clip carries no Source ID",
                                     song.path() + step("SCLP", nameless)),
                            unsupportedLine(1, "source reference cycle/depth limit",
                                            step("SCLP", loopClip).substr(1)),
                            lossLine(2, "audio clip dropped: the source could not be resolved",
                                     song.path() + step("SCLP", looping))));
}

TEST(Timeline, CarriesSourceNameClockAndNothingElse) {
    Song song;
    song.name = "My Song";
    song.addSlot(song.clip(150));
    const AAFTimeline timeline = song.map({.sourcePath = "/projects/My Song.omf"}).timeline;
    EXPECT_EQ(timeline.sourceAAF.text, "file:///projects/My%20Song.omf");
    EXPECT_EQ(timeline.compositionName, "My Song");
    EXPECT_EQ(timeline.sourceApplication, std::nullopt);
    EXPECT_EQ(timeline.compositionLength, AAFRational(3, 2));
    EXPECT_EQ(timeline.hasNativeTimecode, false);
    EXPECT_EQ(timeline.explicitProgramStart, std::nullopt);
}

TEST(Timeline, EssencesAreSortedByIdentifier) {
    Song song;
    std::vector<ObjectID> clips;
    for (const std::uint32_t a : {0xB0U, 0x2U, 0xAU, 0x10U}) {
        const MobID source{a, 0, 0};
        song.omf.audioFile({.id = source, .media = shortWave(), .length = 48});
        clips.push_back(song.omf.clip({.length = 100, .source = source}));
    }
    song.addSlot(song.omf.sequence(clips));
    const Mapped mapped = song.map();
    std::vector<std::string> ids;
    for (const AAFSourceEssence& essence : mapped.timeline.essences) {
        ids.push_back(essence.id);
    }
    EXPECT_THAT(ids, ElementsAre("omf-essence-00000002-00000000-00000000",
                                 "omf-essence-0000000A-00000000-00000000",
                                 "omf-essence-00000010-00000000-00000000",
                                 "omf-essence-000000B0-00000000-00000000"));
    EXPECT_EQ(mapped.diagnostics.at(3), "Resolved 4 event(s) to 4 audio essence(s)");
}

TEST(Timeline, CompositionLengthIsTheLongestSlot) {
    Song song;
    song.addSlot(song.clip(100));
    song.addSlot({.editRate = Ratio{1}, .segment = song.omf.filler(7)});
    song.addSlot(song.clip(200));
    EXPECT_EQ(song.map().timeline.compositionLength, AAFRational(7, 1));
}

}  // namespace
}  // namespace trellant::testing

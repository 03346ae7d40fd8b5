// SPDX-License-Identifier: Apache-2.0
// From slots to tracks: which slots are mapped, how losses name them, what is told on the way.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::DoubleEq;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view noRate = " dropped: the slot carries no usable edit rate";

TEST(Tracks, SlotBecomesATrackAtItsIndex) {
    Song song;
    song.addSlot({.segment = song.omf.timecode(25, false, 0)});
    const ObjectID slot = song.addSlot(song.clip(100), "Drums");
    const Mapped mapped = song.map();
    EXPECT_THAT(mapped.timeline.tracks,
                ElementsAre(AAFTrackState{.id = "omf-track-" + std::to_string(slot),
                                          .index = 1,
                                          .name = "Drums",
                                          .fixedGain = 1,
                                          .muted = false,
                                          .solo = false}));
    EXPECT_THAT(recordsOf(mapped), IsEmpty());
}

TEST(Tracks, TrackWithoutADescriptorHasNoName) {
    Song song;
    song.addSlot(song.clip(100));
    EXPECT_EQ(song.map().timeline.tracks.at(0).name, std::nullopt);
}

TEST(Tracks, ComeInSlotOrder) {
    Song song;
    song.addSlot(song.clip(100), "B");
    song.addSlot(song.clip(100), "A");
    song.addSlot(song.clip(100), "C");
    const Mapped mapped = song.map();
    ASSERT_EQ(mapped.timeline.tracks.size(), 3U);
    EXPECT_EQ(mapped.timeline.tracks[0].name, "B");
    EXPECT_EQ(mapped.timeline.tracks[1].name, "A");
    EXPECT_EQ(mapped.timeline.tracks[2].name, "C");
}

TEST(Tracks, ProgressCountsEverySlotAudioOrNot) {
    Song song;
    song.addSlot({.segment = song.omf.timecode(25, false, 0)});
    song.addSlot(SlotSpec{});
    song.addSlot(song.clip(100));
    song.addSlot({.editRate = Ratio{0}, .segment = song.clip(100)});
    EXPECT_THAT(song.map().fractions,
                ElementsAre(DoubleEq(0.15), DoubleEq(0.35), DoubleEq(0.55), DoubleEq(0.75)));
}

TEST(Tracks, ProgressOfOneSlotIsTheStart) {
    Song song;
    song.addSlot(song.clip(100));
    EXPECT_THAT(song.map().fractions, ElementsAre(0.15));
}

TEST(Tracks, AudioSlotWithoutAUsableEditRateIsLost) {
    // 25/-1 is -25/1.
    for (const std::optional<Ratio>& rate : std::initializer_list<std::optional<Ratio>>{
             std::nullopt, Ratio{0, 1}, Ratio{25, 0}, Ratio{-25, 1}, Ratio{25, -1}}) {
        Song song;
        song.addSlot({.editRate = rate, .segment = song.clip(100)});
        song.addSlot(song.clip(100));
        const Mapped mapped = song.map();
        EXPECT_THAT(
            recordsOf(mapped),
            ElementsAre(lossLine(0, "whole audio track 1" + std::string(noRate), song.path(0))));
        EXPECT_EQ(mapped.timeline.tracks.size(), 1U);
    }
}

TEST(Tracks, EditRateOfTwoNegativesIsUsable) {
    Song song;
    song.addSlot({.editRate = Ratio{-100, -1}, .segment = song.clip(150)});
    const Mapped mapped = song.map();
    EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 150, 0}));
}

TEST(Tracks, LossNamesTheTrackInCurlyQuotesOrByNumber) {
    Song song;
    song.addSlot(song.clip(100));
    song.addSlot({.editRate = Ratio{0}, .segment = song.clip(100)});
    song.addSlot({.editRate = Ratio{0},
                  .segment = song.clip(100),
                  .track = song.omf.track({.name = "Dialog \"A\""})});
    EXPECT_THAT(
        recordsOf(song.map()),
        ElementsAre(lossLine(0, "whole audio track 2" + std::string(noRate), song.path(1)),
                    lossLine(1, "whole audio track \u201CDialog \"A\"\u201D" + std::string(noRate),
                             song.path(2))));
}

TEST(Tracks, SoundAndAudioKindsInAnyCaseAreAudio) {
    for (const std::string kind : {"omfi:data:Sound", "OMFI:DATA:STEREOSOUND", "x-Audio-y"}) {
        Song song;
        song.omf.setSegmentKind(kind);
        song.addSlot({.editRate = Ratio{0, 1}, .segment = song.clip(100)});
        song.addSlot(song.clip(100));
        EXPECT_THAT(
            recordsOf(song.map()),
            ElementsAre(lossLine(0, "whole audio track 1" + std::string(noRate), song.path(0))))
            << kind;
    }
}

TEST(Tracks, OtherKindsAreSkippedSilentlyWithOrWithoutARate) {
    Song song;
    song.addSlot(song.clip(100));
    song.omf.setSegmentKind("omfi:data:PictureWithSou");
    song.addSlot({.editRate = Ratio{0}, .segment = song.clip(500)});
    song.addSlot(song.clip(500));
    const Mapped mapped = song.map();
    EXPECT_THAT(recordsOf(mapped), IsEmpty());
    EXPECT_EQ(mapped.timeline.tracks.size(), 1U);
    EXPECT_EQ(lengthOf(mapped), 100);
}

TEST(Tracks, SegmentWithoutADataKindCountsAsAudio) {
    Song song;
    song.omf.setSegmentKind(std::nullopt);
    song.addSlot(song.clip(100));
    EXPECT_EQ(song.map().timeline.tracks.size(), 1U);
}

TEST(Tracks, DataKindWithoutAnIdentifierCountsAsAudio) {
    Song song;
    song.omf.setSegmentKind("omfi:data:Picture");
    song.addSlot(song.clip(100));
    song.omf.dataKind("omfi:data:Picture").without("OMFI:DDEF:DataKindID");
    EXPECT_EQ(song.map().timeline.tracks.size(), 1U);
}

TEST(Tracks, DataKindThatDoesNotExistCountsAsAudio) {
    Song song;
    song.addSlot(song.clip(100).ref("OMFI:CPNT:DataKind", 60'000));
    EXPECT_EQ(song.map().timeline.tracks.size(), 1U);
}

TEST(Tracks, SlotWithoutASegmentIsSkippedSilently) {
    Song song;
    song.addSlot({.editRate = Ratio{unitsPerSecond}});
    song.addSlot(SlotSpec{});
    song.addSlot(song.clip(100));
    const Mapped mapped = song.map();
    EXPECT_THAT(recordsOf(mapped), IsEmpty());
    ASSERT_EQ(mapped.timeline.tracks.size(), 1U);
    EXPECT_EQ(mapped.timeline.tracks[0].index, 2);
}

TEST(Tracks, TrackOfSilenceIsKept) {
    Song song;
    song.addSlot(song.omf.filler(300), "Empty");
    song.addSlot(song.clip(100));
    const Mapped mapped = song.map();
    ASSERT_EQ(mapped.timeline.tracks.size(), 2U);
    EXPECT_EQ(mapped.timeline.tracks[0].name, "Empty");
    EXPECT_EQ(lengthOf(mapped), 300);
}

TEST(Tracks, TrackOfUnresolvedClipsIsLostButItsLengthCounts) {
    Song song;
    const ObjectID one = song.omf.clip({.length = 200});
    const ObjectID two = song.omf.clip({.length = 300});
    song.addSlot(song.omf.sequence({one, two}), "Ghosts");
    song.addSlot(song.clip(100));
    const Mapped mapped = song.map();
    const std::string reason = "audio clip dropped: the Source Clip carries no Source ID";
    EXPECT_THAT(recordsOf(mapped),
                ElementsAre(lossLine(0, reason, song.path(0) + step("SCLP", one)),
                            lossLine(1, reason, song.path(0) + step("SCLP", two)),
                            lossLine(2,
                                     "whole audio track \u201CGhosts\u201D dropped: none of its 2 "
                                     "clip(s) could be resolved",
                                     song.path(0))));
    EXPECT_EQ(mapped.timeline.tracks.size(), 1U);
    EXPECT_EQ(lengthOf(mapped), 500);
}

TEST(Tracks, TrackWithOneResolvedClipIsKept) {
    Song song;
    const ObjectID lost = song.omf.clip({.length = 200});
    song.addSlot(song.omf.sequence({lost, song.clip(100)}));
    const Mapped mapped = song.map();
    EXPECT_THAT(recordsOf(mapped),
                ElementsAre(lossLine(0, "audio clip dropped: the Source Clip carries no Source ID",
                                     song.path(0) + step("SCLP", lost))));
    EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{200, 100, 0}));
}

TEST(Tracks, CompositionWithoutResolvableAudioFails) {
    Song song;
    song.addSlot(song.omf.filler(100));
    song.addSlot(song.omf.clip({.length = 200}));
    EXPECT_EQ(mappingError(song.image()),
              "Malformed OMF/Bento file: composition contains no resolvable audio Source Clips");
}

TEST(Tracks, CompositionWithoutSlotsFails) {
    Song song;
    EXPECT_EQ(mappingError(song.image()),
              "Malformed OMF/Bento file: composition contains no resolvable audio Source Clips");
}

TEST(Tracks, CompositionOfNoLengthHasNone) {
    Song song;
    song.addSlot(song.clip(0));
    const Mapped mapped = song.map();
    EXPECT_EQ(mapped.timeline.compositionLength, std::nullopt);
    EXPECT_EQ(mapped.diagnostics.back(), "Resolved 1 event(s) to 1 audio essence(s)");
}

TEST(Tracks, RecordsOfBothKindsShareOneCount) {
    Song song;
    song.addSlot({.editRate = Ratio{0}, .segment = song.clip(100)});
    const ObjectID scope = song.omf.nestedScope({});
    song.addSlot(song.omf.sequence({scope, song.clip(100)}));
    const std::vector<std::string> records = recordsOf(song.map());
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].substr(0, 10), "omf-loss-0");
    EXPECT_EQ(records[1].substr(0, 17), "omf-unsupported-1");
}

TEST(Diagnostics, TellTheWholeStory) {
    Song song;
    const ObjectID panned = song.omf.pan(song.clip(150), song.omf.constantValue({1, 4}));
    song.addSlot(panned, "Drums");
    song.addSlot(song.omf.filler(250));
    const ObjectID composition = song.composition();
    EXPECT_THAT(
        song.map().diagnostics,
        ElementsAre("OMF2/Bento 2.0, little-endian",
                    "Composition Mob object " + std::to_string(composition) + " selected",
                    "Track Drums: 1 audio event(s), 1.500 s, pan 0.25",
                    "Track 2: 0 audio event(s), 2.500 s",
                    "Resolved 1 event(s) to 1 audio essence(s)", "Composition length: 2.500 s"));
}

TEST(Diagnostics, NameTheByteOrderOfPropertyValues) {
    Song song({.valueOrder = OMFByteOrder::big});
    song.addSlot(song.clip(100));
    EXPECT_EQ(song.map().diagnostics.front(), "OMF2/Bento 2.0, big-endian");
}

}  // namespace
}  // namespace trellant::testing

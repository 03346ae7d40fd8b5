// SPDX-License-Identifier: Apache-2.0
// Whole sessions of OMF 1.x, and what they become.
#include "mapped_older.h"

#include <trellant/omf/document.h>
#include <trellant/omf1/open.h>

#include <gmock/gmock.h>

#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The same session as OneClip, in OMF 2.x.
Bytes sameInOMF2() {
    OmfBuilder omf;
    omf.audioFile({.id = OneClip::voice,
                   .name = "Voice",
                   .kind = MediaKind::aifc,
                   .media = aifcOf(96'000),
                   .length = 96'000});
    const ObjectBuilder clip =
        omf.clip({.length = 24'000, .source = OneClip::voice, .start = 4'800, .name = "Take 1"});
    const ObjectBuilder track = omf.slot({.editRate = Ratio{48'000},
                                          .segment = omf.sequence({clip}),
                                          .track = omf.track({.id = 1, .name = "Dialog"})});
    omf.setSegmentKind("omfi:data:Timecode");
    const ObjectBuilder clock =
        omf.slot({.editRate = Ratio{25}, .segment = omf.timecode(25, false, 90'000)});
    omf.composition({.name = "Scene 12", .slots = {track, clock}});
    return omf.build();
}

/// Without what names objects of a file.
AAFTimeline withoutNumbers(AAFTimeline timeline) {
    for (AAFTrackState& track : timeline.tracks) {
        track.id = "track";
    }
    for (AAFClipEvent& event : timeline.events) {
        event.id = "event";
        event.trackID = "track";
    }
    return timeline;
}

TEST(OlderSession, OneClipIsReadInEveryByteOrder) {
    for (const Omf1Builder::Options& options : allByteOrders()) {
        const MappedOlder mapped = mapAny(OneClip(options).omf.build());
        const AAFTimeline& timeline = mapped.timeline;
        EXPECT_THAT(sentencesOf(mapped), IsEmpty());
        EXPECT_EQ(timeline.compositionName, "Scene 12");
        // 90000 frames at 25 a second are an hour.
        EXPECT_EQ(timeline.clock.timelineZero.description(), "01:00:00:00");
        EXPECT_EQ(timeline.compositionLength, AAFRational(1, 2));
        ASSERT_EQ(timeline.tracks.size(), 1U);
        EXPECT_EQ(timeline.tracks[0].name, "Dialog");
        ASSERT_EQ(timeline.events.size(), 1U);
        EXPECT_EQ(timeline.events[0].clipName, "Take 1");
        EXPECT_EQ(timeline.events[0].duration, AAFRational(1, 2));
        EXPECT_EQ(timeline.events[0].sourceStartSample, 4'800);
        ASSERT_EQ(timeline.essences.size(), 1U);
        EXPECT_EQ(timeline.essences[0].sourceName, "Voice");
        EXPECT_EQ(timeline.essences[0].bitDepth, 16);
        EXPECT_TRUE(timeline.essences[0].embedded);
    }
}

TEST(OlderSession, IsThatOfTheSameSessionInOMF2) {
    EXPECT_EQ(withoutNumbers(mapAny(OneClip().omf.build()).timeline),
              withoutNumbers(mapAny(sameInOMF2()).timeline));
}

TEST(OlderSession, SaysWhatItIs) {
    const TemporaryDirectory folder;
    const std::string older = writeFile(folder.file("1.omf"), OneClip().omf.build());
    const OMFDocument document = openAnyOMF(older);
    ASSERT_TRUE(document.olderModel());
    EXPECT_EQ(document.olderModel()->version(), "1.0");
    EXPECT_EQ(mapAny(OneClip().omf.build()).diagnostics.front(), "OMF 1.0/Bento 1.0, big-endian");
    const std::string newer = writeFile(folder.file("2.omf"), sameInOMF2());
    EXPECT_FALSE(openAnyOMF(newer).olderModel());
}

TEST(OlderSession, AVersionThatCannotBeReadIsNone) {
    OneClip session;
    session.omf.head().bytes("OMFI:Version", hex("01"));
    EXPECT_EQ(mapAny(session.omf.build()).diagnostics.front(), "OMF 1.x/Bento 1.0, big-endian");
}

TEST(OlderSession, ObjectsKeepTheirNumbers) {
    const OneClip session;
    const AAFTimeline timeline = mapAny(session.omf.build()).timeline;
    EXPECT_EQ(timeline.tracks.at(0).id, "omf-track-" + std::to_string(session.track));
    EXPECT_EQ(timeline.events.at(0).id, "omf-event-" + std::to_string(session.clip) + "-0");
}

TEST(OlderSession, AMasterClipLiesBetweenClipAndSource) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    const MobID master{4, 5, 6};
    omf.audioFile({.id = voice, .name = "Voice", .media = aifcOf(9'600), .length = 9'600});
    omf.mob(
        {.id = master,
         .name = "Voice",
         .tracks = {omf.track(1, omf.clip({.length = 9'600, .source = voice, .position = 100}))},
         .usage = Omf1Builder::masterUsage});
    const ObjectBuilder clip = omf.clip({.length = 480, .source = master, .position = 20});
    omf.mob({.name = "Song", .tracks = {omf.track(1, omf.sequence({clip}))}});
    const AAFTimeline timeline = mapAny(omf.build()).timeline;
    EXPECT_EQ(timeline.compositionName, "Song");
    ASSERT_EQ(timeline.events.size(), 1U);
    // 20 into the master clip, which begins 100 into the source.
    EXPECT_EQ(timeline.events[0].sourceStartSample, 120);
}

TEST(OlderSession, ASourceIsNoCompositionThoughItsUsageCodeIsThat) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    const ObjectID source =
        omf.audioFile({.id = voice, .name = "Voice", .media = aifcOf(960), .length = 960});
    const ObjectBuilder clip = omf.clip({.length = 480, .source = voice});
    const ObjectID song = omf.mob({.name = "Song", .tracks = {omf.track(1, clip)}});
    // An index that lists both.
    const ByteWriter listed = ByteWriter(OMFByteOrder::big).u16(2);
    Bytes index = listed.written();
    for (const auto& [id, object] :
         {std::pair(voice, source), std::pair(MobID{0xC0, 0, 1}, song)}) {
        index =
            joined({index, ByteWriter(OMFByteOrder::big).u32(id.a).u32(id.b).u32(id.c).written(),
                    ByteWriter(OMFByteOrder::little).u32(object).u32(0).written()});
    }
    omf.head().bytes("OMFI:CompositionMobs", index);
    EXPECT_EQ(mapAny(omf.build()).timeline.compositionName, "Song");
}

TEST(OlderSession, LabelsOfSeveralKindsMayBearOneNumber) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    omf.media("AIFC", voice, aifcOf(960));
    omf.setKind(Omf1Builder::pictureKind);
    const ObjectID picture = omf.track(1, omf.clip({.length = 7, .track = 0, .position = 5}));
    omf.setKind(Omf1Builder::soundKind);
    const ObjectID sound = omf.track(1, omf.clip({.length = 960, .track = 0}));
    omf.mob({.id = voice,
             .name = "Voice",
             .tracks = {picture, sound},
             .media = omf.descriptor("AIFD")});
    const MobID master{4, 5, 6};
    omf.setKind(Omf1Builder::pictureKind);
    const ObjectID seen = omf.track(1, omf.clip({.length = 7, .source = voice, .position = 500}));
    omf.setKind(Omf1Builder::soundKind);
    const ObjectID heard = omf.track(1, omf.clip({.length = 7, .source = voice, .position = 30}));
    omf.mob({.id = master, .tracks = {seen, heard}, .usage = Omf1Builder::masterUsage});
    omf.mob(
        {.name = "Song", .tracks = {omf.track(1, omf.clip({.length = 480, .source = master}))}});
    const AAFTimeline timeline = mapAny(omf.build()).timeline;
    ASSERT_EQ(timeline.events.size(), 1U);
    // By way of the sound track, not of the picture of the same number.
    EXPECT_EQ(timeline.events[0].sourceStartSample, 30);
}

TEST(OlderSession, FadesOfClipsAreThose) {
    OneClip session;
    session.omf.at(session.clip)
        .int32("OMFI:SCLP:FadeInLength", 4'800)
        .int32("OMFI:SCLP:FadeInType", 2)
        .int32("OMFI:SCLP:FadeOutLength", 480)
        .int16("OMFI:SCLP:FadeOutType", 1);
    const MappedOlder mapped = mapAny(session.omf.build());
    const AAFClipEvent& event = mapped.timeline.events.at(0);
    ASSERT_TRUE(event.fadeIn);
    EXPECT_EQ(event.fadeIn->duration, AAFRational(1, 10));
    EXPECT_EQ(event.fadeIn->curve, AAFAutomationInterpolation::power());
    ASSERT_TRUE(event.fadeOut);
    EXPECT_EQ(event.fadeOut->duration, AAFRational(1, 100));
    EXPECT_EQ(event.fadeOut->curve, AAFAutomationInterpolation::linear());
    EXPECT_THAT(sentencesOf(mapped), IsEmpty());
}

TEST(OlderSession, FillersPushWhatFollows) {
    Omf1Builder omf;
    const MobID voice{1, 2, 3};
    omf.audioFile({.id = voice, .name = "Voice", .media = aifcOf(960), .length = 960});
    const ObjectBuilder before = omf.filler(24'000);
    const ObjectBuilder first = omf.clip({.length = 480, .source = voice});
    const ObjectBuilder nothing = omf.filler(0);
    const ObjectBuilder second = omf.clip({.length = 480, .source = voice});
    omf.mob({.tracks = {omf.track(1, omf.sequence({before, first, nothing, second}))}});
    const AAFTimeline timeline = mapAny(omf.build()).timeline;
    ASSERT_EQ(timeline.events.size(), 2U);
    EXPECT_EQ(timeline.events[0].timelineStart, AAFRational(1, 2));
    EXPECT_EQ(timeline.events[1].timelineStart, AAFRational(51, 100));
}

TEST(OlderSession, DropFrameIsTheFirstFlag) {
    OneClip session;
    session.omf.at(session.timecode)
        .int16("OMFI:TCCP:FPS", 30)
        .int32("OMFI:TCCP:StartTC", 107'892)
        .int32("OMFI:TCCP:Flags", 1);
    const MappedOlder mapped = mapAny(session.omf.build());
    EXPECT_TRUE(mapped.timeline.clock.timecodeRate.dropFrame);
    // An hour of drop-frame labels has 107892 frames.
    EXPECT_EQ(mapped.timeline.clock.timelineZero.description(), "01:00:00;00");
    EXPECT_THAT(sentencesOf(mapped), IsEmpty());
}

TEST(OlderSession, SeveralCompositionsAreReadByTheFirst) {
    OneClip session;
    const ObjectBuilder clip = session.omf.clip({.length = 480, .source = OneClip::voice});
    session.omf.mob(
        {.id = {0xC0, 0, 2}, .name = "Another", .tracks = {session.omf.track(1, clip)}});
    EXPECT_EQ(mapAny(session.omf.build()).timeline.compositionName, "Scene 12");
}

}  // namespace
}  // namespace trellant::testing

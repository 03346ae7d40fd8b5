// SPDX-License-Identifier: Apache-2.0
// What of OMF 1.x is not known is a loss with kind, place and sentence.
#include "mapped_older.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const MobID voice{1, 2, 3};

/// A track of two clips of 480 with a component between them.
struct Between {
    Between() {
        omf.audioFile({.id = voice, .name = "Voice", .media = aifcOf(9'600), .length = 9'600});
    }

    [[nodiscard]] MappedOlder mapped(ObjectID component) {
        const ObjectBuilder first = omf.clip({.length = 480, .source = voice});
        const ObjectBuilder second = omf.clip({.length = 480, .source = voice});
        sequence = omf.sequence({first, component, second});
        track = omf.track(1, sequence);
        composition = omf.mob({.name = "Song", .tracks = {track}});
        return mapAny(omf.build());
    }
    /// "CMOB[1]/slot[2]/SEQU[3]" and more.
    [[nodiscard]] std::string pathOf(const std::string& more) const {
        return "CMOB[" + std::to_string(composition) + "]/slot[" + std::to_string(track) +
               "]/SEQU[" + std::to_string(sequence) + "]" + more;
    }

    Omf1Builder omf;
    ObjectID sequence = 0;
    ObjectID track = 0;
    ObjectID composition = 0;
};

std::string numbered(const std::string& label, ObjectID object) {
    return label + "[" + std::to_string(object) + "]";
}

/// In units of 1/48000 s.
LossRange rangeOf(std::int64_t start, std::int64_t length) {
    return {AAFRational(start, 48'000), AAFRational(length, 48'000)};
}

TEST(OlderLoss, UnknownComponentsAreSilentAndKeepTheirLength) {
    Between session;
    const ObjectBuilder warp = session.omf.component("WARP", 1'000);
    const MappedOlder mapped = session.mapped(warp);
    EXPECT_THAT(sentencesOf(mapped), ElementsAre("unknown OMF component class WARP"));
    ASSERT_EQ(mapped.places.size(), 1U);
    EXPECT_EQ(mapped.places[0].kind, LossKind::unknownComponent);
    EXPECT_EQ(mapped.places[0].range, rangeOf(480, 1'000));
    ASSERT_TRUE(mapped.places[0].track);
    EXPECT_EQ(mapped.places[0].track->slot, OMFObject{session.track});
    EXPECT_EQ(mapped.timeline.events.at(1).timelineStart, AAFRational(1'480, 48'000));
}

TEST(OlderLoss, GroupsOfTracksAreAsLongAsTheySay) {
    Between session;
    const ObjectBuilder mask = session.omf.component("MASK", 0)
                                   .without("OMFI:CLIP:Length")
                                   .int32("OMFI:TRKG:GroupLength", 700);
    const MappedOlder mapped = session.mapped(mask);
    EXPECT_THAT(sentencesOf(mapped), ElementsAre("unknown OMF component class MASK"));
    EXPECT_EQ(mapped.timeline.events.at(1).timelineStart, AAFRational(1'180, 48'000));
}

TEST(OlderLoss, EndlessGroupsHaveNoLength) {
    Between session;
    const ObjectBuilder mask = session.omf.component("MASK", 0)
                                   .without("OMFI:CLIP:Length")
                                   .int32("OMFI:TRKG:GroupLength", 0x7FFFFFFF);
    const MappedOlder mapped = session.mapped(mask);
    EXPECT_THAT(
        sentencesOf(mapped),
        ElementsAre("the length of a component of class MASK cannot be read: it counts as 0",
                    "unknown OMF component class MASK"));
    EXPECT_EQ(mapped.timeline.events.at(1).timelineStart, AAFRational(480, 48'000));
}

TEST(OlderLoss, ClassesOfOMF2AreNotTakenForThose) {
    for (const std::string classID : {"EFFE", "NEST", "SREF", "SLCT", "ERAT", "ECCP", "CVAL"}) {
        Between session;
        const ObjectBuilder other = session.omf.component(classID, 100);
        EXPECT_THAT(sentencesOf(session.mapped(other)),
                    ElementsAre("unknown OMF component class " + classID + " (OMF 1.x)"));
    }
}

TEST(OlderLoss, TransitionsAreCuts) {
    Between session;
    const ObjectBuilder transition = session.omf.transition(100, 40);
    const MappedOlder mapped = session.mapped(transition);
    ASSERT_EQ(mapped.places.size(), 1U);
    EXPECT_EQ(mapped.places[0].kind, LossKind::transitionAsCut);
    // The first clip ends 60 before its end, where the second begins 40 after its own.
    EXPECT_EQ(mapped.places[0].cut, AAFRational(420, 48'000));
    EXPECT_EQ(mapped.places[0].range, rangeOf(380, 100));
    EXPECT_EQ(mapped.timeline.events.at(1).timelineStart, AAFRational(420, 48'000));
    EXPECT_EQ(mapped.timeline.events.at(1).sourceStartSample, 40);
}

TEST(OlderLoss, ACutPointBeyondTheTransitionIsNone) {
    Between session;
    const ObjectBuilder transition = session.omf.transition(100, 101);
    const MappedOlder mapped = session.mapped(transition);
    EXPECT_THAT(sentencesOf(mapped),
                ::testing::Contains("OMFI:TRAN:CutPoint is missing or cannot be read"));
}

TEST(OlderLoss, ClipsPlayWithoutTheirEffects) {
    for (const std::string property : {"OMFI:CPNT:EffectID", "OMFI:CPNT:Precomputed"}) {
        Between session;
        ObjectBuilder clip = session.omf.clip({.length = 200, .source = voice});
        clip.bytes(property, bytesOf("Reverb"));
        const MappedOlder mapped = session.mapped(clip);
        EXPECT_THAT(sentencesOf(mapped),
                    ElementsAre("an effect on a component of class SCLP is not rendered"));
        EXPECT_THAT(pathsOf(mapped), ElementsAre(session.pathOf("/" + numbered("SCLP", clip))));
        ASSERT_EQ(mapped.places.size(), 1U);
        EXPECT_EQ(mapped.places[0].kind, LossKind::effectNotApplied);
        EXPECT_EQ(mapped.places[0].clip, OMFObject{clip.id()});
        EXPECT_EQ(mapped.places[0].range, rangeOf(480, 200));
        EXPECT_EQ(mapped.timeline.events.size(), 3U);
    }
}

TEST(OlderLoss, AttributesAreNotRead) {
    Between session;
    ObjectBuilder clip = session.omf.clip({.length = 200, .source = voice});
    session.omf.ref(clip, "OMFI:CPNT:Attributes", clip);
    const MappedOlder mapped = session.mapped(clip);
    EXPECT_THAT(sentencesOf(mapped),
                ElementsAre("the attributes of a component of class SCLP are not read"));
    EXPECT_EQ(mapped.places.at(0).kind, LossKind::olderModelUnknown);
}

TEST(OlderLoss, ClipsOfAnotherRateThanTheirSequenceAreSilent) {
    Between session;
    session.omf.setEditRate(Ratio{25});
    const ObjectBuilder clip = session.omf.clip({.length = 5, .source = voice});
    session.omf.setEditRate(Ratio{48'000});
    const MappedOlder mapped = session.mapped(clip);
    EXPECT_THAT(sentencesOf(mapped),
                ElementsAre("a component of class SCLP counts in 25/1 edit units per second, its "
                            "sequence in 48000/1",
                            "unknown OMF component class SCLP (rate)"));
    // Five frames are 9600 samples.
    EXPECT_EQ(mapped.timeline.events.at(1).timelineStart, AAFRational(10'080, 48'000));
}

TEST(OlderLoss, FillersOfAnotherRateAreConverted) {
    Between session;
    session.omf.setEditRate(Ratio{25});
    const ObjectBuilder filler = session.omf.filler(5);
    session.omf.setEditRate(Ratio{48'000});
    const MappedOlder mapped = session.mapped(filler);
    EXPECT_THAT(sentencesOf(mapped), IsEmpty());
    EXPECT_EQ(mapped.timeline.events.at(1).timelineStart, AAFRational(10'080, 48'000));
}

TEST(OlderLoss, FillersThatDoNotConvertExactlyAreRounded) {
    Between session;
    session.omf.setEditRate(Ratio{44'100});
    const ObjectBuilder filler = session.omf.filler(1);
    session.omf.setEditRate(Ratio{48'000});
    const MappedOlder mapped = session.mapped(filler);
    EXPECT_THAT(sentencesOf(mapped),
                ElementsAre("a component of class FILL counts in 44100/1 edit units per second, "
                            "its sequence in 48000/1"));
    // 48000/44100 is nearest to 1.
    EXPECT_EQ(mapped.timeline.events.at(1).timelineStart, AAFRational(481, 48'000));
}

TEST(OlderLoss, UnknownFlagsOfTimecode) {
    OneClip session;
    session.omf.at(session.timecode).int32("OMFI:TCCP:Flags", 6);
    const MappedOlder mapped = mapAny(session.omf.build());
    EXPECT_THAT(sentencesOf(mapped),
                ElementsAre("timecode flags 6 are not known: labels count without drop-frame"));
    ASSERT_EQ(mapped.places.size(), 1U);
    ASSERT_TRUE(mapped.places[0].track);
    EXPECT_EQ(mapped.places[0].track->index, 1);
    EXPECT_FALSE(mapped.timeline.clock.timecodeRate.dropFrame);
}

TEST(OlderLoss, UnknownKindsOfTracks) {
    OneClip session;
    session.omf.setKind(9);
    const ObjectBuilder unknown = session.omf.component("CAPT", 100);
    const ObjectID track = session.omf.track(3, unknown);
    session.omf.refs(session.composition, "OMFI:TRKG:Tracks", {session.track, track});
    const MappedOlder mapped = mapAny(session.omf.build());
    EXPECT_THAT(sentencesOf(mapped), ElementsAre("track kind 9 is not known"));
    EXPECT_EQ(mapped.timeline.tracks.size(), 1U);
    ASSERT_TRUE(mapped.places.at(0).track);
    EXPECT_EQ(mapped.places[0].track->slot, OMFObject{track});
}

TEST(OlderLoss, StartPositionsOfMobsAreNotApplied) {
    OneClip session;
    session.omf.at(session.composition).int32("OMFI:MOBJ:StartPosition", 10);
    session.omf.at(session.source).int32("OMFI:MOBJ:StartPosition", -7);
    const MappedOlder mapped = mapAny(session.omf.build());
    EXPECT_THAT(sentencesOf(mapped), ElementsAre("start position 10 of a mob is not applied",
                                                 "start position -7 of a mob is not applied"));
    EXPECT_THAT(pathsOf(mapped), ElementsAre(numbered("CMOB", session.composition),
                                             numbered("SMOB", session.source)));
    EXPECT_FALSE(mapped.places.at(0).track);
    EXPECT_EQ(mapped.places.at(1).clip, OMFObject{session.clip});
}

TEST(OlderLoss, UnknownUsageCodesMakeNoComposition) {
    OneClip session;
    session.omf.at(session.composition).int32("OMFI:MOBJ:UsageCode", 3);
    EXPECT_EQ(errorOf(session.omf.build()),
              "Malformed OMF/Bento file: no Composition Mob (CMOB) found");
}

TEST(OlderLoss, UnknownUsageCodesOfSourcesAreTold) {
    OneClip session;
    session.omf.at(session.source).int32("OMFI:MOBJ:UsageCode", 5);
    EXPECT_THAT(sentencesOf(mapAny(session.omf.build())),
                ElementsAre("usage code 5 of a mob is not known"));
}

TEST(OlderLoss, ASourceThatManyClipsPlayIsToldOfOnce) {
    Between session;
    session.omf.at(5).int32("OMFI:MOBJ:UsageCode", 5);
    const ObjectBuilder clip = session.omf.clip({.length = 200, .source = voice});
    ASSERT_TRUE(session.omf.container().has(6, "OMFI:MOBJ:UsageCode"));
    session.omf.at(6).int32("OMFI:MOBJ:UsageCode", 5);
    EXPECT_THAT(sentencesOf(session.mapped(clip)),
                ElementsAre("usage code 5 of a mob is not known"));
}

TEST(OlderLoss, OfTracksOfOneKindAndNumberTheFirstIsPlayed) {
    OneClip session;
    const ObjectID second =
        session.omf.track(1, session.omf.clip({.length = 96'000, .track = 0, .position = 77}));
    const ObjectID first = session.omf.track(1, session.omf.clip({.length = 96'000, .track = 0}));
    session.omf.refs(session.source, "OMFI:TRKG:Tracks", {first, second});
    const MappedOlder mapped = mapAny(session.omf.build());
    EXPECT_EQ(sentencesOf(mapped).front(),
              "several tracks of a mob have the kind 2 and the number 1: clips play the first");
    EXPECT_EQ(pathsOf(mapped).front(), numbered("SMOB", session.source));
}

TEST(OlderLoss, ClipsWhoseSourceEndsHere) {
    Between session;
    const ObjectBuilder clip = session.omf.clip({.length = 200});
    EXPECT_THAT(sentencesOf(session.mapped(clip)),
                ElementsAre("audio clip dropped: the Source Clip carries no Source ID"));
}

TEST(OlderLoss, ListsNameWhatIsNotThere) {
    Between session;
    EXPECT_THAT(sentencesOf(session.mapped(9'999)),
                ElementsAre("unknown OMF component class ????"));
}

TEST(OlderLoss, EntriesThatReferToNothing) {
    Between session;
    EXPECT_THAT(sentencesOf(session.mapped(0)),
                ElementsAre("a sequence lists a component that cannot be told"));
}

TEST(OlderLoss, AttributesOfMobsAndTracksAreNotRead) {
    OneClip session;
    session.omf.ref(session.composition, "OMFI:CPNT:Attributes", session.clip);
    session.omf.ref(session.source, "OMFI:CPNT:Attributes", session.clip);
    session.omf.ref(session.track, "OMFI:TRAK:Attributes", session.clip);
    session.omf.ref(session.track, "OMFI:TRAK:FillerProxy", session.clip);
    const MappedOlder mapped = mapAny(session.omf.build());
    EXPECT_THAT(sentencesOf(mapped),
                ::testing::UnorderedElementsAre("the attributes of a mob are not read",
                                                "the attributes of a mob are not read",
                                                "OMFI:TRAK:Attributes of a track is not read",
                                                "OMFI:TRAK:FillerProxy of a track is not read"));
    for (const LossPlace& place : mapped.places) {
        EXPECT_EQ(place.kind, LossKind::olderModelUnknown);
    }
}

}  // namespace
}  // namespace trellant::testing

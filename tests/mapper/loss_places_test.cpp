// SPDX-License-Identifier: Apache-2.0
// Where the losses of tracks, clips and sources lie, and what a place says beside its range.
#include "placed_losses.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr MobID missing{9, 9, 9};

class LossPlaces : public PlacedLossesTest {
  protected:
    /// A mob with one track that holds `segment`, so that a clip's chain goes on there.
    void addMob(MobID id, ObjectID segment) {
        omf_.sourceMob({.id = id,
                        .slots = {omf_.slot({.editRate = Ratio{unitsPerSecond},
                                             .segment = segment,
                                             .track = omf_.track({.id = 1})})}});
    }
};

TEST_F(LossPlaces, AreKeptOnRequestOnly) {
    song_.addSlot(omf_.sequence({song_.clip(100), omf_.segment("ERAT", 20)}));
    const TemporaryDirectory folder;
    const OMFDocument document(writeFile(folder.file("song.omf"), song_.image()));
    Mapper plain(document, {.sourcePath = "/song.omf"});
    const AAFTimeline withoutPlaces = plain.makeTimeline([](double) {});
    EXPECT_THAT(plain.lossPlaces(), IsEmpty());

    Mapper placing(document, {.sourcePath = "/song.omf", .placesLosses = true});
    EXPECT_EQ(placing.makeTimeline([](double) {}), withoutPlaces);
    EXPECT_EQ(placing.lossPlaces().size(), 1U);
    EXPECT_EQ(placing.diagnostics(), plain.diagnostics());
}

TEST_F(LossPlaces, CompositionWithoutLossesHasNone) {
    place({song_.clip(100)});
    EXPECT_THAT(losses_, IsEmpty());
}

TEST_F(LossPlaces, TrackThatCannotBeMeasuredHasNoRange) {
    const ObjectID slot = song_.addSlot({.editRate = Ratio{0},
                                         .segment = song_.clip(100),
                                         .track = omf_.track({.name = "Dialog"})});
    song_.addSlot(song_.clip(100), "Music");
    map();
    EXPECT_THAT(losses_,
                ElementsAre(LossPlace{.kind = LossKind::trackWithoutEditRate,
                                      .track = LossTrack{.slot = static_cast<OMFObject>(slot),
                                                         .index = 0,
                                                         .id = "omf-track-" + std::to_string(slot),
                                                         .name = "Dialog"}}));
}

TEST_F(LossPlaces, DroppedClipSaysTrackRangeAndName) {
    const ObjectID clip = omf_.clip({.length = 50, .source = missing, .name = "Gone"});
    song_.addSlot({.segment = omf_.timecode(25, false, 0)});
    const ObjectID slot =
        song_.addSlot(omf_.sequence({song_.clip(100), clip, song_.clip(10)}), "Dialog");
    map();
    EXPECT_THAT(losses_,
                ElementsAre(LossPlace{.kind = LossKind::clipSourceMissing,
                                      .track = LossTrack{.slot = static_cast<OMFObject>(slot),
                                                         .index = 1,
                                                         .id = "omf-track-" + std::to_string(slot),
                                                         .name = "Dialog"},
                                      .range = LossRange{AAFRational(1), AAFRational(1, 2)},
                                      .clip = static_cast<OMFObject>(clip),
                                      .clipName = std::string("Gone")}));
}

TEST_F(LossPlaces, ClipWithoutAnOwnNameIsCalledByItsAttribute) {
    const ObjectID name = omf_.attribute("Name", "Take 3");
    const ObjectID clip = omf_.clip({.length = 50, .source = missing})
                              .ref("OMFI:CPNT:Attributes", omf_.attributeList({name}));
    const ObjectID nameless = omf_.clip({.length = 50, .source = missing});
    place({song_.clip(10), clip, nameless, clip});
    ASSERT_EQ(losses_.size(), 3U);
    EXPECT_EQ(losses_[0].clipName, Boxed<std::string>("Take 3"));
    EXPECT_EQ(losses_[1].clipName, Boxed<std::string>());
    EXPECT_EQ(losses_[2].clipName, Boxed<std::string>("Take 3"));
}

TEST_F(LossPlaces, ClipPlacedTwiceIsLostTwice) {
    const ObjectID clip = omf_.clip({.length = 50, .source = missing});
    place({clip, song_.clip(10), clip});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::clipSourceMissing, 0, 50, clip},
                                      LossAt{LossKind::clipSourceMissing, 60, 50, clip}));
}

TEST_F(LossPlaces, ReasonOfADroppedClipIsItsKind) {
    const ObjectID sourceless = omf_.clip({.length = 20, .source = {}});
    const ObjectID trackless = omf_.clip({.length = 30, .source = Song::kick, .track = 7});
    place({song_.clip(10), sourceless, trackless});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::clipWithoutSource, 10, 20, sourceless},
                                      LossAt{LossKind::clipSourceTrackMissing, 30, 30, trackless}));
}

TEST_F(LossPlaces, ReasonDoesNotStayForTheNextClip) {
    const MobID tape{5, 0, 0};
    addMob(tape, omf_.filler(100));
    const ObjectID sourceless = omf_.clip({.length = 20, .source = {}});
    const ObjectID dead = omf_.clip({.length = 30, .source = tape});
    place({song_.clip(10), sourceless, dead});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::clipWithoutSource, 10, 20, sourceless},
                                      LossAt{LossKind::sourceDeadEnd, 30, 30, dead},
                                      LossAt{LossKind::clipUnresolved, 30, 30, dead}));
}

TEST_F(LossPlaces, SourceCycleBelongsToTheClipOfTheComposition) {
    const MobID loop{5, 0, 0};
    addMob(loop, omf_.clip({.length = 70, .source = loop}));
    const ObjectID clip = omf_.clip({.length = 40, .source = loop});
    place({song_.clip(10), clip});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::sourceCycle, 10, 40, clip},
                                      LossAt{LossKind::clipUnresolved, 10, 40, clip}));
}

TEST_F(LossPlaces, TrackWithoutAnyAudioIsLostAsAWhole) {
    const ObjectID clip = omf_.clip({.length = 30, .source = missing});
    const ObjectID slot = song_.addSlot(omf_.sequence({omf_.filler(20), clip, omf_.filler(5)}));
    song_.addSlot(song_.clip(100));
    map();
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::clipSourceMissing, 20, 30, clip},
                                      LossAt{LossKind::trackWithoutAudio, 0, 55}));
    EXPECT_EQ(number(losses_.at(1).track->slot), slot);
    EXPECT_EQ(losses_.at(1).clipName, Boxed<std::string>());
}

TEST_F(LossPlaces, AudioThatIsNotExtractedBelongsToTheFirstClipOfIt) {
    const ObjectID first = song_.clip(40);
    song_.addSlot(omf_.sequence({omf_.filler(10), first, song_.clip(30)}));
    for (ObjectID id = 1; id < first; ++id) {
        omf_.at(id).without("OMFI:WAVE:AudioData");
    }
    const TemporaryDirectory work;
    map({.workDirectory = work.path().string(), .extract = true});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::essenceNotExtracted, 10, 40, first}));
}

TEST_F(LossPlaces, PansThatDifferConcernTheWholeTrack) {
    const ObjectID left = omf_.constantValue({1, 5});
    const ObjectID right = omf_.constantValue({4, 5});
    place({omf_.filler(10), omf_.pan(song_.clip(20), left), omf_.pan(song_.clip(30), right)});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::panDiffers, 0, 60}));
}

TEST_F(LossPlaces, EachTrackHasItsOwn) {
    const ObjectID shared = omf_.sequence({song_.clip(10), omf_.segment("ERAT", 20)});
    const ObjectID first = song_.addSlot(shared, "One");
    const ObjectID second = song_.addSlot(shared);
    map();
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::operationNotRendered, 10, 20},
                                      LossAt{LossKind::operationNotRendered, 10, 20}));
    EXPECT_EQ(number(losses_.at(0).track->slot), first);
    EXPECT_EQ(losses_.at(0).track->name, "One");
    EXPECT_EQ(number(losses_.at(1).track->slot), second);
    EXPECT_EQ(losses_.at(1).track->index, 1);
    EXPECT_EQ(losses_.at(1).track->name, std::nullopt);
}

/// The reads of a mapping with `count` clips that are lost, beside one that is not.
std::uint64_t readsOfLosses(std::uint32_t count) {
    Song song;
    std::vector<ObjectID> clips{song.clip(10)};
    for (std::uint32_t index = 0; index < count; ++index) {
        clips.push_back(song.omf.clip({.length = 10, .source = missing, .name = "Gone"}));
    }
    song.addSlot(song.omf.sequence(clips));
    const TemporaryDirectory folder;
    const OMFDocument document(writeFile(folder.file("song.omf"), song.image()));
    Mapper mapper(document, {.placesLosses = true});
    EXPECT_EQ(mapper.makeTimeline([](double) {}).unsupportedFeatures.size(), count);
    EXPECT_EQ(mapper.lossPlaces().size(), count);
    return document.bento().file().readCalls();
}

TEST(LossReasons, TenTimesTheLossesCostTenTimesTheReads) {
    const auto readsOfFew = readsOfLosses(2'000);
    EXPECT_GT(readsOfFew, 0U);
    EXPECT_LE(readsOfLosses(20'000), 11 * readsOfFew);
}

}  // namespace
}  // namespace trellant::testing

// SPDX-License-Identifier: Apache-2.0
// Where the losses within a track lie: segments, transitions, fades and effects.
#include "placed_losses.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;

class LossPlacesOfSegments : public PlacedLossesTest {
  protected:
    ObjectID rising(std::optional<std::int16_t> interpolation = 2) {
        return omf_.varyingValue({{{0, 1}, {0, 1}}, {{1, 1}, {1, 1}}}, interpolation);
    }
    /// An effect around one clip of 40 after 20 of something else.
    void placeEffect(const std::string& id, ObjectID input, std::int32_t argument, ObjectID value) {
        place({song_.clip(20), omf_.effect({.effectID = "omfi:effect:" + id,
                                            .length = 99,
                                            .slots = {{-1, input}, {argument, value}}})});
    }
};

TEST_F(LossPlacesOfSegments, SegmentThatIsSilentIsItsOwnRange) {
    const std::vector<std::pair<ObjectID, LossKind>> silent{
        {omf_.segment("ERAT", 30), LossKind::operationNotRendered},
        {omf_.segment("MGRP", 30), LossKind::operationNotRendered},
        {omf_.segment("ABCD", 30), LossKind::unknownComponent},
        {omf_.segment("SLCT", 30), LossKind::selectorWithoutSelection},
        {omf_.segment("NEST", 30), LossKind::emptyNestedScope},
        {omf_.scopeReference(30, 3, 0), LossKind::scopeReferenceBroken},
        {omf_.scopeReference(30, 0, 9), LossKind::scopeReferenceBroken},
        {omf_.effect({.length = 30}), LossKind::effectUnnamed},
        {omf_.effect({.effectID = "example:Reverb", .length = 30}), LossKind::effectNotRendered},
        {omf_.effect({.effectID = "omfi:effect:MonoAudioPan", .length = 30}),
         LossKind::effectWithoutInput}};
    std::vector<ObjectID> components;
    std::vector<LossAt> expected;
    for (const auto& [segment, kind] : silent) {
        components.insert(components.end(), {song_.clip(20), segment});
        const auto start = static_cast<std::int64_t>(expected.size()) * 50 + 20;
        expected.push_back({kind, start, 30});
    }
    place(components);
    EXPECT_EQ(placed(), expected);
}

TEST_F(LossPlacesOfSegments, NestingTooDeepIsTheSegmentBeyondTheLimit) {
    // The step of the sequence counts two levels, so that 46 scopes bring the clip to level 48.
    ObjectID segment = song_.clip(30);
    for (int level = 0; level < 46; ++level) {
        segment = omf_.nestedScope({segment});
    }
    place({song_.clip(10), segment});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::nestingTooDeep, 10, 30}));
}

TEST_F(LossPlacesOfSegments, TransitionIsAtItsCutWithinItsExtent) {
    // The first clip ends 12 early, at 88; the transition began 8 before.
    place({song_.clip(100), omf_.transition({.length = 20, .cutPoint = 8}), song_.clip(50)});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::transitionAsCut, 80, 20, 0, 88}));
}

TEST_F(LossPlacesOfSegments, TransitionAtTheStartMayBeginBeforeTheTimeline) {
    place({omf_.transition({.length = 20, .cutPoint = 8}), song_.clip(50)});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::transitionAsCut, -8, 20, 0, 0}));
}

TEST_F(LossPlacesOfSegments, TransitionAtTheEndIsAtTheEndOfTheLastClip) {
    place({song_.clip(100), omf_.transition({.length = 20, .cutPoint = 8})});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::transitionAsCut, 80, 20, 0, 88}));
}

TEST_F(LossPlacesOfSegments, CutBeyondTheTransitionIsWithinTheRange) {
    // Nothing is cut from the first clip, 30 from the second.
    place({song_.clip(100), omf_.transition({.length = 20, .cutPoint = 30}), song_.clip(50)});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::transitionAsCut, 70, 30, 0, 100}));
}

TEST_F(LossPlacesOfSegments, CutAfterANestedSegmentIsAtItsEnd) {
    // The nested clips keep their 60: the cut is where they end.
    const ObjectID nested = omf_.sequence({song_.clip(25), song_.clip(35)});
    place({song_.clip(10), nested, omf_.transition({.length = 20, .cutPoint = 8}), song_.clip(50)});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::transitionAsCut, 62, 20, 0, 70},
                                      LossAt{LossKind::nestedTrimNotApplied, 10, 60}));
}

TEST_F(LossPlacesOfSegments, SharedSubtreeIsLostWhereItOccurs) {
    // It lasts 88 and 42: the second cut is at 130 + 88.
    const ObjectID shared = omf_.sequence(
        {song_.clip(100), omf_.transition({.length = 20, .cutPoint = 8}), song_.clip(50)});
    place({shared, shared});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::transitionAsCut, 80, 20, 0, 88},
                                      LossAt{LossKind::transitionAsCut, 210, 20, 0, 218}));
}

TEST_F(LossPlacesOfSegments, FadeBesideADissolveIsTheClips) {
    const ObjectID faded = song_.clip(50, FadeSpec{5, 1}, FadeSpec{5, 1});
    place({song_.clip(100), omf_.dissolve(20), faded, omf_.dissolve(10), song_.clip(30)});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::fadeConflict, 80, 50, faded},
                                      LossAt{LossKind::fadeConflict, 80, 50, faded}));
}

TEST_F(LossPlacesOfSegments, NestedDissolveIsItsOverlap) {
    // Silence from 80 to 130 with nothing to fade.
    const ObjectID silent = omf_.selector(omf_.filler(50));
    place({song_.clip(100), omf_.dissolve(20), silent, omf_.dissolve(10), song_.clip(30)});
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::nestedDissolve, 80, 20},
                                      LossAt{LossKind::nestedDissolve, 120, 10}));
}

TEST_F(LossPlacesOfSegments, UnknownFadeIsTheClipsPlacement) {
    const ObjectID trimmed = song_.clip(40, FadeSpec{5, 9}, std::nullopt);
    const ObjectID alone = song_.clip(30, std::nullopt, FadeSpec{5, 9});
    place({song_.clip(10), trimmed, omf_.transition({.length = 6, .cutPoint = 2}), song_.clip(20),
           omf_.selector(alone)});
    // 4 of the first are cut off; the clip after it loses 2.
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::transitionAsCut, 44, 6, 0, 46},
                                      LossAt{LossKind::unknownFadeCurve, 10, 36, trimmed},
                                      LossAt{LossKind::unknownFadeCurve, 64, 30, alone}));
}

TEST_F(LossPlacesOfSegments, EffectIsAsLongAsWhatItPlays) {
    placeEffect("MonoAudioGain", song_.clip(40), 1, omf_.filler(0));
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::effectControlUnreadable, 20, 40}));
}

TEST_F(LossPlacesOfSegments, EffectOfInputsWithoutLengthIsAsLongAsItSays) {
    placeEffect("MonoAudioGain", song_.clip(0), 1, omf_.filler(0));
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::effectControlUnreadable, 20, 99}));
}

TEST_F(LossPlacesOfSegments, ControlWithoutAClassIsTheEffects) {
    placeEffect("MonoAudioGain", song_.clip(40), 1, omf_.classless());
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::effectControlUnreadable, 20, 40}));
}

TEST_F(LossPlacesOfSegments, ConstantWithoutAValueIsTheEffects) {
    placeEffect("MonoAudioPan", song_.clip(40), 1, omf_.segment("CVAL", 0));
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::effectControlUnreadable, 20, 40}));
}

TEST_F(LossPlacesOfSegments, VaryingValueWithoutPointsIsTheEffects) {
    placeEffect("MonoAudioGain", song_.clip(40), 1, omf_.varyingValue({}));
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::effectControlUnreadable, 20, 40}));
}

TEST_F(LossPlacesOfSegments, AutomationWithoutPointsIsTheEffects) {
    placeEffect("MonoAudioGain", song_.clip(40), 2, omf_.varyingValue({}));
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::effectControlUnreadable, 20, 40}));
}

TEST_F(LossPlacesOfSegments, PanThatMovesIsTheEffects) {
    placeEffect("MonoAudioPan", song_.clip(40), 1, rising());
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::panAutomation, 20, 40}));
}

TEST_F(LossPlacesOfSegments, UnknownAutomationCurveIsTheEffects) {
    placeEffect("MonoAudioGain", song_.clip(40), 1, rising(7));
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::unknownAutomationCurve, 20, 40}));
}

TEST_F(LossPlacesOfSegments, NestedGainAutomationIsEachClips) {
    const ObjectID first = song_.clip(15);
    const ObjectID second = song_.clip(25);
    const ObjectID inner = omf_.gain(omf_.sequence({first, second}), rising());
    placeEffect("MonoAudioGain", inner, 1, rising());
    EXPECT_THAT(placed(), ElementsAre(LossAt{LossKind::nestedGainAutomation, 20, 15, first},
                                      LossAt{LossKind::nestedGainAutomation, 35, 25, second}));
}

}  // namespace
}  // namespace trellant::testing

// SPDX-License-Identifier: Apache-2.0
// What makes a transition a plain linear audio dissolve; any other is a cut.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int32_t levelArgument = -3;
constexpr std::string_view dissolveID = "omfi:effect:SimpleMonoAudioDissolve";

/// A transition of length 20 and cut point 8 between clips of 100 and 50.
class DissolveRecognition : public ::testing::Test {
  protected:
    void expectDissolve(std::optional<ObjectID> effect) {
        const Mapped mapped = mappedWith(effect);
        EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 100, 0}, Placed{80, 50, 0}));
        EXPECT_THAT(recordsOf(mapped), IsEmpty());
    }
    void expectCut(std::optional<ObjectID> effect) {
        const Mapped mapped = mappedWith(effect);
        EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 88, 0}, Placed{88, 42, 8}));
        EXPECT_EQ(recordsOf(mapped).size(), 1U);
        EXPECT_EQ(described(mapped.timeline.events.at(0).fadeOut), "none");
        EXPECT_EQ(described(mapped.timeline.events.at(1).fadeIn), "none");
    }
    /// The dissolve with a level.
    ObjectID withLevel(ObjectID level) {
        return omf_.effect(
            {.effectID = std::string(dissolveID), .length = 20, .slots = {{levelArgument, level}}});
    }
    ObjectID withPoints(const std::vector<PointSpec>& points) {
        return withLevel(omf_.varyingValue(points));
    }

    Song song_;
    OmfBuilder& omf_ = song_.omf;

  private:
    Mapped mappedWith(std::optional<ObjectID> effect) {
        song_.addSlot(omf_.sequence(
            {song_.clip(100), omf_.transition({.length = 20, .cutPoint = 8, .effect = effect}),
             song_.clip(50)}));
        return song_.map();
    }
};

TEST_F(DissolveRecognition, WithoutALevelIsADissolve) {
    expectDissolve(omf_.effect({.effectID = std::string(dissolveID)}));
}

TEST_F(DissolveRecognition, EffectIdentifierIgnoresCase) {
    expectDissolve(omf_.effect({.effectID = "OMFI:EFFECT:simplemonoaudiodissolve"}));
}

TEST_F(DissolveRecognition, TransitionsOwnLengthCountsNotTheEffects) {
    expectDissolve(omf_.effect({.effectID = std::string(dissolveID), .length = 77}));
}

TEST_F(DissolveRecognition, WithoutAnEffectIsACut) {
    expectCut(std::nullopt);
}

TEST_F(DissolveRecognition, AnotherEffectIsACut) {
    expectCut(omf_.effect({.effectID = "omfi:effect:SimpleMonoAudioDissolve2"}));
}

TEST_F(DissolveRecognition, EffectWithoutAnIdentifierIsACut) {
    expectCut(omf_.effect({}));
}

TEST_F(DissolveRecognition, EffectOfAnotherClassIsACut) {
    expectCut(
        omf_.segment("EFFX", 20).ref("OMFI:EFFE:EffectKind", omf_.effectDefinition(dissolveID)));
}

TEST_F(DissolveRecognition, EffectThatDoesNotExistIsACut) {
    expectCut(60'000);
}

TEST_F(DissolveRecognition, LinearLevelIsADissolve) {
    expectDissolve(withPoints({{{0}, {0}}, {{1}, {1}}}));
}

TEST_F(DissolveRecognition, PointsAreComparedAsNumbers) {
    expectDissolve(
        withPoints({{{0, 7}, {0, 3}}, {{1, 2}, {2, 4}}, {{-3, -4}, {3, 4}}, {{5, 5}, {1}}}));
}

TEST_F(DissolveRecognition, LevelWithoutAnInterpolationIsLinear) {
    expectDissolve(withLevel(omf_.varyingValue({{{0}, {0}}, {{1}, {1}}}, std::nullopt)));
}

TEST_F(DissolveRecognition, LevelOfAnotherInterpolationIsACut) {
    for (const std::int16_t interpolation : std::initializer_list<std::int16_t>{0, 1, 3}) {
        Song song;
        const ObjectID level = song.omf.varyingValue({{{0}, {0}}, {{1}, {1}}}, interpolation);
        const ObjectID effect = song.omf.effect(
            {.effectID = std::string(dissolveID), .slots = {{levelArgument, level}}});
        song.addSlot(song.omf.sequence(
            {song.clip(100), song.omf.transition({.length = 20, .cutPoint = 8, .effect = effect}),
             song.clip(50)}));
        const Mapped mapped = song.map();
        EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 88, 0}, Placed{88, 42, 8}));
        EXPECT_EQ(recordsOf(mapped).size(), 1U) << interpolation;
    }
}

TEST_F(DissolveRecognition, OnePointIsACut) {
    expectCut(withPoints({{{0}, {0}}}));
}

TEST_F(DissolveRecognition, NoPointsAreACut) {
    expectCut(withPoints({}));
}

TEST_F(DissolveRecognition, PointOffTheDiagonalIsACut) {
    expectCut(withPoints({{{0}, {0}}, {{1, 2}, {3, 4}}, {{1}, {1}}}));
}

TEST_F(DissolveRecognition, FirstPointNotAtZeroIsACut) {
    expectCut(withPoints({{{1, 4}, {1, 4}}, {{1}, {1}}}));
}

TEST_F(DissolveRecognition, LastPointNotAtOneIsACut) {
    expectCut(withPoints({{{0}, {0}}, {{1, 2}, {1, 2}}}));
}

TEST_F(DissolveRecognition, FallingLevelIsACut) {
    expectCut(withPoints({{{0}, {1}}, {{1}, {0}}}));
}

TEST_F(DissolveRecognition, UnreadablePointIsACut) {
    expectCut(withPoints({{{0}, {0}}, {{1, 0}, {1, 0}}, {{1}, {1}}}));
}

TEST_F(DissolveRecognition, ConstantLevelIsACut) {
    expectCut(withLevel(omf_.constantValue({1, 2})));
}

TEST_F(DissolveRecognition, LevelSlotWithoutAValueIsNoLevel) {
    expectDissolve(omf_.effect(
        {.effectID = std::string(dissolveID), .slots = {{levelArgument, std::nullopt}}}));
}

TEST_F(DissolveRecognition, FirstReadableLevelDecides) {
    const ObjectID linear = omf_.varyingValue({{{0}, {0}}, {{1}, {1}}});
    const ObjectID constant = omf_.constantValue({1, 2});
    expectDissolve(omf_.effect(
        {.effectID = std::string(dissolveID),
         .slots = {
             {levelArgument, std::nullopt}, {levelArgument, linear}, {levelArgument, constant}}}));
}

TEST_F(DissolveRecognition, OtherArgumentsDoNotMatter) {
    expectDissolve(omf_.effect(
        {.effectID = std::string(dissolveID),
         .slots = {
             {3, omf_.constantValue({1, 2})}, {-1, omf_.filler(20)}, {-2, omf_.filler(20)}}}));
}

TEST_F(DissolveRecognition, SharedDissolveIsOneForEveryPlace) {
    const ObjectID dissolve = omf_.dissolve(20);
    song_.addSlot(
        omf_.sequence({song_.clip(100), dissolve, song_.clip(50), dissolve, song_.clip(60)}));
    EXPECT_THAT(placedIn(song_.map()),
                ElementsAre(Placed{0, 100, 0}, Placed{80, 50, 0}, Placed{110, 60, 0}));
}

}  // namespace
}  // namespace trellant::testing

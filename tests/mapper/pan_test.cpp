// SPDX-License-Identifier: Apache-2.0
// Pan effects: one position per clip, the innermost wins.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int32_t input = -1;
constexpr std::int32_t control = 1;
constexpr std::int32_t automation = 2;
constexpr std::string_view variableText = "variable MonoAudioPan automation is not reproducible";

class PanEffect : public ::testing::Test {
  protected:
    /// The pan of a track that is this effect alone.
    std::optional<double> panOf(ObjectID effect) {
        song_.addSlot(effect);
        mapped_ = song_.map();
        path_ = song_.path() + step("EFFE", effect);
        return mapped_.timeline.tracks.at(0).fixedPan;
    }
    ObjectID panBy(ObjectID value) { return omf_.pan(song_.clip(100), value); }
    void expectRecord(std::string_view text) {
        EXPECT_THAT(recordsOf(mapped_), ElementsAre(unsupportedLine(0, text, path_)));
        EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}));
    }

    Song song_;
    OmfBuilder& omf_ = song_.omf;
    Mapped mapped_;
    std::string path_;
};

TEST_F(PanEffect, ConstantIsTakenAsStored) {
    EXPECT_EQ(panOf(panBy(omf_.constantValue({3, 4}))), 0.75);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(PanEffect, EffectIdentifierIgnoresCase) {
    EXPECT_EQ(panOf(omf_.effect(
                  {.effectID = "omfi:effect:monoaudiopan",
                   .length = 100,
                   .slots = {{input, song_.clip(100)}, {control, omf_.constantValue({3, 4})}}})),
              0.75);
}

TEST_F(PanEffect, InnermostPanWins) {
    const ObjectID inner = omf_.pan(song_.clip(100), omf_.constantValue({4, 5}));
    EXPECT_EQ(panOf(omf_.pan(inner, omf_.constantValue({1, 5}))), 0.8);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(PanEffect, OuterPanReachesClipsWithoutOne) {
    const ObjectID inner = omf_.pan(song_.clip(100), omf_.constantValue({1, 2}));
    const ObjectID both = omf_.sequence({inner, song_.clip(100)});
    EXPECT_EQ(panOf(omf_.pan(both, omf_.constantValue({1, 2}))), 0.5);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(PanEffect, LeavesTheGainAlone) {
    (void)panOf(panBy(omf_.constantValue({3, 4})));
    EXPECT_EQ(mapped_.timeline.events.at(0).fixedClipGain, 1.0);
}

TEST_F(PanEffect, WithoutAControlChangesNothing) {
    EXPECT_EQ(panOf(omf_.effect({.effectID = "omfi:effect:MonoAudioPan",
                                 .length = 100,
                                 .slots = {{input, song_.clip(100)}}})),
              std::nullopt);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(PanEffect, SecondArgumentMeansNothing) {
    const ObjectID varying = omf_.varyingValue({{{0}, {0}}, {{1}, {1}}});
    const ObjectID effect = omf_.effect({.effectID = "omfi:effect:MonoAudioPan",
                                         .length = 100,
                                         .slots = {{input, song_.clip(100)},
                                                   {automation, varying},
                                                   {control, omf_.constantValue({1, 2})}}});
    EXPECT_EQ(panOf(effect), 0.5);
    EXPECT_EQ(described(mapped_.timeline.events.at(0).clipGainAutomation), "none");
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(PanEffect, VaryingValueThatStaysIsTheFirstPointsPan) {
    // A half and 2.3e-10; a half and 9e-7.
    EXPECT_EQ(panOf(panBy(omf_.varyingValue({{{0}, {1, 2}},
                                             {{1, 2}, {1'073'741'824, 2'147'483'647}},
                                             {{1}, {5'000'009, 10'000'000}}}))),
              0.5);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(PanEffect, VaryingValueThatMovesIsNotReproducible) {
    EXPECT_EQ(panOf(panBy(omf_.varyingValue({{{0}, {1, 2}}, {{1}, {5'000'020, 10'000'000}}}))),
              std::nullopt);
    expectRecord(variableText);
}

TEST_F(PanEffect, VaryingValueWithoutPointsIsNotReproducible) {
    EXPECT_EQ(panOf(panBy(omf_.varyingValue({}))), std::nullopt);
    expectRecord(variableText);
}

TEST_F(PanEffect, UnreadableConstantIsReported) {
    EXPECT_EQ(panOf(panBy(omf_.constantValue({1, 0}))), std::nullopt);
    expectRecord("omfi:effect:MonoAudioPan constant is not a readable rational");
}

TEST_F(PanEffect, ControlWithoutAClassIsReported) {
    EXPECT_EQ(panOf(panBy(omf_.classless().rational("OMFI:CVAL:Value", {1, 2}))), std::nullopt);
    expectRecord("omfi:effect:MonoAudioPan control slot has no object class");
}

TEST_F(PanEffect, ControlOfAnotherClassIsReported) {
    EXPECT_EQ(panOf(panBy(omf_.sequence({}))), std::nullopt);
    expectRecord("omfi:effect:MonoAudioPan control uses unsupported SEQU");
}

TEST_F(PanEffect, RecordsNameTheEffectAsTheFileWritesIt) {
    const ObjectID effect =
        omf_.effect({.effectID = "omfi:effect:MONOAudioPan",
                     .length = 100,
                     .slots = {{input, song_.clip(100)}, {control, omf_.filler(10)}}});
    (void)panOf(effect);
    expectRecord("omfi:effect:MONOAudioPan control uses unsupported FILL");
}

TEST_F(PanEffect, UnknownInterpolationIsReportedButThePanStays) {
    const ObjectID level = omf_.varyingValue({{{0}, {1, 2}}}, 7);
    EXPECT_EQ(panOf(panBy(level)), 0.5);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "OMF interpolation 7",
                                            "VVAL[" + std::to_string(level) + "]")));
}

}  // namespace
}  // namespace trellant::testing

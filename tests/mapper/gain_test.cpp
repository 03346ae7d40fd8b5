// SPDX-License-Identifier: Apache-2.0
// Gain effects: constants multiply, varying values become automation.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::DoubleEq;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int32_t input = -1;
constexpr std::int32_t control = 1;
constexpr std::int32_t automation = 2;
constexpr std::string_view nestedText = "nested gain automation cannot be losslessly collapsed";

class GainEffect : public ::testing::Test {
  protected:
    /// A gain of `segment`, a clip of 100 when absent, with these further slots.
    ObjectID gainOf(std::vector<EffectSlotSpec> slots, std::optional<ObjectID> segment = {}) {
        slots.push_back({input, segment ? *segment : song_.clip(100).id()});
        return omf_.effect(
            {.effectID = "omfi:effect:MonoAudioGain", .length = 100, .slots = slots});
    }
    /// The first event of a song that is this effect.
    const AAFClipEvent& event(ObjectID effect) {
        song_.addSlot(effect);
        mapped_ = song_.map();
        path_ = song_.path() + step("EFFE", effect);
        return mapped_.timeline.events.at(0);
    }
    void expectRecord(std::string_view text) {
        EXPECT_THAT(recordsOf(mapped_), ElementsAre(unsupportedLine(0, text, path_)));
    }
    ObjectID ramp() { return omf_.varyingValue({{{0}, {0}}, {{1}, {1}}}); }
    ObjectID half() { return omf_.constantValue({1, 2}); }

    Song song_;
    OmfBuilder& omf_ = song_.omf;
    Mapped mapped_;
    std::string path_;
};

TEST_F(GainEffect, NestedConstantsMultiply) {
    EXPECT_EQ(event(omf_.gain(omf_.gain(song_.clip(100), half()), half())).fixedClipGain, 0.25);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(GainEffect, EffectIdentifierIgnoresCase) {
    const ObjectID effect = omf_.effect({.effectID = "OMFI:EFFECT:MONOAUDIOGAIN",
                                         .length = 100,
                                         .slots = {{input, song_.clip(100)}, {control, half()}}});
    EXPECT_EQ(event(effect).fixedClipGain, 0.5);
}

TEST_F(GainEffect, ConstantReachesEveryClipOfEveryInput) {
    const ObjectID sequence = omf_.sequence({song_.clip(10), song_.clip(10)});
    (void)event(gainOf({{input, song_.clip(30)}, {control, half()}}, sequence));
    ASSERT_EQ(mapped_.timeline.events.size(), 3U);
    for (const AAFClipEvent& each : mapped_.timeline.events) {
        EXPECT_EQ(each.fixedClipGain, 0.5);
    }
}

TEST_F(GainEffect, ClipsOutsideTheEffectAreUntouched) {
    song_.addSlot(omf_.sequence({song_.clip(10), gainOf({{control, half()}}), song_.clip(10)}));
    mapped_ = song_.map();
    ASSERT_EQ(mapped_.timeline.events.size(), 3U);
    EXPECT_EQ(mapped_.timeline.events[0].fixedClipGain, 1.0);
    EXPECT_EQ(mapped_.timeline.events[1].fixedClipGain, 0.5);
    EXPECT_EQ(mapped_.timeline.events[2].fixedClipGain, 1.0);
}

TEST_F(GainEffect, WithoutAControlChangesNothing) {
    EXPECT_EQ(event(gainOf({})).fixedClipGain, 1.0);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(GainEffect, ControlSlotWithoutAValueIsPassedOver) {
    EXPECT_EQ(event(gainOf({{control, std::nullopt}, {control, half()}})).fixedClipGain, 0.5);
}

TEST_F(GainEffect, FirstOfTwoControlsCounts) {
    EXPECT_EQ(event(gainOf({{control, half()}, {control, omf_.constantValue({3})}})).fixedClipGain,
              0.5);
}

TEST_F(GainEffect, UnreadableConstantIsReported) {
    EXPECT_EQ(event(gainOf({{control, omf_.constantValue({1, 0})}})).fixedClipGain, 1.0);
    expectRecord("omfi:effect:MonoAudioGain constant is not a readable rational");
}

TEST_F(GainEffect, ControlWithoutAClassIsReported) {
    const ObjectID classless = omf_.classless().rational("OMFI:CVAL:Value", {1, 2});
    EXPECT_EQ(event(gainOf({{control, classless}})).fixedClipGain, 1.0);
    expectRecord("omfi:effect:MonoAudioGain control slot has no object class");
}

TEST_F(GainEffect, ControlThatDoesNotExistHasNoClass) {
    EXPECT_EQ(event(gainOf({{control, 60'000}})).fixedClipGain, 1.0);
    expectRecord("omfi:effect:MonoAudioGain control slot has no object class");
}

TEST_F(GainEffect, ControlOfAnotherClassIsReported) {
    EXPECT_EQ(event(gainOf({{control, omf_.filler(100)}})).fixedClipGain, 1.0);
    expectRecord("omfi:effect:MonoAudioGain control uses unsupported FILL");
}

TEST_F(GainEffect, VaryingControlBecomesAutomation) {
    const AAFClipEvent& clip = event(
        gainOf({{control, omf_.varyingValue({{{0}, {1, 2}}, {{2, 4}, {2}}, {{1}, {-1, 4}}})}}));
    EXPECT_EQ(described(clip.clipGainAutomation), "linear: 0/1=0.5 1/2=2 1/1=-0.25");
    EXPECT_EQ(clip.fixedClipGain, 1.0);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(GainEffect, PointsStayInFileOrderAndOutsideTheirRange) {
    EXPECT_EQ(described(event(gainOf({{control, omf_.varyingValue({{{3, 2}, {1}}, {{-1}, {2}}})}}))
                            .clipGainAutomation),
              "linear: 3/2=1 -1/1=2");
}

TEST_F(GainEffect, ConstantVaryingControlStaysAutomation) {
    const ObjectID level = omf_.varyingValue({{{0}, {1, 2}}, {{1}, {1, 2}}});
    const AAFClipEvent& clip = event(gainOf({{control, level}}));
    EXPECT_EQ(described(clip.clipGainAutomation), "linear: 0/1=0.5 1/1=0.5");
    EXPECT_EQ(clip.fixedClipGain, 1.0);
}

TEST_F(GainEffect, InterpolationCodesAreCurves) {
    const std::vector<std::pair<std::optional<std::int16_t>, std::string>> curves{
        {1, "constant"}, {2, "linear"}, {std::nullopt, "linear"}};
    for (const auto& [code, curve] : curves) {
        Song song;
        const ObjectID level = song.omf.varyingValue({{{0}, {0}}, {{1}, {1}}}, code);
        song.addSlot(song.omf.gain(song.clip(100), level));
        const Mapped mapped = song.map();
        EXPECT_EQ(described(mapped.timeline.events.at(0).clipGainAutomation),
                  curve + ": 0/1=0 1/1=1");
        EXPECT_THAT(recordsOf(mapped), IsEmpty());
    }
}

TEST_F(GainEffect, UnknownInterpolationIsKeptByNameAndReported) {
    const ObjectID level = omf_.varyingValue({{{0}, {0}}, {{1}, {1}}}, 3);
    EXPECT_EQ(described(event(gainOf({{control, level}})).clipGainAutomation),
              "unsupported(OMF interpolation 3): 0/1=0 1/1=1");
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "OMF interpolation 3",
                                            "VVAL[" + std::to_string(level) + "]")));
}

TEST_F(GainEffect, UnknownInterpolationIsReportedAtEachUse) {
    const ObjectID level = omf_.varyingValue({{{0}, {0}}, {{1}, {1}}}, 3);
    song_.addSlot(
        omf_.sequence({omf_.gain(song_.clip(50), level), omf_.gain(song_.clip(50), level)}));
    const std::string path = "VVAL[" + std::to_string(level) + "]";
    EXPECT_THAT(recordsOf(song_.map()),
                ElementsAre(unsupportedLine(0, "OMF interpolation 3", path),
                            unsupportedLine(1, "OMF interpolation 3", path)));
}

TEST_F(GainEffect, VaryingControlWithoutPointsIsReported) {
    EXPECT_EQ(described(event(gainOf({{control, omf_.varyingValue({})}})).clipGainAutomation),
              "none");
    expectRecord("MonoAudioGain varying value is not readable");
}

TEST_F(GainEffect, OneUnreadablePointSpoilsTheWholeCurve) {
    for (const PointSpec& broken : {PointSpec{{1, 0}, {1}}, PointSpec{{1}, {1, 0}}}) {
        Song song;
        const ObjectID level = song.omf.varyingValue({{{0}, {0}}, broken});
        const ObjectID effect = song.omf.gain(song.clip(100), level);
        song.addSlot(effect);
        const Mapped mapped = song.map();
        EXPECT_EQ(described(mapped.timeline.events.at(0).clipGainAutomation), "none");
        EXPECT_THAT(recordsOf(mapped),
                    ElementsAre(unsupportedLine(0, "MonoAudioGain varying value is not readable",
                                                song.path() + step("EFFE", effect))));
    }
}

TEST_F(GainEffect, UnknownInterpolationOfAnUnreadableCurveIsReportedFirst) {
    const ObjectID level = omf_.varyingValue({}, 9);
    (void)event(gainOf({{control, level}}));
    EXPECT_THAT(
        recordsOf(mapped_),
        ElementsAre(
            unsupportedLine(0, "OMF interpolation 9", "VVAL[" + std::to_string(level) + "]"),
            unsupportedLine(1, "MonoAudioGain varying value is not readable", path_)));
}

TEST_F(GainEffect, NestedAutomationIsReportedPerClipAndTheInnerStays) {
    const ObjectID inner = gainOf({{control, omf_.varyingValue({{{0}, {1}}, {{1}, {0}}})}},
                                  omf_.sequence({song_.clip(10), song_.clip(10)}));
    (void)event(gainOf({{input, song_.clip(30)}, {control, ramp()}}, inner));
    ASSERT_EQ(mapped_.timeline.events.size(), 3U);
    EXPECT_EQ(described(mapped_.timeline.events[0].clipGainAutomation), "linear: 0/1=0 1/1=1");
    EXPECT_EQ(described(mapped_.timeline.events[1].clipGainAutomation), "linear: 0/1=1 1/1=0");
    EXPECT_EQ(described(mapped_.timeline.events[2].clipGainAutomation), "linear: 0/1=1 1/1=0");
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(unsupportedLine(0, nestedText, path_),
                                                unsupportedLine(1, nestedText, path_)));
}

TEST_F(GainEffect, EqualValuesInTheAutomationSlotAreAFixedGain) {
    const ObjectID level = omf_.varyingValue({{{0}, {7, 10}}, {{1, 2}, {7, 10}}, {{1}, {7, 10}}});
    const AAFClipEvent& clip = event(gainOf({{automation, level}}));
    EXPECT_THAT(clip.fixedClipGain, DoubleEq(0.7));
    EXPECT_EQ(described(clip.clipGainAutomation), "none");
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(GainEffect, ValuesWithinABillionthAreEqual) {
    // 1073741824/2147483647 is a half and 2.3e-10.
    const ObjectID level =
        omf_.varyingValue({{{0}, {1, 2}}, {{1}, {1'073'741'824, 2'147'483'647}}});
    const AAFClipEvent& clip = event(gainOf({{automation, level}}));
    EXPECT_EQ(clip.fixedClipGain, 0.5);
    EXPECT_EQ(described(clip.clipGainAutomation), "none");
}

TEST_F(GainEffect, ValuesTwoBillionthsApartVary) {
    const ObjectID level = omf_.varyingValue({{{0}, {1, 2}}, {{1}, {250'000'001, 500'000'000}}});
    const AAFClipEvent& clip = event(gainOf({{automation, level}}));
    EXPECT_EQ(clip.fixedClipGain, 1.0);
    EXPECT_EQ(described(clip.clipGainAutomation), "linear: 0/1=0.5 1/1=0.500000002");
}

TEST_F(GainEffect, VaryingAutomationSlotBecomesAutomation) {
    const AAFClipEvent& clip = event(gainOf({{automation, ramp()}}));
    EXPECT_EQ(described(clip.clipGainAutomation), "linear: 0/1=0 1/1=1");
    EXPECT_EQ(clip.fixedClipGain, 1.0);
}

TEST_F(GainEffect, VaryingAutomationSlotAroundAutomationIsReported) {
    const ObjectID inner = gainOf({{automation, omf_.varyingValue({{{0}, {1}}, {{1}, {0}}})}});
    EXPECT_EQ(described(event(gainOf({{automation, ramp()}}, inner)).clipGainAutomation),
              "linear: 0/1=1 1/1=0");
    expectRecord(nestedText);
}

TEST_F(GainEffect, AutomationSlotEndsTheArguments) {
    const ObjectID seventy = omf_.varyingValue({{{0}, {7, 10}}});
    EXPECT_THAT(event(gainOf({{control, half()}, {automation, seventy}})).fixedClipGain,
                DoubleEq(0.7));
}

TEST_F(GainEffect, VaryingAutomationSlotEndsTheArgumentsToo) {
    const AAFClipEvent& clip = event(gainOf({{control, half()}, {automation, ramp()}}));
    EXPECT_EQ(clip.fixedClipGain, 1.0);
    EXPECT_EQ(described(clip.clipGainAutomation), "linear: 0/1=0 1/1=1");
}

TEST_F(GainEffect, UnreadableAutomationSlotIsReportedAndEndsTheArguments) {
    const ObjectID empty = omf_.varyingValue({});
    EXPECT_EQ(event(gainOf({{control, half()}, {automation, empty}})).fixedClipGain, 1.0);
    expectRecord("MonoAudioGain automation slot (2) is not readable");
}

TEST_F(GainEffect, AutomationSlotOfAnotherClassLeavesItToTheControl) {
    const ObjectID constant = omf_.constantValue({3});
    EXPECT_EQ(event(gainOf({{control, half()}, {automation, constant}})).fixedClipGain, 0.5);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(GainEffect, FixedGainAndAutomationOfTwoEffectsStandSideBySide) {
    const ObjectID inner = omf_.gain(song_.clip(100), ramp());
    const AAFClipEvent& clip = event(omf_.gain(inner, half()));
    EXPECT_EQ(clip.fixedClipGain, 0.5);
    EXPECT_EQ(described(clip.clipGainAutomation), "linear: 0/1=0 1/1=1");
}

}  // namespace
}  // namespace trellant::testing

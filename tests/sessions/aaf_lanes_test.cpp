// SPDX-License-Identifier: Apache-2.0
// Fades and crossfades wherever they may stand in a lane.
#include "aaf_lane.h"
#include "sample_sessions.h"
#include "written_session.h"

#include <variant>

namespace trellant::sessions {
namespace {

using Curve = AAFAutomationInterpolation;
using exchange::PlannedClip;

/// "F100 T20@0 C300": filler, transition with its cut, clip.
std::string shapeOf(const std::vector<PlannedClip>& clips, exchange::Samples sessionLength = 0) {
    const std::vector<aaf::MobID> mobs(clips.size());
    std::string shape;
    for (const aaf::Component& component :
         sequenceOfLane({.clips = clips}, mobs, sessionLength).components) {
        shape += shape.empty() ? "" : " ";
        if (const auto* filler = std::get_if<aaf::Filler>(&component)) {
            shape += "F" + std::to_string(filler->length);
        } else if (const auto* transition = std::get_if<aaf::Transition>(&component)) {
            shape += "T" + std::to_string(transition->length) + "@" +
                     std::to_string(transition->cutPoint);
        } else {
            shape += "C" + std::to_string(std::get<aaf::SourceClip>(component).length);
        }
    }
    return shape;
}

PlannedClip faded(PlannedClip clip, exchange::Samples fadeIn, exchange::Samples fadeOut) {
    if (fadeIn > 0) {
        clip.fadeIn = fade(fadeIn);
    }
    if (fadeOut > 0) {
        clip.fadeOut = fade(fadeOut);
    }
    return clip;
}

PlannedClip crossfaded(PlannedClip clip, exchange::Samples overlap, exchange::Samples fadeOut = 0) {
    clip = faded(std::move(clip), overlap, fadeOut);
    clip.crossfadesIn = true;
    return clip;
}

TEST(AafLanes, ClipsWithoutFadesStandOneAfterTheOther) {
    EXPECT_EQ(shapeOf({clip(0, 100), clip(100, 50), clip(200, 10)}), "C100 C50 F50 C10");
}

TEST(AafLanes, FadeInAtTheStart) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 30, 0)}), "F30 T30@0 C100");
}

TEST(AafLanes, FadeInAfterAGap) {
    EXPECT_EQ(shapeOf({faded(clip(200, 100), 30, 0)}), "F230 T30@0 C100");
}

TEST(AafLanes, FadeInDirectlyBehindAClip) {
    EXPECT_EQ(shapeOf({clip(0, 100), faded(clip(100, 100), 30, 0)}), "C100 F30 T30@0 C100");
}

TEST(AafLanes, FadeOutBeforeAGap) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 0, 30), clip(200, 100)}), "C100 T30@30 F130 C100");
}

TEST(AafLanes, FadeOutDirectlyBeforeAClip) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 0, 30), clip(100, 100)}), "C100 T30@30 F30 C100");
}

TEST(AafLanes, FadeOutAtTheEnd) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 0, 30)}), "C100 T30@30 F30");
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 0, 30)}, 150), "C100 T30@30 F80");
}

TEST(AafLanes, FadesOfNeighboursWithoutAGap) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 0, 30), faded(clip(100, 100), 20, 0)}),
              "C100 T30@30 F50 T20@0 C100");
}

TEST(AafLanes, FadesThatFillTheirClip) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 100, 0)}), "F100 T100@0 C100");
    EXPECT_EQ(shapeOf({faded(clip(10, 100), 0, 100)}), "F10 C100 T100@100 F100");
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 40, 60)}), "F40 T40@0 C100 T60@60 F60");
}

TEST(AafLanes, CrossfadeIsOneTransition) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 0, 31), crossfaded(clip(69, 100), 31)}),
              "C100 T31@15 C100");
}

TEST(AafLanes, CrossfadesOneAfterTheOther) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 10, 30), crossfaded(clip(70, 100), 30, 20),
                       crossfaded(clip(150, 100), 20, 5)}),
              "F10 T10@0 C100 T30@15 C100 T20@10 C100 T5@5 F5");
}

TEST(AafLanes, CrossfadeOverAWholeClip) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 0, 40), crossfaded(clip(60, 40), 40)}),
              "C100 T40@20 C40");
}

TEST(AafLanes, SessionLengthIsFilledUp) {
    EXPECT_EQ(shapeOf({clip(0, 100)}, 250), "C100 F150");
    EXPECT_EQ(shapeOf({}, 250), "F250");
    EXPECT_EQ(shapeOf({}), "F0");
}

TEST(AafLanes, FadesThatOverlapAreCutToTheirClip) {
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 70, 60)}), "F70 T70@0 C100 T30@30 F30");
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 200, 60)}), "F100 T100@0 C100");
    EXPECT_EQ(shapeOf({faded(clip(0, 100), -5, -5)}), "C100");
}

TEST(AafLanes, CrossfadeThatCannotBeIsAFade) {
    EXPECT_EQ(shapeOf({crossfaded(clip(0, 100), 30)}), "F30 T30@0 C100");
    EXPECT_EQ(shapeOf({clip(0, 100), crossfaded(clip(100, 100), 30)}), "C100 F30 T30@0 C100");
    // 80 of the first clip are its fade-in; the other overlaps it by more than the rest.
    EXPECT_EQ(shapeOf({faded(clip(0, 100), 80, 0), crossfaded(clip(70, 100), 30)}),
              "F80 T80@0 C100 F30 T30@0 C100");
}

TEST(AafLanes, ClipsThatOverlapComeOneAfterTheOther) {
    EXPECT_EQ(shapeOf({clip(0, 100), clip(50, 100), clip(300, 10)}), "C100 C100 F100 C10");
}

TEST(AafLanes, ClipsOfNothingAreNone) {
    EXPECT_EQ(shapeOf({clip(0, 0), clip(10, 100), clip(200, -7)}, 200), "F10 C100 F90");
}

struct CurveCase {
    const char* name;
    Curve curve;
    Curve asRead;
};

class AafFadeCurves : public ::testing::TestWithParam<CurveCase> {
  protected:
    [[nodiscard]] static exchange::ExportPlan plan(const Curve& curve) {
        PlannedClip first = clip(1000, 48'000, 5);
        first.fadeIn = fade(480, curve);
        first.fadeOut = fade(4800, curve);
        PlannedClip second = clip(44'200, 48'000, 777);
        second.fadeIn = first.fadeOut;
        second.crossfadesIn = true;
        second.fadeOut = fade(1, curve);
        return planOf({track("A", {first, second})});
    }
};

TEST_P(AafFadeCurves, AreReadFromFadesAndCrossfades) {
    EXPECT_EQ(readBack(sessionOf(plan(GetParam().curve))).plan, plan(GetParam().asRead));
}

INSTANTIATE_TEST_SUITE_P(
    Curves, AafFadeCurves,
    ::testing::Values(CurveCase{"Linear", Curve::linear(), Curve::linear()},
                      CurveCase{"Constant", Curve::constant(), Curve::constant()},
                      CurveCase{"Power", Curve::power(), Curve::power()},
                      CurveCase{"Logarithmic", Curve::logarithmic(), Curve::logarithmic()},
                      CurveCase{"UnknownBecomesLinear", Curve::unsupported("x"), Curve::linear()}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(AafFades, EqualPowerIsSaidTwice) {
    PlannedClip faded = clip(0, 100);
    faded.fadeIn = fade(10, Curve::power());
    const WrittenObjects written(sessionOf(planOf({track("A", {faded})})));
    EXPECT_EQ(written.reader().textOf(written.pathOf("CompositionMob", "Scene 12") +
                                      "/Slots/1/Segment/Components/1"),
              "Transition\n"
              "  CutPoint 0\n"
              "  DataDefinition DataDef_Sound\n"
              "  Length 10\n"
              "  OperationGroup -> OperationGroup\n"
              "    ComponentAttributeList\n"
              "      0 TaggedValue\n"
              "        Name \"_ATN_AUDIO_DISSOLVE_CURVETYPE\"\n"
              "        Value aafInt32 1\n"
              "    DataDefinition DataDef_Sound\n"
              "    Length 10\n"
              "    Operation Mono Audio Dissolve\n"
              "    Parameters\n"
              "      0 VaryingValue\n"
              "        Definition e4962320-2267-11d3-8a4c-0050040ef7d2\n"
              "        Interpolation PowerInterp\n"
              "        PointList\n"
              "          0 ControlPoint\n"
              "            Time 0/1\n"
              "            Value Rational 0/1\n"
              "          1 ControlPoint\n"
              "            Time 1/1\n"
              "            Value Rational 1/1\n");
}

}  // namespace
}  // namespace trellant::sessions

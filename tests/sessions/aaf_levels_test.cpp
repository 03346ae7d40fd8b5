// SPDX-License-Identifier: Apache-2.0
// Gain, automation and pan of clips and tracks.
#include "sample_sessions.h"
#include "written_session.h"

namespace trellant::sessions {
namespace {

using Curve = AAFAutomationInterpolation;

AAFAutomationEnvelope envelope(Curve curve) {
    return {.interpolation = std::move(curve),
            .points = {{AAFRational(0), 0.25},
                       {AAFRational(1, 3), 1},
                       {AAFRational(16'001, 48'000), 0},
                       {AAFRational(1), 3.5}}};
}

exchange::ExportPlan planOfClip(double gain, std::optional<AAFAutomationEnvelope> automation = {}) {
    exchange::PlannedClip one = clip(0, 48'000);
    one.gain = gain;
    one.gainAutomation = std::move(automation);
    return planOf({track("A", {one})});
}

exchange::PlannedClip clipOf(const ReadAafSession& read) {
    return read.plan.tracks.at(0).lanes.at(0).clips.at(0);
}

TEST(AafLevels, GainOfOneIsNoOperation) {
    const WrittenObjects written(sessionOf(planOfClip(1)));
    EXPECT_TRUE(
        written.reader()
            .textOf(written.pathOf("CompositionMob", "Scene 12") + "/Slots/1/Segment/Components/0")
            .starts_with("SourceClip\n"));
}

TEST(AafLevels, GainStandsInsideItsAutomation) {
    const WrittenObjects written(sessionOf(planOfClip(
        0.75, AAFAutomationEnvelope{.points = {{AAFRational(0), 0.5}, {AAFRational(2, 3), 2}}})));
    EXPECT_EQ(written.reader().textOf(written.pathOf("CompositionMob", "Scene 12") +
                                      "/Slots/1/Segment/Components/0"),
              "OperationGroup\n"
              "  DataDefinition DataDef_Sound\n"
              "  InputSegments\n"
              "    0 OperationGroup\n"
              "      DataDefinition DataDef_Sound\n"
              "      InputSegments\n"
              "        0 SourceClip\n"
              "          DataDefinition DataDef_Sound\n"
              "          Length 48000\n"
              "          SourceID " +
                  written.reader().valueOf(written.pathOf("MasterMob", "Clip"), "MobID") +
                  "\n"
                  "          SourceMobSlotID 1\n"
                  "          StartTime 0\n"
                  "      Length 48000\n"
                  "      Operation Mono Audio Gain\n"
                  "      Parameters\n"
                  "        0 ConstantValue\n"
                  "          Definition e4962321-2267-11d3-8a4c-0050040ef7d2\n"
                  "          Value Rational 402653184/536870912\n"
                  "  Length 48000\n"
                  "  Operation Mono Audio Gain\n"
                  "  Parameters\n"
                  "    0 VaryingValue\n"
                  "      Definition e4962321-2267-11d3-8a4c-0050040ef7d2\n"
                  "      Interpolation LinearInterp\n"
                  "      PointList\n"
                  "        0 ControlPoint\n"
                  "          Time 0/1\n"
                  "          Value Rational 268435456/536870912\n"
                  "        1 ControlPoint\n"
                  "          Time 2/3\n"
                  "          Value Rational 1073741824/536870912\n");
}

TEST(AafLevels, GainOfNothingAndAboveTwelveDecibels) {
    EXPECT_EQ(clipOf(readBack(sessionOf(planOfClip(0)))).gain, 0);
    EXPECT_EQ(clipOf(readBack(sessionOf(planOfClip(4)))).gain, 4);
    EXPECT_EQ(clipOf(readBack(sessionOf(planOfClip(1000.25)))).gain, 1000.25);
    EXPECT_EQ(clipOf(readBack(sessionOf(planOfClip(-0.5)))).gain, 0);
    // 0.3 * 2^29 is 161,061,273.6.
    EXPECT_EQ(clipOf(readBack(sessionOf(planOfClip(0.3)))).gain, 161'061'274.0 / 536'870'912.0);
}

TEST(AafLevels, LevelLineBesideAGainBecomesPartOfIt) {
    const AAFAutomationEnvelope line{.points = {{AAFRational(0), 0.5}, {AAFRational(1), 0.5}}};
    EXPECT_EQ(readBack(sessionOf(planOfClip(0.75, line))).plan, planOfClip(0.375));
    EXPECT_EQ(readBack(sessionOf(planOfClip(1, line))).plan, planOfClip(1, line));
}

TEST(AafLevels, TrackHasItsGainInsideItsPan) {
    exchange::ExportPlan plan = planOf({track("A", {clip(0, 48'000)})});
    plan.tracks[0].gain = 0.5;
    plan.tracks[0].pan = 0.25;
    EXPECT_EQ(readBack(sessionOf(plan)).plan, plan);
    const WrittenObjects written(sessionOf(plan));
    const std::string segment = written.pathOf("CompositionMob", "Scene 12") + "/Slots/1/Segment";
    EXPECT_EQ(written.reader().valueOf(segment, "Operation"), "Mono Audio Pan");
    EXPECT_EQ(written.reader().valueOf(segment + "/Parameters/0", "Value"),
              "Rational 134217728/536870912");
    EXPECT_EQ(written.reader().valueOf(segment + "/InputSegments/0", "Operation"),
              "Mono Audio Gain");
    EXPECT_EQ(written.reader().valueOf(segment + "/InputSegments/0/InputSegments/0", "Components"),
              "1 objects");
}

TEST(AafLevels, TrackGainBecomesPartOfItsAutomation) {
    exchange::ExportPlan plan = planOf({track("A", {clip(0, 48'000)})});
    plan.tracks[0].gain = 0.5;
    plan.tracks[0].gainAutomation = envelope(Curve::linear());
    exchange::ExportPlan read = plan;
    read.tracks[0].gain = 1;
    const std::vector<double> values{0.125, 0.5, 0, 1.75};
    for (std::size_t index = 0; index < values.size(); ++index) {
        read.tracks[0].gainAutomation->points[index].value = values[index];
    }
    EXPECT_EQ(readBack(sessionOf(plan)).plan, read);
}

TEST(AafLevels, PanAutomationStandsForTheFixedPan) {
    exchange::ExportPlan plan = planOf({track("A", {clip(0, 48'000)})});
    plan.tracks[0].pan = 0.5;
    plan.tracks[0].panAutomation = {
        .interpolation = Curve::constant(),
        .points = {{AAFRational(0), 0}, {AAFRational(1, 2), 1}, {AAFRational(1), 0.5}}};
    exchange::ExportPlan read = plan;
    read.tracks[0].pan.reset();
    EXPECT_EQ(readBack(sessionOf(plan)).plan, read);
}

TEST(AafLevels, EveryLaneHasTheLevelsOfItsTrack) {
    exchange::PlannedTrack dialog = track("Dialog", {clip(0, 100)});
    dialog.lanes.push_back({.name = "Dialog (2)", .clips = {clip(50, 100)}});
    dialog.gain = 0.5;
    dialog.pan = 1;
    const ReadAafSession read = readBack(sessionOf(planOf({dialog})));
    for (const exchange::PlannedTrack& lane : read.plan.tracks) {
        EXPECT_EQ(lane.gain, 0.5);
        EXPECT_EQ(lane.pan, 1);
    }
}

struct CurveCase {
    const char* name;
    Curve curve;
    Curve asRead;
};

class AafAutomation : public ::testing::TestWithParam<CurveCase> {};

TEST_P(AafAutomation, OfAClipIsReadPointByPoint) {
    EXPECT_EQ(readBack(sessionOf(planOfClip(1, envelope(GetParam().curve)))).plan,
              planOfClip(1, envelope(GetParam().asRead)));
    EXPECT_EQ(readBack(sessionOf(planOfClip(0.5, envelope(GetParam().curve)))).plan,
              planOfClip(0.5, envelope(GetParam().asRead)));
}

TEST_P(AafAutomation, OfATrackIsReadPointByPoint) {
    exchange::ExportPlan plan = planOf({track("A", {clip(0, 48'000)})});
    plan.tracks[0].gainAutomation = envelope(GetParam().curve);
    exchange::ExportPlan read = plan;
    read.tracks[0].gainAutomation = envelope(GetParam().asRead);
    EXPECT_EQ(readBack(sessionOf(plan)).plan, read);
}

INSTANTIATE_TEST_SUITE_P(
    Curves, AafAutomation,
    ::testing::Values(CurveCase{"Linear", Curve::linear(), Curve::linear()},
                      CurveCase{"Constant", Curve::constant(), Curve::constant()},
                      CurveCase{"Power", Curve::power(), Curve::power()},
                      CurveCase{"Logarithmic", Curve::logarithmic(), Curve::logarithmic()},
                      CurveCase{"UnknownBecomesLinear", Curve::unsupported("x"), Curve::linear()}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(AafAutomation, OfOnePointIsRead) {
    const AAFAutomationEnvelope one{.points = {{AAFRational(1, 2), 0.5}}};
    EXPECT_EQ(readBack(sessionOf(planOfClip(1, one))).plan, planOfClip(1, one));
}

TEST(AafAutomation, WithoutPointsIsNone) {
    EXPECT_EQ(readBack(sessionOf(planOfClip(1, AAFAutomationEnvelope{}))).plan, planOfClip(1));
}

}  // namespace
}  // namespace trellant::sessions

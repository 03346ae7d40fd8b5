// SPDX-License-Identifier: Apache-2.0
// What slots are made of, each with all that is stored of it.
#include "written_aaf.h"

#include <limits>

namespace trellant::aaf {
namespace {

using Fault = AafError::Fault;

OperationGroup gain(Rational factor) {
    return {.operation = Operation::monoAudioGain,
            .parameters = {{ParameterKind::amplitude, factor}}};
}

OperationGroup dissolve(Interpolation interpolation) {
    return {.operation = Operation::monoAudioDissolve,
            .parameters = {{ParameterKind::level,
                            VaryingValue{interpolation, {{{0, 1}, {0, 1}}, {{1, 1}, {1, 1}}}}}}};
}

SourceClip clip(std::int64_t length) {
    return {.length = length, .startTime = 7, .sourceID = mobNumber(2), .sourceMobSlotID = 3};
}

TEST(AafComponents, SourceClip) {
    EXPECT_EQ(textOfSegment(clip(100)),
              "SourceClip\n"
              "  DataDefinition DataDef_Sound\n"
              "  Length 100\n"
              "  SourceID " +
                  mobText(2) +
                  "\n"
                  "  SourceMobSlotID 3\n"
                  "  StartTime 7\n");
}

TEST(AafComponents, SourceClipWithNothingBeforeIt) {
    EXPECT_EQ(textOfSegment(SourceClip{.length = 0x100000001}),
              "SourceClip\n"
              "  DataDefinition DataDef_Sound\n"
              "  Length 4294967297\n"
              "  SourceID no mob\n"
              "  SourceMobSlotID 0\n"
              "  StartTime 0\n");
}

TEST(AafComponents, Timecode) {
    EXPECT_EQ(
        textOfSegment(Timecode{.length = 2'592'000, .start = 107'892, .fps = 30, .drop = true}),
        "Timecode\n"
        "  DataDefinition DataDef_Timecode\n"
        "  Drop True\n"
        "  FPS 30\n"
        "  Length 2592000\n"
        "  Start 107892\n");
}

TEST(AafComponents, EmptySequence) {
    EXPECT_EQ(textOfSegment(Sequence{}),
              "Sequence\n"
              "  Components\n"
              "  DataDefinition DataDef_Sound\n"
              "  Length 0\n");
}

TEST(AafComponents, SequenceOfFillerAndClip) {
    EXPECT_EQ(textOfSegment(Sequence{.components = {Filler{40}, clip(2)}}),
              "Sequence\n"
              "  Components\n"
              "    0 Filler\n"
              "      DataDefinition DataDef_Sound\n"
              "      Length 40\n"
              "    1 SourceClip\n"
              "      DataDefinition DataDef_Sound\n"
              "      Length 2\n"
              "      SourceID " +
                  mobText(2) +
                  "\n"
                  "      SourceMobSlotID 3\n"
                  "      StartTime 7\n"
                  "  DataDefinition DataDef_Sound\n"
                  "  Length 42\n");
}

TEST(AafComponents, TransitionTakesItsLengthFromTheSequence) {
    const std::string text = textOfSegment(
        Sequence{.components = {Filler{100}, Transition{30, 10, dissolve(Interpolation::power)},
                                Filler{50}}});
    EXPECT_EQ(text,
              "Sequence\n"
              "  Components\n"
              "    0 Filler\n"
              "      DataDefinition DataDef_Sound\n"
              "      Length 100\n"
              "    1 Transition\n"
              "      CutPoint 10\n"
              "      DataDefinition DataDef_Sound\n"
              "      Length 30\n"
              "      OperationGroup -> OperationGroup\n"
              "        DataDefinition DataDef_Sound\n"
              "        Length 30\n"
              "        Operation Mono Audio Dissolve\n"
              "        Parameters\n"
              "          0 VaryingValue\n"
              "            Definition e4962320-2267-11d3-8a4c-0050040ef7d2\n"
              "            Interpolation PowerInterp\n"
              "            PointList\n"
              "              0 ControlPoint\n"
              "                Time 0/1\n"
              "                Value Rational 0/1\n"
              "              1 ControlPoint\n"
              "                Time 1/1\n"
              "                Value Rational 1/1\n"
              "    2 Filler\n"
              "      DataDefinition DataDef_Sound\n"
              "      Length 50\n"
              "  DataDefinition DataDef_Sound\n"
              "  Length 120\n");
}

TEST(AafComponents, GainStandsAroundItsClip) {
    SourceClip loud = clip(9);
    loud.operationGroups = {gain({3, 4})};
    EXPECT_EQ(textOfSegment(loud),
              "OperationGroup\n"
              "  DataDefinition DataDef_Sound\n"
              "  InputSegments\n"
              "    0 SourceClip\n"
              "      DataDefinition DataDef_Sound\n"
              "      Length 9\n"
              "      SourceID " +
                  mobText(2) +
                  "\n"
                  "      SourceMobSlotID 3\n"
                  "      StartTime 7\n"
                  "  Length 9\n"
                  "  Operation Mono Audio Gain\n"
                  "  Parameters\n"
                  "    0 ConstantValue\n"
                  "      Definition e4962321-2267-11d3-8a4c-0050040ef7d2\n"
                  "      Value Rational 3/4\n");
}

TEST(AafComponents, FirstOfSeveralOperationsIsTheInnermost) {
    SourceClip changed = clip(9);
    changed.operationGroups = {gain({1, 2}), gain({1, 4}), gain({1, 8})};
    const WrittenAaf written(fileOf(changed));
    const std::string outer = "Header/Content/Mobs/0/Slots/0/Segment";
    const std::string middle = outer + "/InputSegments/0";
    const std::string inner = middle + "/InputSegments/0";
    EXPECT_EQ(written.reader->valueOf(outer + "/Parameters/0", "Value"), "Rational 1/8");
    EXPECT_EQ(written.reader->valueOf(middle + "/Parameters/0", "Value"), "Rational 1/4");
    EXPECT_EQ(written.reader->valueOf(inner + "/Parameters/0", "Value"), "Rational 1/2");
    EXPECT_EQ(written.reader->valueOf(inner + "/InputSegments/0", "StartTime"), "7");
    EXPECT_EQ(written.reader->valueOf(middle, "Length"), "9");
}

TEST(AafComponents, PanStandsAroundTheWholeSequence) {
    const WrittenAaf written(fileOf(
        Sequence{.components = {Filler{5}, clip(6)},
                 .operationGroups = {{.operation = Operation::monoAudioPan,
                                      .parameters = {{ParameterKind::pan, Rational{1, 4}}}}}}));
    const std::string slot = "Header/Content/Mobs/0/Slots/0/Segment";
    EXPECT_EQ(written.reader->valueOf(slot, "Operation"), "Mono Audio Pan");
    EXPECT_EQ(written.reader->valueOf(slot, "Length"), "11");
    EXPECT_EQ(written.reader->valueOf(slot + "/InputSegments/0", "Components"), "2 objects");
    EXPECT_EQ(written.reader->valueOf(slot + "/InputSegments/0", "Length"), "11");
}

TEST(AafComponents, OperationWithoutParametersHasNone) {
    SourceClip changed = clip(1);
    changed.operationGroups = {{.operation = Operation::monoAudioGain}};
    EXPECT_EQ(WrittenAaf(fileOf(changed))
                  .reader->valueOf("Header/Content/Mobs/0/Slots/0/Segment", "Parameters"),
              "none");
}

TEST(AafComponents, AttributesOfAnOperationGoByName) {
    SourceClip changed = clip(1);
    changed.operationGroups = {{.operation = Operation::monoAudioGain,
                                .componentAttributes = {{"_CURVE", -1}, {"_NOTE", "\xC3\xA9"}}}};
    const WrittenAaf written(fileOf(changed));
    const std::string list = "Header/Content/Mobs/0/Slots/0/Segment/ComponentAttributeList/";
    EXPECT_EQ(written.textOf(list + "0"),
              "TaggedValue\n"
              "  Name \"_CURVE\"\n"
              "  Value aafInt32 -1\n");
    EXPECT_EQ(written.textOf(list + "1"),
              "TaggedValue\n"
              "  Name \"_NOTE\"\n"
              "  Value aafString \"\xC3\xA9\"\n");
}

TEST(AafComponents, EveryInterpolationIsDefined) {
    const std::vector<std::pair<Interpolation, const char*>> names{
        {Interpolation::linear, "LinearInterp"},
        {Interpolation::constant, "ConstantInterp"},
        {Interpolation::logarithmic, "LogInterp"},
        {Interpolation::power, "PowerInterp"}};
    for (const auto& [interpolation, name] : names) {
        const WrittenAaf written(fileOf(Sequence{
            .components = {Filler{2}, Transition{1, 0, dissolve(interpolation)}, Filler{2}}}));
        EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0/Slots/0/Segment/Components/1/"
                                          "OperationGroup/Parameters/0",
                                          "Interpolation"),
                  name);
    }
}

TEST(AafComponents, RationalsAreStoredAsTheyAre) {
    SourceClip changed = clip(1);
    changed.operationGroups = {gain({-2'147'483'647 - 1, 2'147'483'647})};
    EXPECT_EQ(WrittenAaf(fileOf(changed))
                  .reader->valueOf("Header/Content/Mobs/0/Slots/0/Segment/Parameters/0", "Value"),
              "Rational -2147483648/2147483647");
}

TEST(AafComponents, MarkerWithAllThatItMayHave) {
    const WrittenAaf written(fileOf(EventMobSlot{.slotID = 9,
                                                 .editRate = {25, 1},
                                                 .markers = {{.position = 10,
                                                              .length = 5,
                                                              .comment = "Lost: \xE2\x82\xAC",
                                                              .user = "trellant",
                                                              .colour = Colour{65'535, 256, 0},
                                                              .describedSlotIDs = {2, 70'000}}}}));
    EXPECT_EQ(written.textOf("Header/Content/Mobs/0/Slots/0"),
              "EventMobSlot\n"
              "  EditRate 25/1\n"
              "  Segment -> Sequence\n"
              "    Components\n"
              "      0 DescriptiveMarker\n"
              "        Comment \"Lost: \xE2\x82\xAC\"\n"
              "        CommentMarkerColor {65535, 256, 0}\n"
              "        CommentMarkerUser \"trellant\"\n"
              "        DataDefinition DataDef_DescriptiveMetadata\n"
              "        DescribedSlots [2, 70000]\n"
              "        Length 5\n"
              "        Position 10\n"
              "    DataDefinition DataDef_DescriptiveMetadata\n"
              "    Length 5\n"
              "  SlotID 9\n");
}

TEST(AafComponents, SlotsOfAMarkerAreASet) {
    const WrittenAaf written(fileOf(EventMobSlot{
        .slotID = 9, .editRate = {25, 1}, .markers = {{.describedSlotIDs = {7, 2, 7}}}}));
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0/Slots/0/Segment/Components/0",
                                      "DescribedSlots"),
              "[2, 7]");
}

TEST(AafComponents, MarkerWithAsLittleAsItMayHave) {
    const WrittenAaf written(
        fileOf(EventMobSlot{.slotID = 9, .editRate = {25, 1}, .markers = {{.position = 3}}}));
    EXPECT_EQ(written.textOf("Header/Content/Mobs/0/Slots/0/Segment/Components/0"),
              "DescriptiveMarker\n"
              "  Comment \"\"\n"
              "  DataDefinition DataDef_DescriptiveMetadata\n"
              "  Position 3\n");
}

TEST(AafComponents, MarkersReachFromTheFirstToTheEndOfTheLast) {
    const WrittenAaf written(
        fileOf(EventMobSlot{.slotID = 9,
                            .editRate = {25, 1},
                            .markers = {{.position = 10, .length = 90}, {.position = 50}}}));
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0/Slots/0/Segment", "Length"), "90");
}

TEST(AafComponents, SlotWithoutMarkersIsEmpty) {
    const WrittenAaf written(fileOf(EventMobSlot{.slotID = 9, .editRate = {25, 1}}));
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0/Slots/0/Segment", "Length"), "0");
}

TEST(AafComponents, MisplacedTransitionsAreRefused) {
    const Transition transition{1, 0, dissolve(Interpolation::linear)};
    const Fault misplaced = AafError::MisplacedTransition{};
    EXPECT_EQ(faultOf(fileOf(Sequence{.components = {transition, Filler{5}}})), misplaced);
    EXPECT_EQ(faultOf(fileOf(Sequence{.components = {Filler{5}, transition}})), misplaced);
    EXPECT_EQ(
        faultOf(fileOf(Sequence{.components = {Filler{5}, transition, transition, Filler{5}}})),
        misplaced);
    EXPECT_STREQ(AafError(misplaced).what(),
                 "AAF: a transition does not stand between two segments");
}

TEST(AafComponents, LengthsOutOfRangeAreRefused) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const Fault outOfRange = AafError::LengthOutOfRange{};
    EXPECT_EQ(faultOf(fileOf(Sequence{.components = {Filler{most}, Filler{1}}})), outOfRange);
    EXPECT_EQ(faultOf(fileOf(Sequence{.components = {Filler{-1}, Filler{2}}})), outOfRange);
    EXPECT_EQ(faultOf(fileOf(clip(-1))), outOfRange);
    EXPECT_EQ(faultOf(fileOf(Timecode{.length = -1})), outOfRange);
    EXPECT_EQ(faultOf(fileOf(Sequence{
                  .components = {Filler{1}, Transition{3, 0, dissolve(Interpolation::linear)},
                                 Filler{1}}})),
              outOfRange);
    EXPECT_EQ(faultOf(fileOf(EventMobSlot{
                  .slotID = 1, .editRate = {25, 1}, .markers = {{.position = most, .length = 1}}})),
              outOfRange);
    EXPECT_EQ(
        faultOf(fileOf(EventMobSlot{
            .slotID = 1, .editRate = {25, 1}, .markers = {{.position = most}, {.position = -1}}})),
        outOfRange);
    EXPECT_STREQ(AafError(outOfRange).what(), "AAF: the length of a sequence is out of range");
}

TEST(AafComponents, TwoParametersOfOneKindAreRefused) {
    SourceClip changed = clip(1);
    changed.operationGroups = {gain({1, 1})};
    changed.operationGroups[0].parameters.push_back({ParameterKind::amplitude, Rational{1, 2}});
    EXPECT_EQ(faultOf(fileOf(changed)), Fault(AafError::Duplicate{"Parameters"}));
}

TEST(AafComponents, DenominatorsOfZeroAreRefused) {
    SourceClip changed = clip(1);
    changed.operationGroups = {gain({1, 0})};
    EXPECT_EQ(faultOf(fileOf(changed)), Fault(AafError::InvalidRational{"Value"}));
    changed.operationGroups = {
        {.operation = Operation::monoAudioGain,
         .parameters = {
             {ParameterKind::amplitude, VaryingValue{Interpolation::linear, {{{0, 0}, {1, 1}}}}}}}};
    EXPECT_EQ(faultOf(fileOf(changed)), Fault(AafError::InvalidRational{"Time"}));
    EXPECT_STREQ(AafError(AafError::InvalidRational{"Time"}).what(),
                 "AAF: Time is no valid fraction");
}

TEST(AafComponents, EditRatesOfZeroOrLessAreRefused) {
    for (const Rational rate :
         {Rational{0, 1}, Rational{-25, 1}, Rational{25, 0}, Rational{25, -1}}) {
        EXPECT_EQ(faultOf(fileOf(TimelineMobSlot{.slotID = 1, .editRate = rate})),
                  Fault(AafError::InvalidRational{"EditRate"}));
        EXPECT_EQ(faultOf(fileOf(EventMobSlot{.slotID = 1, .editRate = rate})),
                  Fault(AafError::InvalidRational{"EditRate"}));
    }
}

}  // namespace
}  // namespace trellant::aaf

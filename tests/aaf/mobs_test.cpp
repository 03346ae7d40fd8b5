// SPDX-License-Identifier: Apache-2.0
// Mobs, slots and descriptions of essence, each with all that is stored of it.
#include "written_aaf.h"

namespace trellant::aaf {
namespace {

using Fault = AafError::Fault;

const TimelineMobSlot shortSlot{
    .slotID = 1, .editRate = {25, 1}, .segment = SourceClip{.length = 1}};

AafFile fileOfSource(SourceMob mob) {
    AafFile file;
    file.sourceMobs.push_back(std::move(mob));
    return file;
}

std::string textOfDescription(SourceMob mob) {
    return WrittenAaf(fileOfSource(std::move(mob)))
        .textOf("Header/Content/Mobs/0/EssenceDescription");
}

TEST(AafMobs, CompositionWithAllThatItMayHave) {
    AafFile file;
    file.compositionMobs.push_back(
        {.mobID = mobNumber(0xAB),
         .name = "Sc\xC3\xA8ne 12",
         .creationTime = {2001, 2, 3, 4, 5, 6, 7},
         .lastModified = {2030, 12, 31, 23, 59, 59, 249},
         .usageCode = UsageCode::topLevel,
         .userComments = {{"Comment", "one"}, {"Number", 2}},
         .slots = {TimelineMobSlot{.slotID = 3,
                                   .slotName = "Dialog",
                                   .physicalTrackNumber = 4,
                                   .editRate = {30'000, 1001},
                                   .origin = -5,
                                   .segment = Sequence{},
                                   .attributes = {{"AudioMixerCompMute", 1}}}}});
    EXPECT_EQ(WrittenAaf(file).textOf("Header/Content/Mobs/0"),
              "CompositionMob\n"
              "  CreationTime 2001-02-03 04:05:06.7\n"
              "  LastModified 2030-12-31 23:59:59.249\n"
              "  MobID " +
                  mobText(0xAB) +
                  "\n"
                  "  Name \"Sc\xC3\xA8ne 12\"\n"
                  "  Slots\n"
                  "    0 TimelineMobSlot\n"
                  "      EditRate 30000/1001\n"
                  "      Origin -5\n"
                  "      PhysicalTrackNumber 4\n"
                  "      Segment -> Sequence\n"
                  "        Components\n"
                  "        DataDefinition DataDef_Sound\n"
                  "        Length 0\n"
                  "      SlotID 3\n"
                  "      SlotName \"Dialog\"\n"
                  "      TimelineMobAttributeList\n"
                  "        0 TaggedValue\n"
                  "          Name \"AudioMixerCompMute\"\n"
                  "          Value aafInt32 1\n"
                  "  UsageCode Usage_TopLevel\n"
                  "  UserComments\n"
                  "    0 TaggedValue\n"
                  "      Name \"Comment\"\n"
                  "      Value aafString \"one\"\n"
                  "    1 TaggedValue\n"
                  "      Name \"Number\"\n"
                  "      Value aafInt32 2\n");
}

TEST(AafMobs, MasterWithAsLittleAsItMayHave) {
    AafFile file;
    file.masterMobs.push_back({.mobID = mobNumber(5)});
    EXPECT_EQ(WrittenAaf(file).textOf("Header/Content/Mobs/0"),
              "MasterMob\n"
              "  CreationTime 1970-01-01 00:00:00.0\n"
              "  LastModified 1970-01-01 00:00:00.0\n"
              "  MobID " +
                  mobText(5) +
                  "\n"
                  "  Slots\n");
}

TEST(AafMobs, EveryUsageCodeHasItsName) {
    const std::vector<std::pair<UsageCode, const char*>> names{
        {UsageCode::topLevel, "Usage_TopLevel"},
        {UsageCode::lowerLevel, "Usage_LowerLevel"},
        {UsageCode::subClip, "Usage_SubClip"},
        {UsageCode::adjustedClip, "Usage_AdjustedClip"},
        {UsageCode::templateOfOthers, "Usage_Template"}};
    for (const auto& [code, name] : names) {
        AafFile file;
        file.compositionMobs.push_back({.mobID = mobNumber(5), .usageCode = code});
        EXPECT_EQ(WrittenAaf(file).reader->valueOf("Header/Content/Mobs/0", "UsageCode"), name);
    }
}

TEST(AafMobs, SlotsOfBothKindsStandInTheirOrder) {
    AafFile file;
    file.compositionMobs.push_back(
        {.mobID = mobNumber(5),
         .slots = {
             EventMobSlot{.slotID = 8, .editRate = {24, 1}}, shortSlot,
             EventMobSlot{
                 .slotID = 7, .slotName = "M", .physicalTrackNumber = 1, .editRate = {24, 1}}}});
    const WrittenAaf written(file);
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0/Slots/0", "SlotID"), "8");
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0/Slots/1", "SlotID"), "1");
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0/Slots/2", "SlotName"), "\"M\"");
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0/Slots/2", "PhysicalTrackNumber"), "1");
}

TEST(AafMobs, MobsAreFoundByTheirIdentifiers) {
    AafFile file;
    file.compositionMobs.push_back({.mobID = mobNumber(9), .name = "composition"});
    file.masterMobs.push_back({.mobID = mobNumber(3), .name = "master"});
    file.sourceMobs.push_back(
        {.mob = {.mobID = mobNumber(6), .name = "source"}, .essenceDescription = TapeDescriptor{}});
    // A set is indexed in the order of its names.
    const WrittenAaf written(file);
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/0", "Name"), "\"master\"");
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/1", "Name"), "\"source\"");
    EXPECT_EQ(written.reader->valueOf("Header/Content/Mobs/2", "Name"), "\"composition\"");
}

TEST(AafMobs, LinkedWaveFile) {
    const std::string text = textOfDescription(
        {.mob = {.mobID = mobNumber(5)},
         .essenceDescription = WAVEDescriptor{
             .sampleRate = {44'100, 1},
             .length = 132'300,
             .containerFormat = Container::external,
             .summary = {std::byte{0x52}, std::byte{0x49}, std::byte{0xFF}},
             .locators = {{"file:///media/a%20b.wav"}, {"file:///other/%C3%A9.wav"}}}});
    EXPECT_EQ(text,
              "WAVEDescriptor\n"
              "  ContainerFormat ContainerDef_External\n"
              "  Length 132300\n"
              "  Locator\n"
              "    0 NetworkLocator\n"
              "      URLString \"file:///media/a%20b.wav\"\n"
              "    1 NetworkLocator\n"
              "      URLString \"file:///other/%C3%A9.wav\"\n"
              "  SampleRate 44100/1\n"
              "  Summary [82, 73, 255]\n");
}

TEST(AafMobs, EmbeddedSamples) {
    EXPECT_EQ(
        textOfDescription({.mob = {.mobID = mobNumber(5)},
                           .essenceDescription = PCMDescriptor{.sampleRate = samples48k,
                                                               .length = 96'000,
                                                               .audioSamplingRate = samples48k,
                                                               .channels = 1,
                                                               .quantizationBits = 24,
                                                               .blockAlign = 3,
                                                               .averageBPS = 144'000}}),
        "PCMDescriptor\n"
        "  AudioSamplingRate 48000/1\n"
        "  AverageBPS 144000\n"
        "  BlockAlign 3\n"
        "  Channels 1\n"
        "  ContainerFormat ContainerDef_AAFKLV\n"
        "  ElectroSpatial ElectroSpatialFormulation_SingleChannelMode\n"
        "  Length 96000\n"
        "  Locked False\n"
        "  QuantizationBits 24\n"
        "  SampleRate 48000/1\n"
        "  SequenceOffset 0\n");
}

TEST(AafMobs, EveryPlacingOfChannelsHasItsName) {
    const std::vector<std::pair<ElectroSpatial, const char*>> names{
        {ElectroSpatial::standard, "Default"},
        {ElectroSpatial::twoChannelMode, "TwoChannelMode"},
        {ElectroSpatial::singleChannelMode, "SingleChannelMode"},
        {ElectroSpatial::primarySecondaryMode, "PrimarySecondaryMode"},
        {ElectroSpatial::stereophonicMode, "StereophonicMode"},
        {ElectroSpatial::multiChannelMode, "MultiChannelMode"}};
    for (const auto& [mode, name] : names) {
        const WrittenAaf written(
            fileOfSource({.mob = {.mobID = mobNumber(5)},
                          .essenceDescription = PCMDescriptor{.sampleRate = samples48k,
                                                              .containerFormat = Container::aaf,
                                                              .audioSamplingRate = samples48k,
                                                              .locked = true,
                                                              .electroSpatial = mode}}));
        const std::string place = "Header/Content/Mobs/0/EssenceDescription";
        EXPECT_EQ(written.reader->valueOf(place, "ElectroSpatial"),
                  std::string("ElectroSpatialFormulation_") + name);
        EXPECT_EQ(written.reader->valueOf(place, "Locked"), "True");
        EXPECT_EQ(written.reader->valueOf(place, "ContainerFormat"), "ContainerDef_AAF");
    }
}

TEST(AafMobs, Tape) {
    EXPECT_EQ(
        textOfDescription({.mob = {.mobID = mobNumber(5)},
                           .essenceDescription = TapeDescriptor{.locators = {{"file:///x"}}}}),
        "TapeDescriptor\n"
        "  Locator\n"
        "    0 NetworkLocator\n"
        "      URLString \"file:///x\"\n"
        "  VideoSignal VideoSignalNull\n");
}

TEST(AafMobs, TwoMobsOfOneIdentifierAreRefused) {
    AafFile file;
    file.compositionMobs.push_back({.mobID = mobNumber(5)});
    file.sourceMobs.push_back(
        {.mob = {.mobID = mobNumber(5)}, .essenceDescription = TapeDescriptor{}});
    EXPECT_EQ(faultOf(file), Fault(AafError::Duplicate{"Mobs"}));
    EXPECT_STREQ(AafError(AafError::Duplicate{"Mobs"}).what(),
                 "AAF: two objects of Mobs have the same identifier");
}

TEST(AafMobs, TwoSlotsOfOneIdentifierAreRefused) {
    AafFile file;
    file.masterMobs.push_back(
        {.mobID = mobNumber(5),
         .slots = {shortSlot, EventMobSlot{.slotID = 2, .editRate = {25, 1}}, shortSlot}});
    EXPECT_EQ(faultOf(file), Fault(AafError::Duplicate{"Slots"}));
}

TEST(AafMobs, SampleRatesOfZeroAreRefused) {
    EXPECT_EQ(faultOf(fileOfSource(
                  {.mob = {.mobID = mobNumber(5)}, .essenceDescription = WAVEDescriptor{}})),
              Fault(AafError::InvalidRational{"SampleRate"}));
    EXPECT_EQ(
        faultOf(fileOfSource({.mob = {.mobID = mobNumber(5)},
                              .essenceDescription = PCMDescriptor{.sampleRate = samples48k}})),
        Fault(AafError::InvalidRational{"AudioSamplingRate"}));
}

TEST(AafMobs, NameOf32766UnitsIsTheLongest) {
    AafFile file;
    file.masterMobs.push_back({.mobID = mobNumber(5), .name = std::string(32'766, 'n')});
    EXPECT_EQ(WrittenAaf(file).reader->valueOf("Header/Content/Mobs/0", "Name"),
              '"' + std::string(32'766, 'n') + '"');
    file.masterMobs[0].name += 'n';
    EXPECT_EQ(faultOf(file), Fault(AafError::ValueTooLong{"Name", 65'536}));
    EXPECT_STREQ(AafError(AafError::ValueTooLong{"Name", 65'536}).what(),
                 "AAF: the value of Name has 65536 bytes, more than 65535");
}

TEST(AafMobs, ScalarsBeyondTheFirstPlaneTakeTwoUnitsOfAName) {
    AafFile file;
    std::string notes;
    for (int index = 0; index < 16'383; ++index) {
        notes += "\xF0\x9F\x8E\xB5";
    }
    file.masterMobs.push_back({.mobID = mobNumber(5), .name = notes});
    EXPECT_EQ(WrittenAaf(file).reader->valueOf("Header/Content/Mobs/0", "Name"), '"' + notes + '"');
    file.masterMobs[0].name += 'n';
    EXPECT_EQ(faultOf(file), Fault(AafError::ValueTooLong{"Name", 65'536}));
}

TEST(AafMobs, SummaryOf65535BytesIsTheLongest) {
    SourceMob mob{
        .mob = {.mobID = mobNumber(5)},
        .essenceDescription = WAVEDescriptor{.sampleRate = samples48k, .summary = Bytes(65'535)}};
    EXPECT_GT(textOfDescription(mob).size(), 196'605U);
    std::get<WAVEDescriptor>(mob.essenceDescription).summary.push_back({});
    EXPECT_EQ(faultOf(fileOfSource(mob)), Fault(AafError::ValueTooLong{"Summary", 65'536}));
}

TEST(AafMobs, ZeroInATextIsRefused) {
    AafFile file;
    file.masterMobs.push_back({.mobID = mobNumber(5), .name = std::string("a\0b", 3)});
    EXPECT_EQ(faultOf(file), Fault(AafError::ZeroInText{"Name"}));
    EXPECT_STREQ(AafError(AafError::ZeroInText{"Name"}).what(),
                 "AAF: the text of Name contains a zero character");
}

TEST(AafMobs, BrokenTextIsMendedByReplacementCharacters) {
    AafFile file;
    file.masterMobs.push_back({.mobID = mobNumber(5), .name = "a\xFFz"});
    EXPECT_EQ(WrittenAaf(file).reader->valueOf("Header/Content/Mobs/0", "Name"),
              "\"a\xEF\xBF\xBDz\"");
}

}  // namespace
}  // namespace trellant::aaf

// SPDX-License-Identifier: Apache-2.0
// The tables of classes, properties and types, and the MetaDictionary that is written from them.
#include "model.h"

#include "stored_names.h"
#include "written_aaf.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace trellant::aaf {
namespace {

using ::testing::ElementsAre;

TEST(AafModel, IdentifiersAreUnique) {
    std::set<AUID> ids;
    std::size_t count = 0;
    for (const ClassRow& row : classRows()) {
        ids.insert(row.id);
        ++count;
    }
    for (const PropertyRow& row : propertyRows()) {
        ids.insert(row.id);
        ++count;
    }
    for (const TypeRow& row : typeRows()) {
        ids.insert(row.id);
        ++count;
    }
    EXPECT_EQ(ids.size(), count);
}

TEST(AafModel, DescriptorsOfSoundHaveTheNumbersThatOtherReadersKnow) {
    std::map<std::string, int> numbers;
    for (const PropertyRow& row : propertyRows()) {
        if (row.owner == Class::soundDescriptor) {
            numbers.emplace(row.name, row.pid);
        }
    }
    const std::map<std::string, int> expected{{"QuantizationBits", 0x3D01},
                                              {"Locked", 0x3D02},
                                              {"AudioSamplingRate", 0x3D03},
                                              {"ElectroSpatial", 0x3D05},
                                              {"Channels", 0x3D07}};
    EXPECT_EQ(numbers, expected);
}

TEST(AafModel, MetaDictionaryDescribesEveryRow) {
    const WrittenAaf written(AafFile{});
    EXPECT_EQ(written.reader->classCount(), classRows().size());
    EXPECT_EQ(written.reader->typeCount(), typeRows().size());
    std::size_t properties = 0;
    for (std::size_t index = 0; index < classRows().size(); ++index) {
        const std::string count = written.reader->valueOf(
            "MetaDictionary/ClassDefinitions/" + std::to_string(index), "Properties");
        properties += count == "none" ? 0U : std::stoul(count);
    }
    EXPECT_EQ(properties, propertyRows().size());
}

TEST(AafModel, ClassSaysWhatIsAboveItAndWhatItHas) {
    const WrittenAaf written(AafFile{});
    std::string text;
    for (std::size_t index = 0; index < classRows().size() && text.empty(); ++index) {
        const std::string place = "MetaDictionary/ClassDefinitions/" + std::to_string(index);
        if (written.reader->valueOf(place, "Name") == "\"SourceReference\"") {
            text = written.textOf(place);
        }
    }
    EXPECT_EQ(text,
              "ClassDefinition\n"
              "  Identification 0d010101-0101-1000-060e-2b3402060101\n"
              "  IsConcrete False\n"
              "  Name \"SourceReference\"\n"
              "  ParentClass Segment\n"
              "  Properties\n"
              "    0 PropertyDefinition\n"
              "      Identification 06010103-0100-0000-060e-2b3401010102\n"
              "      IsOptional True\n"
              "      LocalIdentification 4353\n"
              "      Name \"SourceID\"\n"
              "      Type 01030200-0000-0000-060e-2b3401040101\n"
              "    1 PropertyDefinition\n"
              "      Identification 06010103-0200-0000-060e-2b3401010102\n"
              "      IsOptional False\n"
              "      LocalIdentification 4354\n"
              "      Name \"SourceMobSlotID\"\n"
              "      Type 01010300-0000-0000-060e-2b3401040101\n");
}

/// The definition of the type of this name.
std::string textOfType(const char* name) {
    const WrittenAaf written(AafFile{});
    for (std::size_t index = 0; index < typeRows().size(); ++index) {
        const std::string place = "MetaDictionary/TypeDefinitions/" + std::to_string(index);
        if (written.reader->valueOf(place, "Name") == '"' + std::string(name) + '"') {
            return written.textOf(place);
        }
    }
    return "none";
}

TEST(AafModel, TypesOfEachKind) {
    EXPECT_EQ(textOfType("aafInt32"),
              "TypeDefinitionInteger\n"
              "  Identification 01010700-0000-0000-060e-2b3401040101\n"
              "  IsSigned True\n"
              "  Name \"aafInt32\"\n"
              "  Size 4\n");
    EXPECT_EQ(textOfType("Rational"),
              "TypeDefinitionRecord\n"
              "  Identification 03010100-0000-0000-060e-2b3401040101\n"
              "  MemberNames [Numerator, Denominator]\n"
              "  MemberTypes [aafInt32, aafInt32]\n"
              "  Name \"Rational\"\n");
    EXPECT_EQ(textOfType("Boolean"),
              "TypeDefinitionEnumeration\n"
              "  ElementNames [False, True]\n"
              "  ElementType aafUInt8\n"
              "  ElementValues [0, 1]\n"
              "  Identification 01040100-0000-0000-060e-2b3401040101\n"
              "  Name \"Boolean\"\n");
    EXPECT_EQ(textOfType("aafUInt8Array12"),
              "TypeDefinitionFixedArray\n"
              "  ElementCount 12\n"
              "  ElementType aafUInt8\n"
              "  Identification 04010200-0000-0000-060e-2b3401040101\n"
              "  Name \"aafUInt8Array12\"\n");
    EXPECT_EQ(textOfType("DataDefinitionWeakReference"),
              "TypeDefinitionWeakObjectReference\n"
              "  Identification 05010300-0000-0000-060e-2b3401040101\n"
              "  Name \"DataDefinitionWeakReference\"\n"
              "  ReferencedType DataDefinition\n"
              "  TargetSet [0d010301-0102-0100-060e-2b3401010102, "
              "06010104-0202-0000-060e-2b3401010102, 06010104-0505-0000-060e-2b3401010102]\n");
    EXPECT_EQ(textOfType("aafIndirect"),
              "TypeDefinitionIndirect\n"
              "  Identification 04100300-0000-0000-060e-2b3401040101\n"
              "  Name \"aafIndirect\"\n");
}

TEST(AafModel, PathsToTargetsAreThoseOfTheProperties) {
    for (const TargetRow& row : targetRows()) {
        for (const PathStep& step : row.path.subspan(1)) {
            const auto rows = propertyRows();
            const auto found = std::find_if(rows.begin(), rows.end(), [&](const PropertyRow& one) {
                return one.pid == step.pid;
            });
            ASSERT_NE(found, rows.end());
            EXPECT_EQ(found->id, step.propertyID);
        }
    }
}

TEST(AafModel, NothingIsDescribedThatNoFileCanHave) {
    AafFile file = fileOf(
        Sequence{.components = {
                     Filler{2}, Transition{1, 0, {.operation = Operation::monoAudioDissolve}},
                     SourceClip{.length = 2,
                                .operationGroups = {{.parameters = {{.value = Rational{1, 1}}}}}},
                     SourceClip{.operationGroups = {
                                    {.parameters = {{.value = VaryingValue{.points = {{}}}}}}}}}});
    Mob& mob = file.compositionMobs[0];
    mob.userComments = {{"a", "b"}};
    mob.slots.emplace_back(
        TimelineMobSlot{.slotID = 2, .editRate = samples48k, .segment = Timecode{}});
    mob.slots.emplace_back(
        EventMobSlot{.slotID = 3, .editRate = samples48k, .markers = {{.position = 1}}});
    file.masterMobs.push_back({.mobID = mobNumber(2)});
    file.sourceMobs.push_back(
        {.mob = {.mobID = mobNumber(3)},
         .essenceDescription = WAVEDescriptor{.sampleRate = samples48k, .locators = {{"x"}}}});
    file.sourceMobs.push_back({.mob = {.mobID = mobNumber(4)},
                               .essenceDescription = PCMDescriptor{
                                   .sampleRate = samples48k, .audioSamplingRate = samples48k}});
    file.sourceMobs.push_back(
        {.mob = {.mobID = mobNumber(5)}, .essenceDescription = TapeDescriptor{}});
    file.essenceData.push_back({.mobID = mobNumber(4), .data = [](const auto&) {}});
    const WrittenAaf written(file);
    std::vector<std::string> unused;
    for (const ClassRow& row : classRows()) {
        if (row.isConcrete && !written.reader->classesInUse().contains(std::string(row.name))) {
            unused.emplace_back(row.name);
        }
    }
    // Concrete ones of which files have the more special forms only.
    EXPECT_THAT(unused, ElementsAre("CommentMarker", "SoundDescriptor"));
}

TEST(AafStoredNames, CarryThePIDInHexadecimal) {
    EXPECT_EQ(nameOfOne("Content", 0x3B03), u"Content-3b03");
    EXPECT_EQ(nameOfMany("Parameters", 0x0B03), u"Parameters-b03");
    EXPECT_EQ(nameOfIndex(u"Slots-4403"), u"Slots-4403 index");
    EXPECT_EQ(nameOfMember(u"Slots-4403", 0), u"Slots-4403{0}");
    EXPECT_EQ(nameOfMember(u"Slots-4403", 0xFFFFFFFF), u"Slots-4403{ffffffff}");
}

TEST(AafStoredNames, LongOnesLoseTheirMiddle) {
    EXPECT_EQ(nameOfMany("InterpolationDefinitions", 0x2609), u"Interpol-nitions-2609");
    EXPECT_EQ(nameOfMany("IdentificationList", 0x3B06), u"Identifi-ionList-3b06");
    // 16 beside a PID of four digits; of 17 the first 8 and the last 7 stay.
    EXPECT_EQ(nameOfMany("abcdefghijklmnop", 0x3B06), u"abcdefghijklmnop-3b06");
    EXPECT_EQ(nameOfMany("abcdefghijklmnopq", 0x3B06), u"abcdefgh-klmnopq-3b06");
    // 17 beside one of three: the first 8 and the last 8.
    EXPECT_EQ(nameOfMany("abcdefghijklmnopq", 0x0B03), u"abcdefghijklmnopq-b03");
    EXPECT_EQ(nameOfMany("abcdefghijklmnopqr", 0x0B03), u"abcdefgh-klmnopqr-b03");
    // 26 where nothing follows: the first 13 and the last 12.
    EXPECT_EQ(nameOfOne("abcdefghijklmnopqrstuvwxyz", 0x4701), u"abcdefghijklmnopqrstuvwxyz-4701");
    EXPECT_EQ(nameOfOne("abcdefghijklmnopqrstuvwxyz1", 0x4701), u"abcdefghijklm-pqrstuvwxyz1-4701");
}

TEST(AafStoredNames, EvenTheLongestKeyFits) {
    for (const PropertyRow& row : propertyRows()) {
        EXPECT_LE(nameOfMember(nameOfMany(row.name, row.pid), 0xFFFFFFFF).size(), 31U);
        EXPECT_LE(nameOfIndex(nameOfMany(row.name, row.pid)).size(), 31U);
        EXPECT_LE(nameOfOne(row.name, row.pid).size(), 31U);
    }
}

}  // namespace
}  // namespace trellant::aaf
